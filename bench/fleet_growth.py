#!/usr/bin/python3
"""Times each alert's query on the metrics of many machines over eight days, which are made up.

Usage: fleet_growth.py [MACHINES]. Needs Debian's prometheus and prometheus-node-exporter, and at 10,000
machines 3 GB of disk space and some minutes.

What the alerts look at has a sample an hour, all else one a day."""

import json
import random
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests/fleet"))

from conftest import assay  # noqa: E402
from reports import make_bad_item, make_item, write_report  # noqa: E402
from test_monitoring import ask, find_port, running, wait_for  # noqa: E402

HOUR, DAY = 3600, 86400
DAYS = 8
END = 1800000000
LOOKED_AT = ("assayer_bad_item", "assayer_check_complete", "assayer_check_timestamp_seconds")
ROUNDS = 5


def make_series(folder):
    """The lines of one real metrics file, by metric; bad items aside."""
    report = write_report(folder / "report.json", [make_item("amp"), make_bad_item("gain", "x")])
    assay("report", report, "--metrics", folder / "metrics")
    families = {}
    for line in (folder / "metrics").read_text().splitlines():
        if not line.startswith("#"):
            families.setdefault(line.split("{")[0].split(" ")[0], []).append(line.rsplit(" ", 1))
    return families


def choose_bad_items(number, chance):
    """Labels and the hour of the first sample: two old ones, on some machines a new one of an upgrade."""
    for i in range(2):
        item = chance.randrange(2000)
        yield f'{{kind="plugin",name="plugin{item}.{i}",verdict="failed",package="package{item // 10}"}}', 0
    if number % 8 == 0:
        yield '{kind="plugin",name="amp",verdict="crashed",package="amp-plugins"}', DAYS * 24 - 12


def with_machine(labels, number):
    start = "{" if not labels else labels[:-1] + ","
    return f'{start}instance="machine{number}"}}'


def lines_of(series, value, first, step):
    stamp = "timestamp" in series
    for hour in range(first, DAYS * 24 + 1, step):
        at = END - (DAYS * 24 - hour) * HOUR
        yield f"{series} {at // DAY * DAY if stamp else value} {at}\n"


def write_metrics(path, families, machines):
    """Returns the number of series."""
    count, chance = 0, random.Random(1)
    with open(path, "w", buffering=1 << 20) as file:
        for metric, known in families.items():
            file.write(f"# TYPE {metric} gauge\n")
            step = 1 if metric in LOOKED_AT else 24
            for number in range(machines):
                found = (
                    [(labels, 1, first) for labels, first in choose_bad_items(number, chance)]
                    if metric == "assayer_bad_item"
                    else [(series[len(metric):], value, 0) for series, value in known]
                )
                for labels, value, first in found:
                    file.writelines(lines_of(metric + with_machine(labels, number), value, first, step))
                    count += 1
        file.write("# EOF\n")
    return count


def time_query(port, query):
    times = []
    for _ in range(ROUNDS):
        start = time.monotonic()
        result = ask(port, "query", query=query, time=END, timeout="120s")["result"]
        times.append(time.monotonic() - start)
    return statistics.median(times), len(result)


def main():
    machines = int(sys.argv[1]) if len(sys.argv) > 1 else 10000
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        count = write_metrics(folder / "text", make_series(folder), machines)
        print(f"{machines} machines, {count} series, {count / machines:.1f} each")
        start = time.monotonic()
        subprocess.run(["promtool", "tsdb", "create-blocks-from", "--max-block-duration=243h", "openmetrics", "-q",
                        folder / "text", folder / "data"], check=True, stdout=subprocess.DEVNULL)  # fmt: skip
        (folder / "text").unlink()
        size = sum(path.stat().st_size for path in (folder / "data").rglob("*") if path.is_file())
        print(f"blocks: {size / 1e6:.0f} MB, made in {time.monotonic() - start:.0f} s")
        config = folder / "prometheus.yml"
        config.write_text(f"global: {{evaluation_interval: 1d}}\nrule_files: [{ROOT / 'fleet/alerts.yml'}]\n")
        port = find_port()
        with running(folder / "log", "prometheus", f"--config.file={config}", f"--storage.tsdb.path={folder / 'data'}",
                     "--storage.tsdb.retention.time=100y", f"--web.listen-address=127.0.0.1:{port}", limit=1800):  # fmt: skip
            [group] = wait_for(lambda: ask(port, "rules")["groups"])
            for rule in group["rules"]:
                seconds, found = time_query(port, rule["query"])
                print(f"{rule['name']}: {seconds * 1000:.0f} ms, {found} alerts")


if __name__ == "__main__":
    main()
