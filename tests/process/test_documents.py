"""Documents repeat some facts of the sources, for readers who look there."""

import re
from pathlib import Path

import pytest

ROOT = Path(__file__).parents[2]
MEANINGS = {
    "CLEAN": "nothing",
    "TIMED_OUT": "time is up",
    "REFUSED": "refused",
    "TARNEX_EXCEPTION": "error",
    "STD_EXCEPTION": "error",
    "OTHER_EXCEPTION": "error",
    "BROKEN_PLUGINS": "plugins",
    "BROKEN_CODECS": "codecs",
    "BROKEN_BOTH": "codecs|both",
    "TOLERATED_ERRORS": "nothing",
}


def rows_of(document):
    """The text for each code in the document's table of exit codes."""
    text = (ROOT / document).read_text()
    if document.endswith(".md"):
        [table] = [block for block in text.split("\n\n") if "\n| 0 |" in block]
        rows = re.findall(r"^\| ([\d, ]+) \|([^|]*)\|", table, re.M)
    else:
        table = text.partition(".Sh EXIT STATUS")[2].partition("\n.El")[0]
        rows = [item.partition("\n")[::2] for item in table.split("\n.It ")[1:]]
    return {int(code): words.lower() for codes, words in rows for code in codes.split(",")}


@pytest.mark.parametrize("document", ["doc/protocol.md", "doc/Assayer.1"])
def test_exit_codes_are_those_of_the_header(document):
    codes = re.findall(r"EXIT_(\w+) = (\d+)", (ROOT / "run/ExitCodes.h").read_text())
    rows = rows_of(document)
    assert sorted(rows) == sorted(int(code) for _, code in codes)
    for name, code in codes:
        assert re.search(MEANINGS[name], rows[int(code)]), (name, rows[int(code)])
