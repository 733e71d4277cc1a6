#!/usr/bin/python3
"""Measures the metrics of 1,000 reports of 1,200 items each, a process each. Ends with 1 if the median
takes longer than the limit.

Usage: fleet_metrics.py APP, the installation directory with the command."""

import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests/fleet"))

from reports import make_bad_item, make_item, write_report  # noqa: E402

LIMIT = 25  # ms


def main():
    times = []
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        for number in range(1000):
            good = [make_item(f"plugin{i}") for i in range(1180)]
            bad = [make_bad_item(f"bad{i}", f"package{number % 7}") for i in range(20)]
            report = write_report(folder / "report.json", good + bad)
            start = time.monotonic()
            subprocess.run([f"{sys.argv[1]}/assay", "report", report, "--metrics", folder / f"{number}.prom"], check=True)
            times.append((time.monotonic() - start) * 1000)
    median = statistics.median(times)
    print(f"metrics of a report of 1,200 items: {median:.1f} ms, limit {LIMIT}")
    return 1 if median > LIMIT else 0


if __name__ == "__main__":
    sys.exit(main())
