"""The command over installations with modules that misbehave."""

import fcntl
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import time
from pathlib import Path

import pytest
from conftest import APP, FIXTURES, not_sanitized

IMPL = "FFMPEG_IMPL"
CODECS = ["GOOD_1", "DECODER_SEGFAULT", "ENCODER_THROWS_TARNEX"]
KEYS = {"kind", "name", "factory", "interface", "plugin", "id", "title", "depth", "coder", "implementation",
        "codec", "input", "file", "verdict", "reason", "text", "remarks", "seconds", "phase", "carried", "accepted",
        "checked", "package", "company", "spoils", "repro"}  # fmt: skip
TOP_KEYS = {"schema", "complete", "problem", "notes", "started", "seconds", "program", "machine", "installation",
            "options", "environment", "items", "runs", "totals", "ground", "bad_end"}  # fmt: skip


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
    lines = assay.start("all", *app, "--plugin", "*", "--codec", codecs, "--events", "--log", home / "log").communicate()[0]
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
    counts = {"exercise": {}}
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
    assert re.search(r"crashed +segfault.1 +SIGSEGV", assay.run("report", one, status=1))
    for reports in ([one], [one, two, one]):
        assay.run("report", *reports, "--html", home / "page.html", "--junit", home / "junit.xml")
        page = (home / "page.html").read_text()
        assert page.count('"source"') == len(reports) and "/*DATA*/" not in page and ".js*/" not in page
        assert (home / "junit.xml").read_text().count('name="segfault.1"') == len(reports)


@not_sanitized
def test_accepted_items_count_apart(assay, app, installation, home):
    accept = home / "accepted"
    accept.write_text("# known\nsegfault.* crashed\nthrows-odd-bytes.1\nnone\n")
    text = " ".join(assay.run("plugins", *app, "--accept", accept).split())
    assert "2 accepted" in text and "accepted:4: nothing that was checked is called none" in text
    assert assay.verdicts()["segfault.1"] == "crashed"
    assert {item["name"] for item in assay.report()["items"] if item["accepted"]} == \
        {"segfault.1", "throws-odd-bytes.1"}  # fmt: skip
    saved, newest = home / "saved.json", home / ".local/state/assayer/report.json"
    saved.write_text(newest.read_text())
    events = assay.start("plugins", *app, "--accept", accept, "--events").communicate()[0].splitlines()
    assert [json.loads(line)["accepted"] for line in events if "segfault.1" in line] == [True]

    accept.write_text("segfault.1 hung\n")
    assay.run("plugins", *app, "--accept", accept, status=1)
    assert not any(item["accepted"] for item in assay.report()["items"])
    assay.run("plugins", *app, "--accept", home, status=3)
    assert "2 accepted" in assay.start("report", saved).communicate()[0]
    assert " accepted" not in assay.start("report", saved, "--accept", accept).communicate()[0]

    installation.add("abort.1")
    assay.run("plugins", *app, status=1)
    assert "1 worse, 0 better" in assay.run("compare", saved, newest, status=1)
    accept.write_text("abort.*\nnone\n")
    text = assay.run("compare", saved, newest, "--accept", accept)
    assert "1 worse but accepted" in text and "warning: " in text


def test_metrics_are_of_one_report(assay, app, home):
    assay.run("plugins", *app, "--plugin", "good.1", "--quiet")
    report, metrics = home / ".local/state/assayer/report.json", home / "assayer.prom"
    assay.run("report", report, "--metrics", metrics)
    text = metrics.read_text()
    assert 'assayer_items{kind="plugin",verdict="good"} 1' in text and "assayer_check_complete 1" in text
    assert "one report" in assay.run("report", report, report, "--metrics", metrics, status=2)
    assert metrics.read_text() == text


def test_list_shows_what_would_be_checked(assay, app, installation):
    shutil.copy(APP / "assayer-exercise", installation.directory)
    installation.add_fixture("Filter", factory="FilterFactory")
    installation.add("odd.1", factory="FilterFactory")
    lines = assay.run("list", *app).splitlines()
    assert lines[:3] == ["LADSPA (FilterFactory)", "  Filter", "    filter"]
    assert lines[3] == "  odd.1" and lines[4].startswith("    can't be listed: ") and "has no entry point" in lines[4]
    assert lines[5:9] == ["own (CodecFactory)", "  good.1", "  segfault.1", "  throws-odd-bytes.1"]
    assert lines[10:12] == ["unknown (OglManager)", "  OglManager (no file)"]
    assert f"Decoder.{IMPL}" in lines and f"Encoder.{IMPL}" in lines and "  CODEC_ID_GOOD_0" in lines
    (installation.directory / "assayer-list").unlink()
    listing = json.loads(assay.run("list", "--json", *app, status=3).splitlines()[0])
    items = {item["name"]: item for item in listing["items"]}
    assert not listing["complete"] and len(listing["problems"]) == 1
    assert items["Filter/filter"] == {"kind": "exercise", "name": "Filter/filter", "plugin": "Filter", "id": "filter",
                                      "interface": "LADSPA", "depth": "exercise", "verdict": "not-reached"}  # fmt: skip


@not_sanitized
def test_single_files_are_checked_and_leave_nothing(assay, home, tmp_path):
    bundle = tmp_path / "odd.lv2"
    bundle.mkdir()
    shutil.copy(FIXTURES / "Filter.so", tmp_path / "gain.so")
    shutil.copy(FIXTURES / "Misbehaving.so", bundle / "segfault.1.so")
    (bundle / "manifest.ttl").write_text("<urn:a> a <http://lv2plug.in/ns/lv2core#Plugin> ; "
                                         "<http://lv2plug.in/ns/lv2core#binary> <segfault.1.so> .")  # fmt: skip
    (tmp_path / "text.so").write_text("no module")
    temporary = tmp_path / "tmp"
    temporary.mkdir()
    assay.environment["TMPDIR"] = str(temporary)
    files = ["gain.so", "./gain.so", "odd.lv2/", "text.so", "gone.clap"]
    lines = assay.run("plugins", "--events", *files, status=1, cwd=tmp_path).splitlines()
    events = [json.loads(line) for line in lines if line.startswith("{")]
    items = {item["name"]: item for item in events if "name" in item}
    assert {name: item["verdict"] for name, item in items.items()} == {
        "gain": "good", "gain/filter": "good", "odd": "failed", "text.so": "failed", "gone.clap": "failed"}  # fmt: skip
    assert items["text.so"]["reason"] == "not an ELF file" and "has no entry point" in items["odd"]["reason"]
    assert items["odd"]["repro"] == [str(APP / "assay"), "plugins", str(bundle)]
    assert not list(temporary.glob("assay*")) and not list(home.iterdir())


def test_a_check_collects_by_itself(assay, home, tmp_path):
    modules, own = tmp_path / "modules", home / ".local/share/assayer/app"
    modules.mkdir()
    shutil.copy(FIXTURES / "Filter.so", modules / "first.so")
    assay.run("collect", modules)
    shutil.copy(FIXTURES / "Filter.so", modules / "second.so")
    (modules / "first.so").unlink()
    assert " linked, 1 removed" in assay.run("plugins", "--plugin", "second")
    directory = os.open(own, os.O_RDONLY)
    fcntl.flock(directory, fcntl.LOCK_SH)  # as another check does
    (modules / "third.so").symlink_to(FIXTURES / "Filter.so")
    assert "another check uses" in assay.run("plugins", "--plugin", "second")
    assert "being checked" in assay.run("collect", status=3)
    os.close(directory)
    assert (own / "second.so").is_symlink() and not (own / "third.so").exists()

    other = Assay(tmp_path / "none")  # can't be made, by root neither
    (tmp_path / "none").write_text("")
    text = other.run("plugins", "--plugin", "FfmpegMuxers", "--report", home / "report")
    assert f"checking {APP} (the command's" in text


def test_collect_makes_and_renews_an_installation_of_ones_own(assay, home, tmp_path):
    source, modules, own = tmp_path / "source", tmp_path / "modules", home / ".local/share/assayer/app"
    shutil.copytree(APP, source, symlinks=True)
    modules.mkdir()
    shutil.copy(FIXTURES / "Filter.so", modules / "plain.so")
    assay.folder = source
    assert "~/.local/share/assayer/app (your own, renewed" in assay.run("plugins", "--plugin", "FfmpegMuxers")
    assert not (own / "Assayer").is_symlink() and (own / "FfmpegMuxers.so").is_symlink()
    assert "1 linked" in assay.run("collect", modules)
    assert "nothing changed" in assay.run("collect", modules)
    assert "~/.local/share/assayer/app (your own, copied" in assay.run("plugins", "--plugin", "FfmpegMuxers")
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


@pytest.mark.parametrize("number", [signal.SIGHUP, signal.SIGINT, signal.SIGTERM, signal.SIGKILL])
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
    good = (home / ".local/state/assayer/report.json").resolve()
    text = good.read_text()
    (home / "cut.json").write_text(text[:-200])
    (home / "other.json").write_text(text.replace('"schema": 2', '"schema": 1'))
    (home / "folder").mkdir()
    for arguments, status, expected in [
        (["report", home / "none.json"], 3, "none.json: No such file"),
        (["report", home / "cut.json"], 3, "cut.json: not a whole report"),
        (["compare", good, home / "other.json"], 3, "other.json: a report of schema 1"),
        (["report", home / "folder"], 3, "folder: Is a directory"),
        (["report", good, "--html", home / "none/page.html"], 3, "can't write"),
        (["compare", good], 2, "REPORT"),
        (["plugins", "--app", home], 3, f"no Assayer in {home}"),
        (["plugins", *app, "--plugin", "good.1,segfalt.1"], 2, 'did you mean segfault.1'),
        # One module keeps the core from starting, so this is found late.
        (["codecs", *app, "--codec", "good_1x"], 3, 'no codec "good_1x" here'),
        (["codecs", *app, "--implementation", "MINE"], 3, 'no implementation "MINE" here'),
        (["codecs", "--app", APP, "--codec", "aacc"], 2, 'no codec "aacc"'),
        (["plugins", *app, "--known", home / "cut.json"], 3, "cut.json"),
        (["plugins", *app, "--report", "/dev/null"], 3, "can't write /dev/null"),
        (["plugins", *app, "--log", home / "none/log"], 3, "can't write"),
        (["plugins", "--jobs", "0"], 2, "--jobs"),
        (["plugins", "--odd"], 2, "--odd"),
        (["collect", home / "none"], 3, "not a directory"),
        ([], 2, "Which command"),
    ]:
        assert expected in assay.run(*arguments, status=status), arguments
    assert good.read_text() == text


def test_a_report_that_cannot_be_written_leaves_the_old_one(assay, app, home):
    assay.run("plugins", *app, "--plugin", "good.1")
    state = home / ".local/state/assayer"
    before = {path: path.read_bytes() for path in state.rglob("*") if path.is_file()}

    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

    check = ["plugins", *app, "--plugin", "good.1"]
    assert "can't write" in assay.run(*check, preexec_fn=limit), "nobody asked for that report"
    assert "can't write" in assay.run(*check, "--report", home / "report.json", status=3, preexec_fn=limit)
    assert {path: path.read_bytes() for path in state.rglob("*") if path.is_file()} == before
