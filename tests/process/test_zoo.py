"""Modules and coders that harm their own process: what a parent sees of each."""

import json
import os
import re
import subprocess
import time
from dataclasses import dataclass
from signal import SIGABRT, SIGFPE, SIGSEGV

import pytest
from conftest import SANITIZED
from parent import Parent, Run

IMPL = "FFMPEG_IMPL"
CLOSED = ("ERROR", "Assayer closed by WatchDog!")
LOCALE = "de_DE.UTF-8"
# The last record names the culprit, or tells of the watch-dog, or ends a complete run. NO_CLAIM: it may
# be any, as long as the run doesn't claim success.
NAME, TOLD, DONE, NO_CLAIM = "name", "told", "done", "no claim"
FOUND = "the status of a finding"
BUSY = 5  # seconds; other tests take the cores
MEMORY = "--as=600000000"  # bytes; a clean run takes less than a third

# Status, last record, most seconds of a quiet machine. If that is 2, the time-out is 1 second.
ZOO = {
    "throws": (FOUND, DONE, 10),
    "throws-in-constructor": (-SIGABRT, NAME, 10),
    "throws-foreign": (FOUND, DONE, 10),
    "calls-core": (0, DONE, 10),
    "segfault": (-SIGSEGV, NAME, 10),
    "segfault-in-constructor": (-SIGSEGV, NAME, 10),
    "abort": (-SIGABRT, NAME, 10),
    "stack-overflow": (-SIGSEGV, NAME, 10),
    "division-by-zero": (-SIGFPE, NAME, 10),
    "thread-throws": (-SIGABRT, NAME, 10),
    "exit": (0, NAME, 10),
    "exit-at-once": (0, NAME, 10),
    "quick-exit": (0, NAME, 10),
    "hang": (2, TOLD, 2),
    "hang-in-constructor": (2, TOLD, 2),
    "hang-blocked": (2, TOLD, 2),
    "hang-then-segfault": (2, TOLD, 2),
    "hang-then-bus-error": (2, TOLD, 2),
    "hang-then-divide-by-zero": (2, TOLD, 2),
    "hang-then-trap": (2, TOLD, 2),
    "hang-then-abort": (2, TOLD, 2),
    "hang-then-hang": (2, TOLD, 2),
    "hang-until-exit": (2, TOLD, 2),
    "hang-in-destructor": (2, TOLD, 2),
    "takes-signals-hangs": (2, TOLD, 2),
    "keeps-memory-hangs": (2, NAME, 2),  # no memory is left for the watch-dog's record
    "keeps-memory": ((5, -SIGABRT, -SIGSEGV), NO_CLAIM, 10),
    "exhausts-memory": (FOUND, DONE, 10),
    "closes-stderr": (0, NAME, 10),
    "comma-locale": (0, DONE, 10),
    "leaves-directory": (0, DONE, 10),
    "takes-signals": (0, DONE, 10),
    "floods-stdout": (0, DONE, 10),
    "leaves-child": (0, DONE, 10),
}
PHASES = ("plugins", "codecs", "pool")
# The same in the initialisation of modules of other interfaces, which only pass it on.
FOREIGN = ("clap", "vst3")
FOREIGN_FAULTS = ("throws", "throws-foreign", "segfault", "abort", "exit", "hang", "hang-blocked")


def makes_sense(fault, phase):
    if SANITIZED and "memory" in fault:
        return False  # the sanitizer itself needs more than the limit
    if SANITIZED == "thread" and ZOO[fault][0] != 0:
        return False  # the sanitizer turns signals into reports, or delays them
    if SANITIZED == "thread" and (fault, phase) == ("exit", "plugins"):
        return False  # it calls an exit inside std::call_once an error
    if fault == "keeps-memory-hangs":
        return phase != "pool"  # other tests end the process first
    return phase == "plugins" or "constructor" not in fault


CASES = [(fault, phase) for phase in PHASES for fault in ZOO if makes_sense(fault, phase)]
CASES += [(fault, interface) for interface in FOREIGN for fault in FOREIGN_FAULTS if makes_sense(fault, "plugins")]


# Makes the address sanitizer leave signals alone and ignore leaks: a process that is ended has some.
PLAIN_ENDS = "handle_segv=0:handle_sigfpe=0:handle_abort=0:detect_leaks=0"


@dataclass
class Sight(Run):
    seconds: float
    output: int  # bytes
    left_children: bool


def look(installation, arguments, fault, environment):
    """Waits for the program, but not for children of it that keep its pipes open."""
    limited = ["prlimit", MEMORY] if "memory" in fault else []
    with subprocess.Popen(["wc", "-c"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as sink:
        started = time.monotonic()
        with subprocess.Popen([*limited, installation.directory / "Assayer", *arguments], stdin=subprocess.DEVNULL,
                              stdout=sink.stdin, stderr=subprocess.PIPE, env={**os.environ, **environment},
                              start_new_session=True) as process:  # fmt: skip
            try:
                process.wait(30)
            finally:
                seconds = time.monotonic() - started
                left_children = Parent.end_group(process)
            text = process.stderr.read().decode(errors="replace")
        return Sight(process.returncode, text, seconds, int(sink.communicate()[0]), left_children)


def codec_id(fault):
    return f"CODEC_ID_DECODER_{fault.upper().replace('-', '_')}"


def record_of(fault, phase):
    if phase in FOREIGN:
        return ("LOAD_PLUGIN_NAME", f"{fault}.{phase}")
    if phase == "plugins":
        return ("LOAD_PLUGIN_NAME", fault)
    return ("TEST_CODEC", f"Decoder.{IMPL}.{codec_id(fault)}")


def look_at(fault, phase, folder, installation):
    """Runs the fault once, between good modules or codecs."""
    seconds = "1" if ZOO[fault][2] == 2 else "60"
    environment = {"LOCPATH": str(folder), "LOCALAPPDATA": str(folder / "logs")}
    if ZOO[fault][1] != DONE:
        environment["ASAN_OPTIONS"] = PLAIN_ENDS
    if phase in ("codecs", "pool"):
        installation.add_fixture("BadCodecs")
        ids = f"CODEC_ID_GOOD_0,{codec_id(fault)},CODEC_ID_GOOD_1"
        arguments = ["codecs", seconds, IMPL, ids, *("-" * 5), "1" if phase == "pool" else "-"]
        return look(installation, arguments, fault, environment)
    if phase == "plugins":
        installation.add("good.1", fault, "good.2")
    else:
        installation.add_foreign(phase, "good.1", fault, "good.2")
    return look(installation, ["plugins", seconds], fault, environment)


@pytest.mark.parametrize("fault, phase", CASES)
def test_what_the_parent_sees(installation, tmp_path, fault, phase):
    if fault == "comma-locale":
        subprocess.run(["localedef", "-i", "de_DE", "-f", "UTF-8", tmp_path / LOCALE], check=True)
    sight = look_at(fault, phase, tmp_path, installation)
    status, last, most = ZOO[fault]
    found = 8 if phase in ("codecs", "pool") else 7
    expected = status if isinstance(status, tuple) else (found if status == FOUND else status,)
    assert sight.status in expected, sight
    assert (1 if most == 2 else 0) <= sight.seconds < most + BUSY, sight
    check_records(sight, fault, phase, last)
    assert sight.left_children == (fault == "leaves-child"), sight
    assert (sight.output >= 500_000_000) == (fault == "floods-stdout"), sight
    if last == TOLD:
        assert logged(tmp_path, "INFO").endswith("[ERROR]Assayer closed by WatchDog![/ERROR]\n")
    if fault == "closes-stderr":  # What couldn't be written there is in the files.
        assert "[/STATISTICS]" in logged(tmp_path, "ERROR")


def logged(folder, severity):
    [file] = (folder / "logs").rglob(f"Assayer.*.{severity}.*-*")
    return file.read_text(errors="replace")


def check_records(sight, fault, phase, last):
    records, culprit = sight.records, record_of(fault, phase)
    assert culprit in records, sight
    if last == DONE:
        tag, text = records[-1]
        assert tag == "STATISTICS", sight
        times = json.loads(text)["ASSAYER_WORK_TIME"].values()
        assert all(re.fullmatch(r"\d+\.\d{6}", seconds) for seconds in times), sight
        return
    claims = sight.all("STATISTICS")
    if last != NO_CLAIM:  # Without memory, a run may fail between its last plugin and its statistics.
        claims += sight.all("LOADED_PLUGINS") + sight.all("TESTED_CODECS")
    assert claims == [], sight
    if last == TOLD:
        assert records.pop() == CLOSED, sight
    if last != NO_CLAIM:  # On the pool other tests may have begun since.
        assert records[-1][0] == culprit[0] if phase == "pool" else records[-1] == culprit, sight


REFUSED = {
    "clap": {
        "old-version": "has version 0.9.9 of the CLAP interface instead of 1",
        "no-init": "has no function init",
        "refuses": "refused to initialise",
        "no-factory": "has no CLAP plugin factory",
        "no-describer": "has no function get_plugin_descriptor",
        "no-plugins": "describes no CLAP plugin",
        "millions": "claims to have 5000000 CLAP plugins",
        "below-zero": "claims to have 4294967295 CLAP plugins",
        "null-plugin": "CLAP plugin 1 has no description",
        "null-id": "CLAP plugin 1 has no id",
        "empty-id": "CLAP plugin 1 has no id",
        "null-name": "CLAP plugin 1 has no name",
    },
    "vst3": {
        "refuses": "refused to initialise",
        "no-factory": "has no VST3 plugin factory",
        "no-functions": "has no VST3 plugin factory",
        "no-describer": "has no function getClassInfo",
        "null-version": "claims to have version 2 of the VST3 plugin factory, but gives none",
        "no-classes": "describes no VST3 class of the category Audio Module Class",
        "no-plugin": "describes no VST3 class of the category Audio Module Class",
        "millions": "claims to have 5000000 VST3 classes",
        "below-zero": "claims to have -1 VST3 classes",
        "failing-class": "doesn't describe VST3 class 1",
    },
}
GOOD = {"clap": ("good", "in-bundle"), "vst3": ("good", "one-version", "only-utf-16")}


@pytest.mark.parametrize("interface", FOREIGN)
def test_what_a_module_of_another_interface_is_refused_for(installation, interface):
    installation.add_foreign(interface, *GOOD[interface], *REFUSED[interface])
    if interface == "clap":
        bundle = installation.directory / "in-bundle.clap" / "inner"
        bundle.mkdir(parents=True)
        module = (installation.directory / "in-bundle.clap.so").rename(bundle / "in-bundle.so")
        installation.link(module, "in-bundle.clap")
    result = installation.run("plugins", "60")
    assert result.code == 7, result
    assert result.of("PLUGINS") == [f"{name}.{interface}" for name in REFUSED[interface]], result
    for (name, reason), text in zip(REFUSED[interface].items(), result.of("ERROR"), strict=True):
        plugin = f"{name}.{interface}"
        assert f"Plugin {plugin}, module {installation.directory}/{plugin}.so: {reason}" in text, text
    assert result.records()[-1] == ("LOADED_PLUGINS", "true"), result
