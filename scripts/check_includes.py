#!/usr/bin/env python3
"""Checks each of our #includes against the table in ARCHITECTURE.md of what a folder may include."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
ROW = re.compile(r"^\| `([\w/]+)/` \|.*\|([^|]*)\|$", re.M)
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)


def folder_of(path, folders):
    """The most specific folder of the table that holds the file, or None."""
    parents = [parent.as_posix() for parent in Path(path).parents]
    return next((parent for parent in parents if parent in folders), None)


def problems(allowed, files):
    for file in files:
        own = folder_of(file, allowed)
        if own is None:
            yield f"{file}: ARCHITECTURE.md has no row for its folder"
            continue
        for included in INCLUDE.findall((ROOT / file).read_text()):
            if "/" not in included:
                yield f'{file}: "{included}" isn\'t named from the root'
                continue
            owner = folder_of(included, allowed)
            if owner != own and owner not in allowed[own]:
                yield f"{file}: {own}/ may not include {included}"


def main():
    rows = ROW.findall((ROOT / "ARCHITECTURE.md").read_text())
    allowed = {folder: re.findall(r"`([\w/]+)/`", callees) for folder, callees in rows}
    files = subprocess.run(["git", "ls-files", "*.h", "*.cpp"], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout.split()
    found = list(problems(allowed, files))
    print("\n".join(found) or f"{len(files)} files keep to the table")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
