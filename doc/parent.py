"""A parent of Assayer, as doc/protocol.md describes it: runs passes until each plugin and each codec
has a verdict, also when modules crash, hang or end the process."""

import os
import re
import signal
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

TAGS = ("STATISTICS", "CODECS", "ERROR", "WARNING", "TEST_CODEC", "TESTED_CODECS", "PLUGINS",
        "LOAD_PLUGIN_NAME", "LOADED_PLUGINS")
OPENING = re.compile(r"\] \[(%s)\]" % "|".join(TAGS))
GRACE_SECONDS = 10
MAX_PASSES = 1000


class GaveUp(Exception):
    """No further pass can help; the text says why."""


def parse_records(text):
    """The records of a log as (tag, message), in order; a cut one ends with its last whole line."""
    openings = list(OPENING.finditer(text))
    ends = [match.start() for match in openings[1:]] + [len(text)]
    records = []
    for match, end in zip(openings, ends):
        message, closing, _ = text[match.end():end].partition(f"[/{match[1]}]")
        records.append((match[1], message if closing else message.rpartition("\n")[0]))
    return records


def split_test(test):
    """The key of a codec list and the codec id: an id may hold points."""
    coder, implementation, codec = test.split(".", 2)
    return f"Codecs.{coder}.{implementation}", codec


@dataclass
class Pass:
    """What one process left. A negative status is a signal's number."""
    status: int
    text: str
    records: list = field(init=False)

    def __post_init__(self):
        self.records = parse_records(self.text)

    def all(self, tag):
        return [message for name, message in self.records if name == tag]

    @property
    def failed_itself(self):
        """The end was an error of the whole pass: another one would give the same."""
        if self.status == 3:
            return not self.all("LOAD_PLUGIN_NAME") and not self.all("TEST_CODEC")
        return self.status in (4, 5, 6) and self.records[-1:] and self.records[-1][0] == "ERROR"


@dataclass
class Parent:
    program: Path
    folder: Path  # for its own files
    seconds: int = 60
    implementations: str = "-"
    environment: dict = field(default_factory=dict)
    passes: list = field(default_factory=list)
    bad: list = field(default_factory=list)
    broken: list = field(default_factory=list)
    passed: list = field(default_factory=list)

    def run(self, check, codecs="-", behind="-", threads=False, without=()):
        """One pass with all that is known by now."""
        if len(self.passes) == MAX_PASSES:
            raise GaveUp("no end in sight")
        disabled = ",".join([*self.bad, *without]) or "-"
        tests = "," + ",".join(self.passed) if self.passed else "-"
        plugin_list = self.write_list("plugins.txt", [("Plugins.Broken", name) for name in self.bad])
        codec_list = self.write_list("codecs.txt", [split_test(test) for test in self.broken])
        result = self.start(check, str(self.seconds), self.implementations, codecs, disabled,
                            plugin_list, codec_list, behind, tests, "1" if threads else "-")
        self.passes.append(result)
        self.bad += [name for name in result.all("PLUGINS") if name not in self.bad]
        self.broken += [test for test in result.all("CODECS") if test not in self.broken]
        return result

    def start(self, *arguments):
        """Runs the program with these positions, whatever they are."""
        environment = {**{name: value for name, value in os.environ.items()
                          if not name.startswith("GLOG_")}, **self.environment}
        log = self.folder / f"pass{len(self.passes)}.log"
        with log.open("wb") as stream:
            process = subprocess.Popen([self.program, *arguments], stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=stream, env=environment,
                                       start_new_session=True)
        try:
            process.wait(self.seconds + GRACE_SECONDS)
        except subprocess.TimeoutExpired:
            pass
        finally:
            self.end_group(process)
        return Pass(process.returncode, log.read_text(errors="replace"))

    @staticmethod
    def end_group(process):
        """True if anybody was left."""
        try:
            os.killpg(process.pid, signal.SIGKILL)
            return True
        except ProcessLookupError:
            return False
        finally:
            process.wait()

    def write_list(self, name, lines):
        (self.folder / name).write_text("".join(f"{key}: {value}\n" for key, value in lines))
        return str(self.folder / name)

    def check_plugins(self, check="plugins", codecs="-", threads=False):
        """The plugin phase; gives its last pass."""
        behind = "-"
        while True:
            result = self.run(check, codecs, behind, threads)
            if result.all("LOADED_PLUGINS"):
                return result
            begun = result.all("LOAD_PLUGIN_NAME")
            self.require_progress(result, begun)
            behind = begun[-1]
            self.bad += [behind] if behind not in self.bad else []

    def check_codecs(self, codecs, threads=False, first=None):
        """The codec phase for these ids; `first` is a pass that has gone through it already."""
        result = first or self.run("codecs", codecs, threads=threads)
        while not self.learn_tests(result, codecs, threads):
            result = self.run("codecs", codecs, threads=threads)

    def learn_tests(self, result, codecs, threads):
        """Takes what a pass tells of its tests; true when it went to its end."""
        begun = result.all("TEST_CODEC")
        undecided = [test for test in begun if test not in self.broken]
        if result.all("TESTED_CODECS"):
            self.passed += undecided
            return True
        self.require_progress(result, True)
        if not begun:
            self.get_core_up(codecs)
        elif threads and undecided:
            self.check_codecs(",".join(sorted({split_test(test)[1] for test in undecided})))
        elif not threads:
            self.passed += [test for test in undecided if test != begun[-1]]
            self.broken += begun[-1:] if begun[-1] in undecided else []
        return False

    def get_core_up(self, codecs):
        """Finds the one module without which the media core starts."""
        plugins = self.program.parent / "plugins.list"
        factories = ("CodecFactory", "MuxerFactory", "ParserFactory")
        lines = [line.partition(":") for line in plugins.read_text().splitlines()]
        names = [name.strip() for key, _, values in lines if key.strip() in factories
                 for name in values.split(",") if name.strip()]
        for without in [[], *[[name] for name in names if name not in self.bad]]:
            trial = self.run("codecs", codecs, without=without)
            if trial.all("TEST_CODEC") or trial.all("TESTED_CODECS"):
                self.bad += without
                return
        raise GaveUp("the media core doesn't start")

    def check_all(self, codecs, threads=False):
        last = self.check_plugins("all", codecs, threads)
        self.check_codecs(codecs, threads, first=last)

    @staticmethod
    def require_progress(result, begun):
        if result.failed_itself or not begun:
            raise GaveUp(f"status {result.status}: {(result.all('ERROR') or ['no text'])[-1]}")
