"""The commands of doc/fleet.md, as they stand there."""

import os
import re
import subprocess

import pytest
from conftest import APP, ROOT

DOCUMENT = (ROOT / "doc/fleet.md").read_text()


def test_each_block_of_commands_runs(tmp_path, machines):
    blocks = re.findall(r"```sh\n(.*?)```", DOCUMENT, re.DOTALL)
    assert len(blocks) == 5
    environment = {**os.environ, "HOME": str(tmp_path), "PATH": f"{APP}:{os.environ['PATH']}"}
    (tmp_path / ".parallel").mkdir()
    (tmp_path / ".parallel/will-cite").touch()
    for block in blocks:
        subprocess.run(["bash", "-euo", "pipefail", "-c", block], cwd=tmp_path, env=environment, check=True, timeout=120)
    assert "assayer_check_complete 1" in (tmp_path / "assayer.prom").read_text()
    assert '"schema"' in (tmp_path / "reports/:.json").read_text()
    assert "<html" in (tmp_path / "fleet.html").read_text() and "<testsuite" in (tmp_path / "junit.xml").read_text()


def test_alerts_and_metrics_of_the_document_are_the_real_ones(tmp_path, machines):
    alerts = re.findall(r"- alert: (\w+)", (ROOT / "fleet/alerts.yml").read_text())
    assert set(re.findall(r"^\| `(Assayer\w+)`", DOCUMENT, re.M)) == set(alerts)
    subprocess.run([APP / "assay", "report", machines["studio"], "--metrics", tmp_path / "metrics"], check=True)
    metrics = re.findall(r"^# TYPE (\w+)", (tmp_path / "metrics").read_text(), re.M)
    assert sorted(re.findall(r"^\| `(assayer_\w+)", DOCUMENT, re.M)) == sorted(metrics)


@pytest.fixture
def units(tmp_path):
    """The service and the timer, with the command where it is here."""
    for name in ("assayer-check.service", "assayer-check.timer"):
        text = (ROOT / "packaging/systemd" / name).read_text()
        text = text.replace("/usr/bin/assay", str(APP / "assay"))
        (tmp_path / name).write_text(text.replace("/usr/share/doc/assayer", str(ROOT)))
    return tmp_path


def test_systemd_takes_the_units(units, tmp_path):
    (tmp_path / "run").mkdir()
    environment = {**os.environ, "XDG_RUNTIME_DIR": str(tmp_path / "run")}

    def analyze(*arguments):
        return subprocess.run(["systemd-analyze", "--user", *arguments], env=environment, text=True, check=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout  # fmt: skip

    assert analyze("verify", units / "assayer-check.service", units / "assayer-check.timer") == ""
    # 24 of 100: what is left open is open on purpose.
    analyze("security", "--offline=true", "--threshold=24", units / "assayer-check.service")
