"""Temporary installation directories for the real program."""

import os
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

import pytest

# The tests use the parent from the documentation.
sys.path.insert(0, str(Path(__file__).parents[2] / "doc"))

APP = Path(os.environ["ASSAYER_APP"])
FIXTURES = Path(os.environ["ASSAYER_FIXTURES"])
SANITIZED = os.environ.get("ASSAYER_SANITIZE")
VARIANTS = {"no-entry-point": "NoEntryPoint", "undefined-symbol": "UndefinedSymbol"}

# A sanitizer turns signals into reports and exits with its own code.
not_sanitized = pytest.mark.skipif(bool(SANITIZED), reason="signals and times belong to plain builds")


def pytest_configure(config):
    config.addinivalue_line("markers", "slow: takes seconds of hostile work; a group of its own")


@pytest.hookimpl(optionalhook=True)
def pytest_xdist_auto_num_workers():
    """Most tests wait for hangs, so that several fit on a core."""
    return min(32, (2 if SANITIZED else 4) * len(os.sched_getaffinity(0)))


class Result:
    def __init__(self, arguments, process, out, err, seconds):
        self.arguments, self.seconds = arguments, seconds
        self.code, self.out, self.err = process.returncode, out, err

    def records(self, without=("STATISTICS", "WARNING")):
        """All records as (tag, message), in order."""
        found = re.findall(r"\[([A-Z_]+)\](.*?)\[/\1\]", self.err, re.DOTALL)
        return [record for record in found if record[0] not in without]

    def of(self, tag):
        return [message for found, message in self.records(without=()) if found == tag]

    def __repr__(self):
        return f"Assayer {self.arguments}: {self.code} in {self.seconds:.1f} s\n{self.out}\n{self.err}"


class Program:
    """The program in its installation directory."""

    def __init__(self, directory):
        self.directory = directory

    def run(self, *arguments, environment=None, limit=60, retry=True, **options):
        process_environment = {
            key: value for key, value in os.environ.items() if key not in ("LOCALAPPDATA", "DISPLAY")
        }
        process_environment.update(environment or {})
        started = time.monotonic()
        process = subprocess.Popen(
            [self.directory / "Assayer", *arguments],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            env=process_environment,
            **options,
        )
        try:
            out, err = process.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            process.kill()
            out, err = process.communicate()
            pytest.fail(f"Assayer {arguments} did not end by itself\n{err.decode(errors='replace')}")
        if SANITIZED and b"HINT: LeakSanitizer does not work under ptrace" in err and retry:
            # The leak check now and then can't stop all threads. That says nothing of the program.
            return self.run(*arguments, environment=environment, limit=limit, retry=False, **options)
        return Result(
            arguments,
            process,
            out.decode(errors="surrogateescape"),
            err.decode(errors="surrogateescape"),
            time.monotonic() - started,
        )


class Installation(Program):
    """A temporary directory with the program and the modules that a test adds."""

    def __init__(self, directory):
        super().__init__(directory)
        self.plugins = {}
        shutil.copy(APP / "Assayer", directory)
        for library in APP.glob("lib*.so*"):
            shutil.copy(library, directory)
        self.write_list()

    def add(self, *names, factory="CodecFactory"):
        """Adds fixture modules; their names say how they misbehave."""
        for name in names:
            source = FIXTURES / (VARIANTS.get(name.split(".")[0], "Misbehaving") + ".so")
            shutil.copy(source, self.directory / f"{name}.so")
            self.enlist(factory, name)

    def add_fixture(self, name, factory="CodecFactory"):
        shutil.copy(FIXTURES / f"{name}.so", self.directory)
        self.enlist(factory, name)

    def add_foreign(self, interface, *names):
        """Adds modules of the fixture of the interface "clap" or "vst3", named as collected modules are."""
        for name in names:
            shutil.copy(FIXTURES / f"{interface.capitalize()}Plugin.so", self.directory / f"{name}.{interface}.so")
            self.enlist("FilterFactory", f"{name}.{interface}")

    def add_shipped(self, factory, name):
        """Adds a module as it is installed."""
        self.link(APP / f"{name}.so", name)
        if factory:
            self.enlist(factory, name)

    def link(self, source, name):
        (self.directory / f"{name}.so").symlink_to(source)

    def enlist(self, factory, name):
        self.plugins.setdefault(factory, []).append(name)
        self.write_list()

    def write_list(self, text=None):
        lines = (f"{factory}: {', '.join(names)}\n" for factory, names in self.plugins.items())
        (self.directory / "plugins.list").write_text("".join(lines) if text is None else text)

    def file(self, name, content):
        path = self.directory / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return str(path)


@pytest.fixture
def installation(tmp_path):
    directory = tmp_path / "app"
    directory.mkdir()
    return Installation(directory)


@pytest.fixture
def shipped():
    """The program with the modules that it ships with."""
    return Program(APP)
