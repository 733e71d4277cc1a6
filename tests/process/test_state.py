"""What checks leave behind: side by side, killed, on a disk that is full."""

import json
import os
import random
import subprocess
import time

import pytest
from conftest import APP, not_sanitized
from test_assay import app, assay, home  # noqa: F401

CHECKS = [["plugins"], ["plugins", "--plugin", "segfault.1"], ["all", "--plugin", "*", "--codec", "CODEC_ID_GOOD_1"],
          ["codecs", "--codec", "CODEC_ID_GOOD_1"]]  # fmt: skip


def verdicts(path):
    return {(item["kind"], item["name"]): item["verdict"] for item in json.loads(path.read_text())["items"]}


@not_sanitized
def test_checks_side_by_side_and_killed_leave_a_true_state(assay, app, installation, home):  # noqa: F811
    chance = random.Random(1)
    for _ in range(2):
        checks = [assay.start(*CHECKS[i % len(CHECKS)], *app, "--quiet") for i in range(20)]
        for check in chance.sample(checks, 10):
            time.sleep(chance.random() / 10)
            check.kill()
        for check in checks:
            check.communicate(timeout=120)
    assay.run("all", *app, "--plugin", "*", "--codec", "CODEC_ID_GOOD_1", "--quiet", status=1)
    state = (home / ".local/state/assayer/report.json").resolve().parents[1]
    quiet = verdicts(home / ".local/state/assayer/report.json")
    assert verdicts(state / "known.json").items() >= quiet.items()
    for report in (state / "reports").glob("*.json"):
        known = {key: verdict for key, verdict in verdicts(report).items() if verdict != "not-reached"}
        assert known.items() <= quiet.items(), report
    left = {path.name for path in (state / "reports").iterdir() if not path.name.endswith((".json", ".json.lists"))}
    assert not left and {path.name for path in state.iterdir()} <= {"reports", "known.json", "lock", "open.json"}


@not_sanitized
def test_a_state_that_cannot_be_written_costs_no_verdict(assay, app, home):  # noqa: F811
    (home / ".local").mkdir()
    (home / ".local/state").write_text("a file where the folder should be")
    text = assay.run("plugins", *app, status=1)
    assert "crashed   segfault.1" in text and "this check's report can't be kept" in text
    text = assay.run("plugins", *app, "--report", home / ".local/state/report.json", status=3)
    assert "can't write" in text


@not_sanitized
@pytest.mark.skipif(os.geteuid() != 0, reason="a small disk has to be mounted")
def test_a_full_disk_costs_no_verdict(assay, app, home, tmp_path):  # noqa: F811
    disk = tmp_path / "disk"
    disk.mkdir()
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=16k", "none", disk], capture_output=True).returncode:
        pytest.skip("nothing can be mounted here")
    try:
        assay.environment["XDG_STATE_HOME"] = str(disk)
        text = assay.run("plugins", *app, status=1)
        assert "crashed   segfault.1" in text and "No space left on device" in text
        text = assay.run("plugins", *app, "--report", disk / "report.json", status=3)
        assert "crashed   segfault.1" in text and "report.json" in text
        assert not list(disk.glob("*.lists*")) and not list(disk.glob("report.json*"))
    finally:
        subprocess.run(["umount", disk], check=True)


def test_a_folder_of_trusted_modules_is_what_hosts_list(assay, app, home):  # noqa: F811
    """Bundles without a binary are specifications and presets, which hosts need too."""
    bundles = home / "lv2"
    plugin = "<urn:x> a <http://lv2plug.in/ns/lv2core#Plugin> ; <http://lv2plug.in/ns/lv2core#binary> <{}> ."
    for name, manifest in {"spec": "<urn:s> a <http://lv2plug.in/ns/lv2core#Specification> .", "unchecked": plugin.format("x.so")}.items():
        (bundles / f"{name}.lv2").mkdir(parents=True)
        (bundles / f"{name}.lv2/manifest.ttl").write_text(manifest)
    (bundles / "unchecked.lv2/x.so").write_bytes((APP / "libTarnexMediaCore.so").read_bytes())
    assay.environment["LV2_PATH"] = str(bundles)
    trusted = ["trusted", *app[:2], "--folder", home / "trusted"]
    for _ in range(2):
        text = assay.run(*trusted, status=3)
        assert f"export LV2_PATH={home}/trusted/lv2\n" in text and "nothing is known" in text
        links = sorted(path.name for path in (home / "trusted/lv2").iterdir())
        assert links == [".assayer-trusted", "spec.lv2"]
    listed = subprocess.run(["lv2ls"], env={**os.environ, "LV2_PATH": str(home / "trusted/lv2")}, text=True,
                            capture_output=True, check=True)  # fmt: skip
    assert "urn:x" not in listed.stdout
    (home / "trusted/ladspa/.assayer-trusted").unlink()
    (home / "trusted/ladspa/mine.so").write_text("")
    assert "holds other files" in assay.run(*trusted, status=3)


@not_sanitized
def test_what_was_open_when_the_machine_stopped_comes_last_and_alone(assay, app, installation, home):  # noqa: F811
    victim = "crashes-if-spoiled.1"
    installation.add("spoils.1", victim, "good.2")

    def check_after_freeze(names, *options):
        """A check of the boot after the one that stopped: verdicts, notes, and whether the file is still there."""
        file = (home / ".local/state/assayer/report.json").resolve().parents[1] / "open.json"
        file.write_text(json.dumps({"boot": "earlier", "depth": "exercise", "names": names}))
        assay.run("plugins", *app, *options, status=1)
        report = json.loads((home / ".local/state/assayer/report.json").read_text())
        return {item["name"]: item for item in report["items"]}, "\n".join(report["notes"]), file.exists()

    assay.run("plugins", *app, status=1)
    items, notes, is_kept = check_after_freeze([victim, "segfault.1"])
    assert (items[victim]["verdict"], items["segfault.1"]["verdict"]) == ("good", "crashed")
    assert f"{victim}, segfault.1; they come last" in notes and not is_kept
    items, notes, is_kept = check_after_freeze(["good.2"], "--known")
    assert (items["good.2"]["verdict"], items["good.2"]["reason"]) == ("crashed", "the machine stopped")
    assert "good.2; it isn't touched now" in notes and is_kept
    items, notes, is_kept = check_after_freeze(["good.2"])
    assert items["good.2"]["verdict"] == "good" and not is_kept
