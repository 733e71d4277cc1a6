"""Measures what assay costs beyond the program that it runs.

Usage: assay_speed.py APP_DIRECTORY [ROUNDS]

Runs `assay plugins` in turn with `Assayer plugins` alone, on an installation of this machine's own
good modules. Runs `assay codecs` with two jobs in turn with one Assayer on one thread, on the ids of
FFMPEG_IMPL that have an encoder. Then runs `assay --help`. Ends with status 1 if a figure exceeds its
limit."""

import json
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

IMPLEMENTATION = "FFMPEG_IMPL"
PLUGIN_RATIO, PLUGIN_SECONDS, CODEC_RATIO, HELP_SECONDS = 1.15, 0.020, 1.5, 0.010


def measure(command, environment):
    start = time.perf_counter()
    subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    return time.perf_counter() - start


def in_turns(rounds, environment, *commands):
    """The median seconds of each command."""
    times = [[measure(command, environment) for command in commands] for _ in range(rounds)]
    return [statistics.median(column) for column in zip(*times)]


def make_good_installation(app, folder, environment):
    """An installation of this machine's own modules, without those that aren't good."""
    own, report = folder / "own", folder / "report.json"
    subprocess.run([app / "assay", "collect", "--into", own], env=environment, check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run([app / "assay", "plugins", "--app", own, "--report", report, "--quiet"], env=environment)
    items = json.loads(report.read_text())["items"]
    bad = {item["name"] for item in items if item["verdict"] != "good"}
    lines = [line.partition(":") for line in (own / "plugins.list").read_text().splitlines()]
    (own / "plugins.list").write_text("".join(
        f"{factory}: {', '.join(name for name in map(str.strip, names.split(',')) if name not in bad)}\n"
        for factory, colon, names in lines if colon and not factory.startswith("#")))
    return own, len(items) - len(bad), report


def main(app, rounds):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        environment = {key: value for key, value in os.environ.items() if key != "LOCALAPPDATA"}
        own, count, report = make_good_installation(app, folder, environment)
        options = ["--app", own, "--report", report, "--quiet"]
        command, program = in_turns(rounds, environment, [app / "assay", "plugins", *options],
                                    [own / "Assayer", "plugins", "600", *"--------"])
        verdicts = json.loads(report.read_text())["totals"]["plugin"]
        print(f"{count} good plugins, found {verdicts}: assay {command * 1000:.0f} ms, Assayer alone "
              f"{program * 1000:.0f} ms: {command / program:.2f} times")
        ids = json.loads(subprocess.run([app / "assayer-list"], env=environment, capture_output=True,
                                        check=True).stdout)["codecs"][IMPLEMENTATION]["Encoder"]
        codecs = ",".join(ids)
        side, single = in_turns(
            max(3, rounds // 5), environment,
            [app / "assay", "codecs", "--app", app, "--implementation", IMPLEMENTATION, "--codec", codecs,
             "--jobs", "2", "--report", report, "--quiet"],
            [app / "Assayer", "codecs", "600", IMPLEMENTATION, codecs, *"------"])
        saved = json.loads(report.read_text())
        print(f"{len(ids)} codec ids, found {saved['totals']['codec']} in {len(saved['runs'])} runs: assay with 2 "
              f"jobs {side:.2f} s, one Assayer {single:.2f} s: {single / side:.2f} times faster")
        help_time, = in_turns(rounds, environment, [app / "assay", "--help"])
        print(f"assay --help: {help_time * 1000:.1f} ms")
    good = (command <= PLUGIN_RATIO * program + PLUGIN_SECONDS and single / side >= CODEC_RATIO
            and help_time <= HELP_SECONDS)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve(), int(sys.argv[2]) if len(sys.argv) > 2 else 15))
