"""A parent of Assayer, as doc/protocol.md describes it: starts runs until each plugin and each codec is
known to be good or bad, also when modules crash, hang or end the process."""

import os
import re
import signal
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

TAGS = ("STATISTICS", "CODECS", "ERROR", "WARNING", "TEST_CODEC", "TESTED_CODECS", "PLUGINS",
        "LOAD_PLUGIN_NAME", "LOADED_PLUGINS")
OPENING = re.compile(r"\] \[(%s)\]" % "|".join(TAGS))
FACTORIES = ("EffectFactory", "FilterFactory", "CodecFactory", "MuxerFactory", "ParserFactory", "AnalyzerFactory")
STARTED_BY_THE_CORE = ("CodecFactory", "MuxerFactory", "ParserFactory")
GRACE_SECONDS = 10


class GaveUp(Exception):
    """No further run can help; the text says why."""


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
    """Coder type, implementation and codec id: an id may hold points."""
    return test.split(".", 2)


@dataclass
class Run:
    """What one process left. A negative status is a signal's number."""
    status: int
    text: str
    records: list = field(init=False)

    def __post_init__(self):
        self.records = parse_records(self.text)

    def all(self, tag):
        return [message for name, message in self.records if name == tag]

    def last(self, tag):
        return (self.all(tag) or [None])[-1]

    @property
    def failed_itself(self):
        """Assayer, not a module, ended the run: another one would give the same."""
        tags = [tag for tag, _ in self.records if tag != "WARNING"]
        if tags[-1:] != ["ERROR"]:
            return False
        if self.status == 3:
            return "LOAD_PLUGIN_NAME" not in tags and "TEST_CODEC" not in tags
        return self.status in (4, 5, 6) and tags[-2:-1] in ([], ["LOADED_PLUGINS"], ["TESTED_CODECS"], ["CODECS"])


@dataclass
class Parent:
    program: Path
    folder: Path  # for its own files
    seconds: int = 60
    implementations: str = "-"
    environment: dict = field(default_factory=dict)
    runs: list = field(default_factory=list)
    bad: list = field(default_factory=list)
    unsteady: list = field(default_factory=list)
    broken: list = field(default_factory=list)
    passed: list = field(default_factory=list)

    def run(self, check, implementations="-", codecs="-", disabled=(), plugins=(), tests=(), after="-", skipped="-"):
        """One run; the tuples are the names for positions 5, 6 and 7."""
        result = self.start(check, str(self.seconds), implementations, codecs, ",".join(disabled) or "-",
                            self.write_list("plugins.txt", [("Plugins.Broken", name) for name in plugins]),
                            self.write_list("codecs.txt", [self.codec_line(test) for test in tests]), after, skipped,
                            "-")  # fmt: skip
        self.runs.append(result)
        return result

    def start(self, *arguments):
        """Runs the program with these positions, whatever they are."""
        environment = {**{name: value for name, value in os.environ.items()
                          if not name.startswith("GLOG_")}, **self.environment}
        log = self.folder / f"run{len(self.runs)}.log"
        empty = self.folder / "empty"
        empty.mkdir(exist_ok=True)
        with log.open("wb") as stream:
            process = subprocess.Popen([self.program, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       stderr=stream, env=environment, cwd=empty, start_new_session=True)  # fmt: skip
        try:
            process.wait(self.seconds + GRACE_SECONDS)
        except subprocess.TimeoutExpired:
            pass
        finally:
            self.end_group(process)
        return Run(process.returncode, log.read_text(errors="replace"))

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

    @staticmethod
    def codec_line(test):
        coder, implementation, codec = split_test(test)
        return f"Codecs.{coder}.{implementation}", codec

    def listed(self, factories=FACTORIES):
        """The plugins that these factories list."""
        lines = [line.partition(":") for line in (self.program.parent / "plugins.list").read_text().splitlines()]
        return [name.strip() for key, _, names in lines if key.strip() in factories for name in names.split(",")
                if name.strip()]  # fmt: skip

    def check_plugins(self):
        named = []
        known = None
        while known != (known := self.known_plugins()):
            self.check_each_plugin(named)
            if any(name not in named and self.has_module(name) for name in self.listed()):
                self.bad.append(named[-1])  # It forged the end.

    def check_each_plugin(self, named):
        """One round over the plugins; adds to `named` what records name, in their order."""
        last = "-"
        while True:
            before = last, self.known_plugins()
            result = self.run("plugins", plugins=self.known_plugins(), after=last)
            named += result.all("LOAD_PLUGIN_NAME")
            for name in result.all("PLUGINS"):
                self.try_plugin(name)
            if result.all("STATISTICS"):
                return
            self.require_progress(result, result.all("LOAD_PLUGIN_NAME"))
            last = result.last("LOAD_PLUGIN_NAME")
            self.try_plugin(last)
            self.require_progress(result, before != (last, self.known_plugins()))

    def known_plugins(self):
        return self.bad + self.unsteady

    def has_module(self, plugin):
        return (self.program.parent / f"{plugin}.so").exists()

    def try_plugin(self, plugin):
        if plugin not in self.known_plugins():
            (self.bad if self.is_bad_alone(plugin) else self.unsteady).append(plugin)

    def is_bad_alone(self, plugin):
        others = [name for name in ["OglManager", *self.listed()] if name != plugin]
        alone = self.run("plugins", plugins=others)
        return not alone.all("STATISTICS") or plugin in alone.all("PLUGINS")

    def check_codecs(self, codecs):
        while True:
            result = self.run("codecs", self.implementations, codecs, self.bad, tests=self.broken,
                              skipped=",".join(["", *self.passed]) or "-")
            self.broken += [test for test in result.all("CODECS") if test not in self.broken]
            undecided = [test for test in result.all("TEST_CODEC") if test not in self.broken]
            if result.all("TESTED_CODECS"):
                self.passed += undecided
                return
            self.require_progress(result, True)
            if not result.all("TEST_CODEC"):
                self.get_core_up(codecs)
                continue
            suspect = result.last("TEST_CODEC")
            self.passed += [test for test in undecided if test != suspect]
            if suspect in undecided:
                self.try_test_alone(suspect)

    def try_test_alone(self, test):
        coder, implementation, codec = split_test(test)
        skipped = f",Encoder.{implementation}.{codec}" if coder == "Decoder" else f"Decoder.{implementation}.{codec}"
        alone = self.run("codecs", implementation, codec, self.bad, skipped=skipped)
        is_broken = not alone.all("TESTED_CODECS") or test in alone.all("CODECS")
        (self.broken if is_broken else self.passed).append(test)

    def get_core_up(self, codecs):
        """Finds the modules with which the media core doesn't start."""
        started = [name for name in self.listed(STARTED_BY_THE_CORE) if name not in self.bad]
        found = [name for name in started if not self.starts_without(codecs, [other for other in started if other != name])]
        company = sorted(started, key=lambda name: name not in self.unsteady)
        found = found or [name for name in company if self.starts_without(codecs, [name])][:1]
        if not found:
            raise GaveUp("the media core doesn't start")
        self.bad += found

    def starts_without(self, codecs, modules):
        trial = self.run("codecs", self.implementations, codecs, [*self.bad, *modules])
        return bool(trial.all("TEST_CODEC") or trial.all("TESTED_CODECS"))

    def check_all(self, codecs):
        self.check_plugins()
        self.check_codecs(codecs)

    @staticmethod
    def require_progress(result, begun):
        if result.failed_itself or not begun:
            raise GaveUp(f"status {result.status}: {result.last('ERROR') or 'no text'}")
