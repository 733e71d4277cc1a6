"""The metrics of three machines in Debian's Prometheus, through a node exporter for each."""

import contextlib
import json
import socket
import subprocess
import time
import urllib.parse
import urllib.request

import pytest
from conftest import NASTY, ROOT, assay

CONFIG = """
global: {{scrape_interval: 1s, evaluation_interval: 1s}}
rule_files: [{rules}]
scrape_configs:
  - job_name: node
    static_configs:
{targets}
"""


def find_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


@contextlib.contextmanager
def running(log, *command, limit=120):
    """A process that ends with the block, and after `limit` seconds whatever becomes of this one."""
    with open(log, "w") as file, subprocess.Popen(
        ["timeout", "--kill-after=5", str(limit), *command], stdout=file, stderr=file
    ) as process:
        try:
            yield process
        finally:
            process.terminate()
            process.wait(timeout=20)


@contextlib.contextmanager
def exporter(folder):
    port = find_port()
    with running(folder / "log", "prometheus-node-exporter", "--collector.disable-defaults", "--collector.textfile",
                 f"--collector.textfile.directory={folder}", f"--web.listen-address=127.0.0.1:{port}"):  # fmt: skip
        yield port


def ask(port, path, **parameters):
    url = f"http://127.0.0.1:{port}/api/v1/{path}?{urllib.parse.urlencode(parameters)}"
    with urllib.request.urlopen(url, timeout=5) as answer:
        return json.load(answer)["data"]


def wait_for(question):
    """What it returns as soon as that is something."""
    end = time.monotonic() + 60
    while True:
        with contextlib.suppress(OSError):
            if found := question():
                return found
        assert time.monotonic() < end, "it didn't come"
        time.sleep(0.2)


@pytest.fixture
def prometheus(tmp_path, machines):
    """The port of a server that knows the three machines by name."""
    with contextlib.ExitStack() as stack:
        targets = ""
        for name, report in machines.items():
            folder = tmp_path / name
            folder.mkdir()
            assay("report", report, "--metrics", folder / "assayer.prom")
            port = stack.enter_context(exporter(folder))
            targets += f"      - {{targets: ['127.0.0.1:{port}'], labels: {{instance: {name}}}}}\n"
        config = tmp_path / "prometheus.yml"
        config.write_text(CONFIG.format(rules=ROOT / "fleet/alerts.yml", targets=targets))
        port = find_port()
        stack.enter_context(running(tmp_path / "log", "prometheus", f"--config.file={config}",
                                    f"--storage.tsdb.path={tmp_path / 'data'}",
                                    f"--web.listen-address=127.0.0.1:{port}"))  # fmt: skip
        yield port


def test_prometheus_names_the_bad_item_and_warns_of_its_package(prometheus):
    def ask_for_items():
        everyone = ask(prometheus, "query", query="count(assayer_check_complete)")["result"]
        found = ask(prometheus, "query", query="assayer_bad_item")["result"]
        return everyone and everyone[0]["value"][1] == "3" and found

    found = {item["metric"]["name"]: item["metric"] for item in wait_for(ask_for_items)}
    assert set(found) == {"amp", NASTY}
    expected = {"instance": "classroom", "kind": "plugin", "name": NASTY, "verdict": "hung", "package": "amp-plugins"}
    assert {key: found[NASTY][key] for key in expected} == expected
    alerts = wait_for(lambda: [alert for alert in ask(prometheus, "alerts")["alerts"] if alert["state"] == "firing"])
    assert [alert["labels"] for alert in alerts] == [
        {"alertname": "AssayerPackageBad", "package": "amp-plugins", "severity": "critical"}
    ]


def test_metrics_please_their_checker(tmp_path, machines):
    for report in machines.values():
        assay("report", report, "--metrics", tmp_path / "metrics")
        subprocess.run(["promtool", "check", "metrics"], stdin=open(tmp_path / "metrics"), check=True)
