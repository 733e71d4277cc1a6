"""The plugin phase of the real program."""

import os
import re
import socket
import subprocess
import time

import pytest
from conftest import FIXTURES, not_sanitized

LOADED = ("LOADED_PLUGINS", "true")


def load(name):
    return ("LOAD_PLUGIN_NAME", name)


def test_good_modules_are_not_reported_and_shut_down_last_first(installation):
    installation.add("good.1", "floods", "good.2", "throws-in-shutdown")
    result = installation.run("plugins", "60")
    assert result.code == 0, result
    assert result.records() == [load(n) for n in ("good.1", "floods", "good.2", "throws-in-shutdown")] + [LOADED]
    assert result.out == "shut down: good\nshut down: floods\nshut down: good\n", result
    assert "Failed doing a deinitializing handler for throws-in-shutdown: " in "".join(result.of("WARNING"))


FAILURES = {
    "throws-std": "std reason",
    "throws-tarnex": "tarnex reason",
    "throws-int": "int",
    "throws-foreign": "threw",
    "refuses": "refused",
    "describes-nothing": "describes-nothing",
    "no-entry-point": "TarnexModuleVersion",
    "undefined-symbol": "FunctionThatNobodyHas",
    "wrong-version": "version",
}


def test_each_way_to_fail_has_its_own_text(installation):
    installation.add(*FAILURES)
    for alias in ("alias.1", "alias.2"):
        installation.link(installation.directory / "throws-std.so", alias)
        installation.enlist("CodecFactory", alias)
    installation.add("good.9")
    installation.file("not-elf.so", "text" * 100)
    installation.enlist("EffectFactory", "not-elf")
    result = installation.run("plugins", "60")
    assert result.code == 7, result
    expected = {"not-elf": "invalid ELF header", "alias.1": "std reason", "alias.2": "std reason", **FAILURES}
    records = result.records()
    for name, reason in expected.items():
        at = records.index(load(name))
        assert records[at + 1] == ("PLUGINS", name), result
        tag, text = records[at + 2]
        assert tag == "ERROR" and reason in text, (name, text)
        file = "throws-std" if name.startswith("alias") else name
        assert re.search(r"mediacore/\w+\.cpp\(\d+\): Throw in function", text), text
        assert f"Plugin {name}, module {installation.directory}/{file}.so: " in text, text
    assert records[-2:] == [load("good.9"), LOADED]
    assert len(records) == 3 * len(expected) + 2
    assert "shut down: refuses" not in result.out, result


def test_order_of_the_factories_and_a_start_of_opengl_with_its_stop(installation):
    order = ["OglManager", "EffectFactory", "FilterFactory", "CodecFactory", "MuxerFactory", "ParserFactory",
             "AnalyzerFactory"]  # fmt: skip
    for factory in reversed(order[1:]):
        installation.add(f"good.{factory}", factory=factory)
    installation.link(FIXTURES / "Misbehaving.so", "OglManager")
    result = installation.run("plugins", "60")
    assert [name.removeprefix("good.") for name in result.of("LOAD_PLUGIN_NAME")] == order, result
    assert result.out.startswith("OpenGL started\nOpenGL stopped\n"), result


def test_known_missing_tolerated_and_skipped_plugins(installation):
    installation.add("good.1", "throws-std.1", "good.1", factory="CodecFactory")
    installation.add("good.2", factory="MuxerFactory")  # fails: the module has only codecs
    installation.enlist("ParserFactory", "absent")
    installation.link("/dev/null", "MediaFoundationCodecs")
    installation.enlist("CodecFactory", "MediaFoundationCodecs")
    known = installation.file("known", "\ufeffPlugins.A: throws-std.1, nobody\r\n# no\r\n\r\nPlugins.A: absent,,\r\n")
    result = installation.run("plugins", "60", "", "", "", known, "", "good.1")
    assert result.code == 7, result
    assert result.of("WARNING") == ["Can't find plugin absent"], result
    records = result.records()
    # Two plugins have this name; the first is the resume point.
    assert records[:4] == [
        ("PLUGINS", "throws-std.1"),
        ("ERROR", "throws-std.1: \nTest Error\n"),
        load("good.1"),
        load("MediaFoundationCodecs"),
    ], result
    assert records[4][0] == "ERROR" and records[5:7] == [load("good.2"), ("PLUGINS", "good.2")]
    assert records[-1] == LOADED


def test_tolerated_failure_alone(installation):
    installation.link("/dev/null", "MediaFoundationCodecs")
    installation.enlist("CodecFactory", "MediaFoundationCodecs")
    result = installation.run("plugins", "60")
    assert result.code == 10 and result.of("PLUGINS") == [] and len(result.of("ERROR")) == 1, result


def test_unknown_resume_name_selects_nothing(installation):
    installation.add("throws-std")
    assert installation.run("plugins", "60", "", "", "", "", "", "nobody").records() == [LOADED]


@not_sanitized
def test_time_limit_holds_when_nobody_reads_the_full_pipe(installation):
    installation.add("floods")
    started = time.monotonic()
    process = subprocess.Popen(
        [installation.directory / "Assayer", "plugins", "1"], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE
    )
    assert process.wait(timeout=30) == 2
    assert time.monotonic() - started < 5
    process.stderr.close()


def test_nobody_at_the_other_end_of_standard_error(installation):
    installation.add("good.1")
    reading, writing = os.pipe()
    os.close(reading)
    program = [installation.directory / "Assayer", "plugins", "60"]
    assert subprocess.run(program, stdout=subprocess.DEVNULL, stderr=writing, timeout=60).returncode == 0
    os.close(writing)


def test_displays_that_are_gone_or_never_answer(installation):
    installation.add("good.1")
    assert installation.run("plugins", "60", environment={"DISPLAY": ":77"}).code == 0
    with socket.create_server(("127.0.0.1", 0)) as server:
        display = f"127.0.0.1:{server.getsockname()[1] - 6000}"
        result = installation.run("plugins", "1", environment={"DISPLAY": display})
    assert result.code == 2 and result.of("LOADED_PLUGINS") == [], result


@not_sanitized
def test_time_out_of_the_low_32_bits(installation):
    installation.add("hang")
    result = installation.run("plugins", str(2**32))
    assert result.code == 2 and result.seconds < 5, result
    installation.add("good.1")
    installation.write_list("CodecFactory: good.1")
    assert installation.run("plugins", "-1").code == 0


LISTS = {
    "no colon": ("CodecFactory good.1\n", "line 1"),
    "unknown factory": ("# fine\nCodecFactory: good.1\nTeaFactory: earl-grey\n", "line 3"),
    "not UTF-8": (b"CodecFactory: \xff\n", "line 1"),
    "a path": ("\nCodecFactory: a, ../good.1\n", "line 2: unusable name \"../good.1\""),
    "empty": ("", "names no plugin"),
    "no names": ("# CodecFactory: good.1\nCodecFactory: ,\n", "names no plugin"),
}


@pytest.mark.parametrize("case", LISTS)
def test_malformed_plugin_list_is_reported(installation, case):
    text, place = LISTS[case]
    installation.file("plugins.list", text)
    result = installation.run("plugins", "60")
    assert result.code == 4, result
    [message] = result.of("ERROR")
    assert "plugins.list" in message and place in message, message
    assert result.of("LOADED_PLUGINS") == []


def test_impossible_runs_are_reported(installation):
    (installation.directory / "plugins.list").unlink()
    bad = installation.file("bad", "Plugins.A: x\nCodecs.Decoder.A: x\n")
    folder = str(installation.directory)
    for arguments, code, words in [
        (("plugins", "60"), 4, ["plugins.list"]),
        (("tea", "60"), 4, ['"tea"', "plugins", "codecs", "all"]),
        (("plugins", "60", "", "", "", bad), 4, [bad, "line 2"]),
        (("plugins", "60", "", "", "", folder), 4, [folder]),
        (("plugins", "sixty", "", "", "", "/no/such"), 5, ["invalid stoll argument"]),
        (("plugins", "9" * 20), 5, ["stoll argument out of range"]),
        (("codecs", "60", "A"), 3, ["Verifiable codecs list are empty"]),
    ]:
        result = installation.run(*arguments)
        assert result.code == code, result
        [message] = result.of("ERROR")
        assert all(word in message for word in words), (words, message)
        assert ("Can't find path: /no/such" in result.of("WARNING")) == ("/no/such" in arguments), result


def test_arguments_may_have_any_bytes(installation):
    name = b"/no/such/\xff\xed\xa0\x80\xc3\xa4"
    result = installation.run("plugins", "60", "", "", "", name)
    assert result.of("WARNING")[0] == "Can't find path: " + os.fsdecode(name), result
    installation.file(os.fsdecode(b"list-\xff"), "Plugins.A: good.1\n")
    installation.add("good.1")
    result = installation.run("plugins", "60", "", "", "", os.fsencode(installation.directory) + b"/list-\xff")
    assert result.of("PLUGINS") == ["good.1"], result
