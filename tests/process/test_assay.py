"""The command over installations with modules that misbehave."""

import json
import os
import resource
import shutil
import signal
import subprocess
import time
from pathlib import Path

import pytest
from conftest import APP, not_sanitized

IMPL = "FFMPEG_IMPL"
CODECS = ["GOOD_1", "DECODER_SEGFAULT", "ENCODER_THROWS_TARNEX"]
KEYS = {"kind", "name", "factory", "coder", "implementation", "codec", "input", "file", "verdict", "reason",
        "text", "seconds", "phase", "carried", "company", "spoils", "repro"}  # fmt: skip
TOP_KEYS = {"schema", "complete", "problem", "notes", "started", "seconds", "program", "machine", "installation",
            "options", "environment", "items", "runs", "totals"}  # fmt: skip


class Assay:
    """The command of an installation, in a home of its own."""

    def __init__(self, home, folder=APP):
        self.home, self.folder = home, folder
        self.environment = {key: value for key, value in os.environ.items() if not key.startswith("XDG_")}
        self.environment.update(HOME=str(home), FREI0R_PATH="/none", LADSPA_PATH="/none", VAMP_PATH="/none",
                                LV2_PATH="/none")  # fmt: skip

    def start(self, *arguments, **options):
        return subprocess.Popen([self.folder / "assay", *arguments], env=self.environment, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                **options)  # fmt: skip

    def run(self, *arguments, status=0, **options):
        process = self.start(*arguments, **options)
        out, err = process.communicate(timeout=120)
        assert process.returncode == status, f"{arguments}: {process.returncode}\n{out}\n{err}"
        return out + err

    def report(self):
        return json.loads((self.home / ".local/state/assayer/report.json").read_text())

    def verdicts(self):
        return {item["name"]: item["verdict"] for item in self.report()["items"]}


@pytest.fixture
def home(tmp_path):
    (tmp_path / "home").mkdir()
    return tmp_path / "home"


@pytest.fixture
def assay(home):
    return Assay(home)


@pytest.fixture
def app(installation):
    """Arguments that choose an installation with the command's helper and a few modules."""
    shutil.copy(APP / "assayer-list", installation.directory)
    installation.add("good.1", "segfault.1", "throws-odd-bytes.1")
    installation.add_fixture("BadCodecs")
    return ["--app", installation.directory, "--item-time", "5"]


@not_sanitized
def test_a_check_its_report_and_its_events(assay, app, home):
    codecs = ",".join(f"CODEC_ID_{name}" for name in CODECS)
    lines = assay.start("all", *app, "--codec", codecs, "--events", "--log", home / "log").communicate()[0]
    *items, last = map(json.loads, lines.splitlines())
    report = assay.report()
    assert set(report) == TOP_KEYS and all(set(item) == KEYS for item in report["items"])
    assert sorted(items, key=lambda item: item["name"]) == sorted(report["items"], key=lambda item: item["name"])
    assert last == {"complete": True, "totals": report["totals"], "status": 1}
    assert assay.verdicts() == {
        "OglManager": "missing", "good.1": "good", "segfault.1": "crashed", "throws-odd-bytes.1": "failed",
        "BadCodecs": "good",
        f"Decoder.{IMPL}.CODEC_ID_GOOD_1": "good", f"Encoder.{IMPL}.CODEC_ID_GOOD_1": "good",
        f"Decoder.{IMPL}.CODEC_ID_DECODER_SEGFAULT": "crashed",
        f"Encoder.{IMPL}.CODEC_ID_DECODER_SEGFAULT": "good",
        f"Encoder.{IMPL}.CODEC_ID_ENCODER_THROWS_TARNEX": "failed",
    }  # fmt: skip
    counts = {}
    for item in report["items"]:
        kind = counts.setdefault(item["kind"], {})
        kind[item["verdict"]] = kind.get(item["verdict"], 0) + 1
    assert report["totals"] == counts
    crashed = next(item for item in report["items"] if item["name"] == "segfault.1")
    assert crashed["reason"] == "SIGSEGV" and crashed["file"]["build_id"]
    assert subprocess.run(crashed["repro"], capture_output=True, cwd=home).returncode == -signal.SIGSEGV
    assert "[LOAD_PLUGIN_NAME]segfault.1[/LOAD_PLUGIN_NAME]" in (home / "log").read_text(errors="replace")


@not_sanitized
def test_known_items_are_spared_until_they_change(assay, app, installation, home):
    assay.run("plugins", *app, status=1)
    report = home / ".local/state/assayer/report.json"
    text = assay.run("plugins", *app, "--known", report, "--log", home / "log", status=1)
    assert "known from before" in text
    items = {item["name"]: item for item in assay.report()["items"]}
    assert items["segfault.1"]["carried"] and not items["throws-odd-bytes.1"]["carried"]
    assert "[LOAD_PLUGIN_NAME]segfault" not in (home / "log").read_text(errors="replace")
    repro = items["segfault.1"]["repro"]
    assert subprocess.run(repro, capture_output=True, cwd=home).returncode == -signal.SIGSEGV, "its list went"
    os.utime(installation.directory / "segfault.1.so")
    assay.run("plugins", *app, "--known", report, status=1)
    assert not any(item["carried"] for item in assay.report()["items"])


@not_sanitized
def test_reports_are_compared_and_rendered(assay, app, installation, home):
    def check(name):
        assay.run("plugins", *app, "--report", home / name, "--quiet", status=1)
        return home / name

    one = check("one.json")
    shutil.copy(installation.directory / "good.1.so", installation.directory / "segfault.1.so")
    shutil.copy(installation.directory / "BadCodecs.so", installation.directory / "segfault.1.so")
    installation.add("abort.1")
    two = check("two.json")
    assert "1 worse, 1 better" in assay.run("compare", one, two, status=1)
    assert "abort.1: not there -> crashed (SIGABRT)" in assay.run("compare", one, two, status=1)
    assert "0 worse, 0 better" in assay.run("compare", one, one)
    assert "segfault.1: SIGSEGV" in assay.run("report", one)
    for reports in ([one], [one, two, one]):
        assay.run("report", *reports, "--html", home / "page.html", "--junit", home / "junit.xml")
        page = (home / "page.html").read_text()
        assert page.count('"schema":1') == len(reports) and "/*REPORTS*/" not in page
        assert (home / "junit.xml").read_text().count('name="segfault.1"') == len(reports)


def test_list_shows_what_would_be_checked(assay, app):
    lines = assay.run("list", *app).splitlines()
    assert lines[:7] == ["OglManager", "  OglManager (no file)", "CodecFactory", "  good.1", "  segfault.1",
                         "  throws-odd-bytes.1", "  BadCodecs"]  # fmt: skip
    assert f"Decoder.{IMPL}" in lines and f"Encoder.{IMPL}" in lines and "  CODEC_ID_GOOD_0" in lines


def test_collect_makes_and_renews_an_installation_of_ones_own(assay, home, tmp_path):
    source, modules, own = tmp_path / "source", tmp_path / "modules", home / ".local/share/assayer/app"
    shutil.copytree(APP, source, symlinks=True)
    modules.mkdir()
    shutil.copy(APP / "FfmpegMuxers.so", modules / "plain.so")
    assay.folder = source
    assert "the command's" in assay.run("plugins", "--plugin", "FfmpegMuxers")
    assert "0 linked" in assay.run("collect", modules)
    assert not (own / "Assayer").is_symlink() and (own / "FfmpegMuxers.so").is_symlink()
    assert "nothing changed" in assay.run("collect", modules)
    assert f"{own} (your own, copied" in assay.run("plugins", "--plugin", "FfmpegMuxers")
    assert "your own is a copy" in Assay(home).run("plugins", "--plugin", "FfmpegMuxers")

    (own / "Mine.so").symlink_to(APP / "FfmpegParsers.so")
    samples = own / "resources/codecSamples"
    (samples / "CODEC_ID_ANSI.ans").write_text("mine")
    gone, *kept = sorted(path.name for path in (source / "resources/codecSamples").iterdir())
    (source / "resources/codecSamples" / gone).unlink()
    lists = (own / "plugins.list").read_text()
    (own / "plugins.list").write_text(lists.replace("ParserFactory:", "ParserFactory: Mine,"))
    os.utime(source / "Assayer")
    (source / "NvdecCodecs.so").unlink()
    lists = (source / "plugins.list").read_text()
    (source / "plugins.list").write_text(lists.replace("NvdecCodecs, ", ""))
    assert "renewed" in assay.run("plugins", "--plugin", "Mine")
    assert "copied" in assay.run("plugins", "--plugin", "Mine")
    assert int((own / "Assayer").stat().st_mtime) == int((source / "Assayer").stat().st_mtime)
    assert not (own / "NvdecCodecs.so").is_symlink() and "Nvdec" not in (own / "plugins.list").read_text()
    assert sorted(path.name for path in samples.iterdir()) == sorted([*kept, "CODEC_ID_ANSI.ans"])
    assert sorted(path.name for path in (source / "resources/codecSamples").iterdir()) == kept

    (home / "full").mkdir()
    (home / "full/letter").write_text("mine")
    assert "neither empty" in assay.run("collect", "--into", home / "full", modules, status=3)
    assert [path.name for path in (home / "full").iterdir()] == ["letter"]


def processes_in(directory):
    """The processes whose program lies there."""
    found = []
    for process in Path("/proc").glob("[0-9]*"):
        try:
            found += [process.name] if str(directory) in os.readlink(process / "exe") else []
        except OSError:
            pass
    return found


def wait_for(condition):
    end = time.monotonic() + 20
    while not condition():
        assert time.monotonic() < end, "it didn't come"
        time.sleep(0.02)


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM, signal.SIGKILL])
def test_a_check_that_is_stopped(assay, installation, home, number):
    installation.add("good.1", "hang.1")
    process = assay.start("plugins", "--app", installation.directory, "--log", home / "log")
    wait_for(lambda: (home / "log").exists() and "]hang.1[" in (home / "log").read_text())
    process.send_signal(number)
    process.communicate(timeout=20)
    wait_for(lambda: not processes_in(installation.directory))
    if number == signal.SIGKILL:
        assert not (home / ".local/state/assayer/report.json").exists()
        return
    assert process.returncode == 128 + number
    assert not assay.report()["complete"] and assay.verdicts()["hang.1"] == "not-reached"


def test_mistakes_are_told_by_name(assay, app, installation, home):
    assay.run("plugins", "--app", APP, "--plugin", "FfmpegMuxers", "--quiet")
    good = home / ".local/state/assayer/report.json"
    text = good.read_text()
    (home / "cut.json").write_text(text[:-200])
    (home / "other.json").write_text(text.replace('"schema": 1', '"schema": 2'))
    (home / "folder").mkdir()
    for arguments, status, expected in [
        (["report", home / "none.json"], 3, "none.json: No such file"),
        (["report", home / "cut.json"], 3, "cut.json: not a whole report"),
        (["compare", good, home / "other.json"], 3, "other.json: a report of schema 2"),
        (["report", home / "folder"], 3, "folder: Is a directory"),
        (["report", good, "--html", home / "none/page.html"], 3, "can't write"),
        (["compare", good], 2, "REPORT"),
        (["plugins", "--app", home], 3, f"no Assayer in {home}"),
        (["plugins", *app, "--plugin", "good.1,nobody"], 2, '"nobody" here. There are: BadCodecs,'),
        (["codecs", *app, "--codec", "CODEC_ID_NONE"], 2, '"CODEC_ID_NONE" here. There are: CODEC_ID_'),
        (["codecs", *app, "--implementation", "MINE"], 2, f"There are: {IMPL}"),
        (["plugins", *app, "--known", home / "cut.json"], 3, "cut.json"),
        (["plugins", *app, "--report", "/dev/null"], 3, "can't write /dev/null"),
        (["plugins", *app, "--log", home / "none/log"], 3, "can't write"),
        (["plugins", "--jobs", "0"], 2, "--jobs"),
        (["plugins", "--odd"], 2, "--odd"),
        (["collect", home / "none"], 3, "not a directory"),
        ([], 2, "subcommand"),
    ]:
        assert expected in assay.run(*arguments, status=status), arguments
    assert good.read_text() == text


def test_a_report_that_cannot_be_written_leaves_the_old_one(assay, app, home):
    assay.run("plugins", *app, "--plugin", "good.1")
    state = home / ".local/state/assayer"
    before = {path: path.read_bytes() for path in state.rglob("*") if path.is_file()}

    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

    assert "can't write" in assay.run("plugins", *app, "--plugin", "good.1", status=3, preexec_fn=limit)
    assert {path: path.read_bytes() for path in state.rglob("*") if path.is_file()} == before
