"""Measures how long it takes to collect modules.

Usage: collect_speed.py APP_DIRECTORY [ROUNDS]

Collects 700 copies of one of this machine's modules and then all of this machine's own, each into an
installation of its own: once anew, then again and again when nothing has changed. Ends with status 1 if
a figure, without the start of the command, exceeds its limit."""

import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

MODULES = 700
FIRST_SECONDS, KNOWN_SECONDS = 1.5, 0.010
LADSPA = Path("/usr/lib/ladspa")


def measure(command, environment):
    start = time.perf_counter()
    subprocess.run(command, env=environment, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    return time.perf_counter() - start


def collect(app, folder, environment, rounds):
    """The seconds of the first time; the medians of the others, and of `assay --help` in turn with them."""
    command = [app / "assay", "collect", "--into", folder]
    first = measure(command, environment)
    time.sleep(0.1)
    measure(command, environment)  # what was written a moment ago is read once more
    times = [(measure(command, environment), measure([app / "assay", "--help"], environment)) for _ in range(rounds)]
    return first, *(statistics.median(column) for column in zip(*times))


def count(folder):
    return sum(path.is_symlink() for path in folder.glob("*.so"))


def main(app, rounds):
    good = True
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        copies = folder / "modules"
        copies.mkdir()
        module = min(LADSPA.glob("*.so"), key=lambda path: path.stat().st_size)
        for number in range(MODULES):
            shutil.copy(module, copies / f"copy{number}.so")
        paths = {f"{kind}_PATH": "/none" for kind in ("FREI0R", "LADSPA", "LV2", "VAMP")}
        cases = {"copies": {**os.environ, **paths, "LADSPA_PATH": str(copies), "HOME": name}, "own": dict(os.environ)}
        for what, environment in cases.items():
            first, known, bare = collect(app, folder / what, environment, rounds)
            print(f"{count(folder / what)} modules ({what}): first {first:.2f} s, known {known * 1000:.1f} ms, of which "
                  f"the command's start is {bare * 1000:.1f} ms")
            good = good and first <= FIRST_SECONDS and known - bare <= KNOWN_SECONDS
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve(), int(sys.argv[2]) if len(sys.argv) > 2 else 31))
