"""Log files and statistics of the real program, as a parent finds them."""

import json
import re
import resource
import signal
from concurrent.futures import ThreadPoolExecutor

import pytest
from conftest import not_sanitized


def log_files(home):
    folder = home / "Tarnex" / "Logs" / "Assayer"
    return {path for path in folder.iterdir() if not path.is_symlink()}


def text_of(home, severity):
    return "".join(p.read_text(errors="replace") for p in sorted(log_files(home)) if f".{severity}." in p.name)


def test_a_file_for_each_severity_and_none_is_touched_again(installation, tmp_path):
    environment = {"LOCALAPPDATA": str(tmp_path), "USERNAME": "somebody"}
    installation.add("good.1")
    installation.enlist("MuxerFactory", "absent")
    assert installation.run("plugins", "60", environment=environment).code == 0
    first = log_files(tmp_path)
    form = r"Assayer\.somebody\.(INFO|WARNING|ERROR)\.\d{8}-\d{6}\.\d+"
    assert len(first) == 3 and all(re.fullmatch(form, path.name) for path in first), first
    before = {path: path.read_bytes() for path in first}
    result = installation.run("plugins", "60", environment=environment)
    assert len(log_files(tmp_path)) == 6 and {path: path.read_bytes() for path in first} == before
    # Warnings only go to the files.
    assert result.of("WARNING") == [] and "Can't find plugin absent" in text_of(tmp_path, "WARNING")
    assert "Can't find plugin absent" not in text_of(tmp_path, "ERROR")


def obstruct(tmp_path):
    (tmp_path / "file").write_text("")
    (tmp_path / "loop").symlink_to(tmp_path / "loop")
    return [tmp_path / "file", tmp_path / "loop", tmp_path / ("long" * 80), tmp_path / ("deep/" * 900)]


def test_without_log_files_the_run_is_the_same(installation, tmp_path):
    installation.add("good.1", "throws-std")
    expected = installation.run("plugins", "60").records(without=["STATISTICS"])
    for place in obstruct(tmp_path):
        result = installation.run("plugins", "60", environment={"LOCALAPPDATA": str(place)})
        assert result.code == 7 and result.records(without=["STATISTICS"]) == expected, result
    result = installation.run("plugins", "60", environment={"LOCALAPPDATA": str(tmp_path), "USERNAME": "u" * 250})
    assert result.code == 7 and result.records(without=["STATISTICS"]) == expected, result


@not_sanitized
def test_no_room_for_log_files(installation, tmp_path):
    installation.add("good.1", "throws-std")
    result = installation.run(
        "plugins",
        "60",
        environment={"LOCALAPPDATA": str(tmp_path)},
        preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0)),
    )
    assert result.code == 7 and result.of("PLUGINS") == ["throws-std"] and len(result.of("STATISTICS")) == 1, result


def test_a_module_sees_the_published_directory(installation, tmp_path):
    installation.add("tells-log-path")
    result = installation.run("plugins", "60", environment={"LOCALAPPDATA": str(tmp_path)})
    assert f"TarnexLogPath={tmp_path}/Tarnex/Logs/Assayer/\n" in result.out, result


@not_sanitized
@pytest.mark.parametrize("name, end", [("segfault", signal.SIGSEGV), ("killed", signal.SIGKILL)])
def test_files_are_complete_up_to_the_culprit(installation, tmp_path, name, end):
    installation.add("good.1", "throws-std", name)
    result = installation.run("plugins", "60", environment={"LOCALAPPDATA": str(tmp_path)})
    assert result.code == -end, result
    for severity in ("ERROR", "WARNING"):
        text = text_of(tmp_path, severity)
        assert "[PLUGINS]throws-std[/PLUGINS]" in text
        assert text.endswith(f"[LOAD_PLUGIN_NAME]{name}[/LOAD_PLUGIN_NAME]\n"), text


def test_simultaneous_runs_have_their_own_files(installation, tmp_path):
    installation.add("good.1", "throws-std")
    with ThreadPoolExecutor(5) as pool:
        runs = [
            pool.submit(installation.run, "plugins", "60", environment={"LOCALAPPDATA": str(tmp_path)})
            for _ in range(5)
        ]
    assert [run.result().code for run in runs] == [7] * 5
    files = [path.read_text() for path in log_files(tmp_path) if ".ERROR." in path.name]
    assert len(files) == 5
    assert all(text.count("[/STATISTICS]") == 1 and text.count("[/LOAD_PLUGIN_NAME]") == 2 for text in files)


TIME = {"CODEC_TIME", "PLUGIN_TIME"}


def statistics(result, phases):
    """The sections, without the times of the phases."""
    [text] = result.of("STATISTICS")
    record = json.loads(text)
    times = record.pop("ASSAYER_WORK_TIME")
    assert set(times) == TIME and all(re.fullmatch(r"\d+\.\d{6}", value) for value in times.values())
    assert {phase for phase, time in times.items() if float(time) > 0} == phases
    return record


def test_statistics_say_what_was_found(installation):
    installation.add("good.1")
    clean = installation.run("plugins", "60")
    assert clean.code == 0 and statistics(clean, {"PLUGIN_TIME"}) == {}
    installation.add_fixture("BadCodecs")
    clean = installation.run("codecs", "60", "FFMPEG_IMPL", "CODEC_ID_GOOD_0")
    assert clean.code == 0 and statistics(clean, {"CODEC_TIME"}) == {}

    installation.add("throws-std", "throws-odd-bytes", "good.2", "throws-long")
    installation.link("/dev/null", "MediaFoundationCodecs")
    installation.enlist("CodecFactory", "MediaFoundationCodecs")
    known = installation.file("known", "Plugins.A: good.2\n")
    good, bad, worse = "CODEC_ID_GOOD_0", "CODEC_ID_ENCODER_THROWS_INT", "CODEC_ID_DECODER_THROWS_INT"
    result = installation.run("all", "60", "FFMPEG_IMPL,NONE_IMPL", f"{good},{bad},{worse}", "-", known)
    assert result.code == 9, result
    record = statistics(result, TIME)
    plugins = record.pop("CORE_PLUGIN_CHECK")
    reasons = plugins.pop("ERROR_INFO")
    assert plugins == {
        "SUCCESS": "OglManager,good.1,BadCodecs,MediaFoundationCodecs",
        "UNSUCCESS": "throws-std,throws-odd-bytes,good.2,throws-long",
        "FF_UNSUCCESS": "MediaFoundationCodecs",
        "ERROR": "throws-std,throws-odd-bytes,good.2,throws-long,MediaFoundationCodecs",
    }
    assert len(reasons) == 10240 and reasons.endswith("xxx")
    assert 'odd "\\\ufffd' in reasons and "good.2: \nTest Error\n" in reasons
    assert record == {
        "Decoder.FFMPEG_IMPL": {good: "YES", worse: "NO"},
        "Encoder.FFMPEG_IMPL": {good: "YES", bad: "NO", worse: "YES"},
    }
