"""The built command, and reports of three machines."""

import os
import subprocess
from pathlib import Path

import pytest
from reports import make_bad_item, make_item, write_report

ROOT = Path(__file__).parents[2]
APP = Path(os.environ.get("ASSAYER_APP", ROOT / "build/release/app"))
NASTY = 'gain "\\\n\t\u2028 mono'


def assay(*arguments, status=0, **options):
    process = subprocess.run([APP / "assay", *arguments], capture_output=True, text=True, timeout=60, **options)
    assert process.returncode == status, process
    return process.stdout


@pytest.fixture
def machines(tmp_path):
    """Reports by the machine's name; one machine has bad items."""
    good = [make_item("amp"), make_item(NASTY)]
    bad = [make_bad_item("amp", "amp-plugins"), make_bad_item(NASTY, "amp-plugins", verdict="hung")]
    return {name: write_report(tmp_path / f"{name}.json", items)
            for name, items in {"studio": good, "farm": good, "classroom": bad}.items()}  # fmt: skip
