"""Measures checks of hundreds of modules that crash, fail, hang, keep descriptors or flood the parent.

Usage: hostile_scale.py APP_DIRECTORY FIXTURES [CASE...]

FIXTURES: the folder with the process tests' modules. Without CASE: those that take seconds; "all" adds
the others. Prints for each case how long the check took, its runs and its verdicts. Ends with status 1
if twice the modules take more than 2.6 times as long."""

import json
import resource
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

MOST_GROWTH = 2.6
PROGRAMS = ("Assayer", "assay", "assayer-list")
FILES = 1024  # the limit of open files that hoarders use up


def crashes(count):
    return ["segfault" if i % 10 == 5 else "good" for i in range(count)]


def fails(count):
    return ["refuses" if i % 2 else "good" for i in range(count)]


# Name: behaviours of the modules in their order, then more arguments.
QUICK = {
    "250, 10 % crash": (crashes(250), []),
    "500, 10 % crash": (crashes(500), []),
    "1000, half fail": (fails(1000), []),
    "250,000 stray records": (["good", "strays", "good"], []),
    "1,000,000 records": (["good", "writes-records", "good"], []),
    "200,000 openings": (["good", "opens-records", "good"], []),
}
SLOW = {
    "1000, 10 % crash": (crashes(1000), []),
    "2000, 10 % crash": (crashes(2000), []),
    "11 hoarders, 100 good": (["hoards"] * 11 + ["good"] * 100, []),
    "60 hang": (["hang"] * 60, ["--item-time", "1"]),
    "8,000 codecs": (["many-codecs"], []),
}
GROWING = ("250, 10 % crash", "500, 10 % crash")


def make_installation(app, fixtures, folder, behaviours):
    """A folder with the program and a copy of the fixture for each behaviour, in this order."""
    folder.mkdir()
    for file in (*PROGRAMS, *(library.name for library in app.glob("lib*.so*"))):
        shutil.copy(app / file, folder)
    names = [f"{behaviour}.{i}" for i, behaviour in enumerate(behaviours)]
    for name in names:
        shutil.copy(fixtures / "Misbehaving.so", folder / f"{name}.so")
    (folder / "plugins.list").write_text(f"CodecFactory: {', '.join(names)}\n")


def check(app, fixtures, behaviours, arguments):
    with tempfile.TemporaryDirectory() as name:
        folder, report = Path(name) / "app", Path(name) / "report.json"
        make_installation(app, fixtures, folder, behaviours)
        kind = "codecs" if "many-codecs" in behaviours else "plugins"
        limits = (FILES, FILES) if "hoards" in behaviours else resource.getrlimit(resource.RLIMIT_NOFILE)
        start, before = time.perf_counter(), resource.getrusage(resource.RUSAGE_CHILDREN)
        process = subprocess.run(
            [folder / "assay", kind, "--app", folder, "--report", report, "--quiet", "--jobs", "2",
             "--item-time", "5", *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, limits))
        seconds, after = time.perf_counter() - start, resource.getrusage(resource.RUSAGE_CHILDREN)
        cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        found = json.loads(report.read_text())
        return seconds, cpu, process.returncode, found


def main(app, fixtures, wanted):
    cases = QUICK | SLOW
    names = cases if wanted == ["all"] else wanted or QUICK
    seconds = {}
    for name in names:
        seconds[name], cpu, status, report = check(app, fixtures, *cases[name])
        notes = sum(map(len, report["notes"]))
        print(f"{name}: {seconds[name]:.1f} s, {cpu:.1f} of the cores, {len(report['runs'])} runs, status {status}, "
              f"{report['totals']}, {notes} bytes of notes {report.get('problem')}", flush=True)
    if all(name in seconds for name in GROWING):
        growth = seconds[GROWING[1]] / seconds[GROWING[0]]
        print(f"twice the modules: {growth:.2f} times as long, limit {MOST_GROWTH}")
        return 0 if growth <= MOST_GROWTH else 1
    return 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve(), sys.argv[3:]))
