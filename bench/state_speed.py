"""Measures how fast a host gets its answer where nothing changed.

Usage: state_speed.py APP_DIRECTORY [ROUNDS]

Makes an installation with 500 modules and a state that knows them, their 1,000 exercises and 600 codec
tests, with the files of this machine's libraries as their ground. Then runs `assay all --only-changed
--quiet` and `assay trusted`. Ends with status 1 if one of them takes longer than its limit, or if the
check wrote or started anything."""

import hashlib
import json
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

MODULES, EXERCISES, CODECS, LIBRARIES = 500, 2, 600, 300
CHECK_SECONDS, TRUSTED_SECONDS = 0.050, 0.030
CHECKED = "2026-01-31T12:00:00.123Z"


def build_id_of(path):
    """The note's size, type and owner come right before it."""
    found = re.search(rb"\x04\0\0\0\x14\0\0\0\x03\0\0\0GNU\0(.{20})", path.read_bytes(), re.DOTALL)
    return found[1].hex() if found else ""


def state_of(path):
    status = path.stat()
    return {"path": str(path), "device": status.st_dev, "inode": status.st_ino, "size": status.st_size,
            "modified": status.st_mtime_ns, "changed": status.st_ctime_ns, "build_id": build_id_of(path)}  # fmt: skip


def find_libraries():
    folder = Path("/usr/lib/x86_64-linux-gnu")
    return sorted({path.resolve() for path in folder.glob("*.so.*") if path.is_file()})[:LIBRARIES]


def make_state(app, own, home, environment):
    """The form is that of what is known, as the program writes it."""
    modules = sorted(own.glob("module*.so"))
    libraries = find_libraries()
    files = [state_of(path) for path in [*libraries, own / "Assayer", *(module.resolve() for module in modules)]]
    shared = {"environment": 0, "files": list(range(len(libraries) + 1)), "names": {}}
    items, grounds, listed = [], [], {}
    for number, module in enumerate(modules):
        ground = [0, len(libraries) + 1 + number]
        items.append({"kind": "plugin", "name": module.stem, "factory": "FilterFactory", "interface": "LADSPA",
                      "verdict": "good", "seconds": 0.001234, "checked": CHECKED})  # fmt: skip
        grounds.append(ground)
        listed[module.stem] = [f"{module.stem}/effect{i}" for i in range(EXERCISES)]
        for i in range(EXERCISES):
            items.append({"kind": "exercise", "name": f"{module.stem}/effect{i}", "plugin": module.stem,
                          "id": f"effect{i}", "title": f"Effect number {i}", "interface": "LADSPA",
                          "depth": "exercise", "verdict": "good", "seconds": 0.01, "checked": CHECKED})  # fmt: skip
            grounds.append(ground)
    for number in range(CODECS):
        items.append({"kind": "codec", "name": f"Decoder.FFMPEG_IMPL.CODEC_ID_{number}", "coder": "Decoder",
                      "implementation": "FFMPEG_IMPL", "codec": f"CODEC_ID_{number}", "verdict": "good",
                      "seconds": 0.02, "checked": CHECKED})  # fmt: skip
        grounds.append([0])
    known = {"schema": 2, "program": {"name": "assay", "version": "bench"}, "items": items, "listed": listed,
             "ground": {"environments": [environment], "files": files, "libraries": [shared], "items": grounds},
             "offer": {"libraries": 0, "modules": []}}  # fmt: skip
    folder = home / "state/assayer" / hashlib.sha256(str(own).encode()).hexdigest()[:16]
    folder.mkdir(parents=True)
    (folder / "known.json").write_text(json.dumps(known, separators=(",", ":")))
    return folder


def make_installation(app, own):
    """Each module is a file of its own."""
    own.mkdir()
    shutil.copy(app / "Assayer", own)
    (own / "resources/codecSamples").mkdir(parents=True)
    names = [f"module{number}" for number in range(MODULES)]
    for name in names:
        shutil.copy(app / "libTarnexMediaCore.so", own / f"{name}.so")
    (own / "plugins.list").write_text(f"FilterFactory: {', '.join(names)}\n")


def measure(command, environment):
    start = time.perf_counter()
    result = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    return time.perf_counter() - start, result


def read_environment(app, own, home, environment):
    """As the program describes it: in the report of a check that has nothing to do."""
    report = home / "report.json"
    subprocess.run([app / "assay", "plugins", "--app", own, "--plugin", "OglManager", "--report", report, "--quiet"],
                   env=environment, check=True)  # fmt: skip
    return json.loads(report.read_text())["environment"]


def main(app, rounds):
    with tempfile.TemporaryDirectory() as name:
        home = Path(name).resolve()
        environment = {**os.environ, "HOME": name, "XDG_STATE_HOME": f"{name}/state", "XDG_DATA_HOME": f"{name}/data"}
        own = home / "own"
        make_installation(app, own)
        folder = make_state(app, own, home, read_environment(app, own, home, environment))
        before = sorted(folder.rglob("*"))
        check, trusted = [], []
        for _ in range(rounds):
            seconds, result = measure([app / "assay", "all", "--app", own, "--only-changed", "--quiet"], environment)
            check.append(seconds)
            assert result.returncode == 0, result
            seconds, result = measure([app / "assay", "trusted", "--app", own, "--json"], environment)
            trusted.append(seconds)
        answer = json.loads(result.stdout)
        assert sorted(folder.rglob("*")) == before, "the check wrote something"
        assert len(answer["trusted"]) == MODULES, (len(answer["trusted"]), answer["unknown"][:1])
        size = (folder / "known.json").stat().st_size
    check, trusted = statistics.median(check), statistics.median(trusted)
    print(f"{MODULES} modules, {MODULES * EXERCISES} exercises, {CODECS} codec tests, nothing changed, {size >> 10} kB "
          f"known: assay all --only-changed {check * 1000:.1f} ms, assay trusted {trusted * 1000:.1f} ms")  # fmt: skip
    return 0 if check <= CHECK_SECONDS and trusted <= TRUSTED_SECONDS else 1


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve(), int(sys.argv[2]) if len(sys.argv) > 2 else 21))
