"""The helper, run directly on the fixture plugins."""

import json
import os
import re
import select
import shutil
import subprocess
import time
from pathlib import Path

import pytest

HELPER = os.environ["ASSAYER_EXERCISE"]
FIXTURES = Path(os.environ["ASSAYER_FIXTURES"])
SANITIZED = os.environ.get("ASSAYER_SANITIZE")
RECORD = re.compile(r"^E\d{8} \S+ +(\d+) \S+\] \[([A-Z_]+)\](.*?)\[/\2\]$", re.M | re.S)
QUIET = 1.5  # seconds without a word: the helper hangs

IDS = {
    "LADSPA": "gain",
    "LV2": "urn:assayer:gain",
    "CLAP": "assayer.gain",
    "VST3": "4153534159455247" "41494E0000000001",
    "Vamp": "sum",
    "frei0r": "FixtureFrei0r",
}

MANIFEST = """@prefix lv2: <http://lv2plug.in/ns/lv2core#> .
<urn:assayer:gain> a lv2:Plugin ; lv2:binary <FixtureLv2.so> ;
  <http://www.w3.org/2000/01/rdf-schema#seeAlso> <gain.ttl> .
"""

DATA = """@prefix lv2: <http://lv2plug.in/ns/lv2core#> .
@prefix doap: <http://usefulinc.com/ns/doap#> .
<urn:assayer:gain> a lv2:Plugin ; doap:name "Fixture gain" ;
  lv2:requiredFeature <http://lv2plug.in/ns/ext/urid#map> ;
  lv2:port [ a lv2:InputPort , lv2:AudioPort ; lv2:index 0 ; lv2:symbol "in" ; lv2:name "in" ] ,
    [ a lv2:OutputPort , lv2:AudioPort ; lv2:index 1 ; lv2:symbol "out" ; lv2:name "out" ] ,
    [ a lv2:InputPort , lv2:ControlPort ; lv2:index 2 ; lv2:symbol "gain" ; lv2:name "gain" ;
      lv2:minimum 0.0 ; lv2:maximum 2.0 ; lv2:default 1.0 ] .
"""


class Result:
    """What a run of the helper said."""

    def __init__(self, process, out, err, hung):
        self.code = "hung" if hung else process.returncode
        self.out, self.err = out, err
        found = RECORD.findall(err)
        # Only the first thread's records count.
        self.records = [(tag, text) for thread, tag, text in found if int(thread) == process.pid]

    def of(self, tag):
        return [text for found, text in self.records if found == tag]

    def __repr__(self):
        return f"{self.code}\n{self.out}\n{self.err[-5000:]}"


def start(*arguments, cwd=None, fault=""):
    environment = {**os.environ, "ASSAYER_TEST_FAULT": fault, "ASAN_OPTIONS": "detect_leaks=0"}
    process = subprocess.Popen(
        [HELPER, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
        stderr=subprocess.PIPE, cwd=cwd, env=environment)
    said, hung = [], False
    while True:
        ready = select.select([process.stderr], [], [], QUIET * (10 if SANITIZED else 1))[0]
        piece = os.read(process.stderr.fileno(), 65536) if ready else b""
        if not piece:
            hung = not ready
            break
        said.append(piece)
    if hung:
        process.kill()
    out, _ = process.communicate(timeout=30)
    return Result(process, out.decode(), b"".join(said).decode(errors="replace"), hung)


class Helper:
    def __init__(self, folder):
        self.folder = folder

    def module(self, interface):
        """The module of the interface's fixture, as a request names it."""
        path = FIXTURES / f"Fixture{interface.capitalize()}.so"
        bundle = ""
        if interface == "LV2":
            bundle = self.bundle()
            path = bundle / path.name
        return {"name": path.stem, "interface": interface, "path": str(path), "bundle": str(bundle)}

    def bundle(self, data=DATA, manifest=MANIFEST):
        bundle = self.folder / "gain.lv2"
        if not bundle.exists():
            bundle.mkdir()
            (bundle / "FixtureLv2.so").symlink_to(FIXTURES / "FixtureLv2.so")
            (bundle / "manifest.ttl").write_text(manifest)
            (bundle / "gain.ttl").write_text(data)
        return bundle

    def request(self, verb, fault="", **request):
        file = self.folder / "request.json"
        file.write_text(json.dumps(request))
        return start(verb, file, cwd=self.folder, fault=fault)

    def exercise(self, interface, fault="", depth="exercise"):
        module = self.module(interface)
        exercise = {"module": module["name"], "id": IDS[interface]}
        return self.request("run", fault, depth=depth, modules=[module], exercises=[exercise])


@pytest.fixture
def helper(tmp_path):
    return Helper(tmp_path)
