"""The programs of doc/application.md do what the page says, whatever the command answers."""

import json
import os
import re
import subprocess
import sys
from pathlib import Path

import pytest

PAGE = (Path(__file__).parents[2] / "doc/application.md").read_text()
KNOWN = {"schema": 2, "trusted": [{"name": "amp", "path": "/usr/lib/ladspa/amp.so", "reason": ""}],
         "bad": [{"name": "gain", "path": "/usr/lib/ladspa/gain.so", "reason": "SIGSEGV"}], "unknown": []}  # fmt: skip


def block(language):
    return re.search(rf"```{language}\n(.*?)```", PAGE, re.DOTALL)[1]


@pytest.fixture(scope="session")
def programs(tmp_path_factory):
    folder = tmp_path_factory.mktemp("application")
    (folder / "application.py").write_text(block("python"))
    (folder / "application.cpp").write_text(block("cpp"))
    subprocess.run([os.environ.get("CXX", "c++"), "-std=c++17", "-Wall", "-Wextra", "-o", folder / "application",
                    folder / "application.cpp"], check=True)  # fmt: skip
    return {"python": [sys.executable, folder / "application.py"], "cpp": [folder / "application"]}


@pytest.mark.parametrize("language", ["python", "cpp"])
@pytest.mark.parametrize(
    "check, trusted, paths, said",
    [(0, 0, True, "left out gain: SIGSEGV"), (1, 0, True, "left out gain"), (3, 0, True, "ended with 3"),
     (3, 3, False, "ended with 3"), (None, None, False, "isn't installed")],
)  # fmt: skip
def test_the_programs_heed_each_status(programs, tmp_path, language, check, trusted, paths, said):
    if check is not None:
        (tmp_path / "answer").write_text(json.dumps(KNOWN))
        (tmp_path / "assay").write_text(
            f"#!/bin/sh\n[ \"$*\" = 'all --only-changed --quiet' ] && exit {check}\n"
            f"[ \"$*\" = 'trusted --json' ] && /bin/cat {tmp_path}/answer && exit {trusted}\nexit 2\n")
        (tmp_path / "assay").chmod(0o755)
    result = subprocess.run(programs[language], env={**os.environ, "PATH": str(tmp_path)}, text=True,
                            capture_output=True, check=True)  # fmt: skip
    assert result.stdout.split() == (["/usr/lib/ladspa/amp.so"] if paths else [])
    assert said in result.stderr
