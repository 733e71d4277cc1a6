"""Measures the plugin phase against the bare loading of the same modules.

Usage: plugin_phase.py APP_DIRECTORY BARE_LOOP [ROUNDS]

Collects the machine's own modules into a copy of the installation directory. Measures processes that
load them, in turn with processes that load only the program's own modules: Assayer, the bare loop, and
the baseline, which is the bare loop with Assayer's libraries loaded first. Loaded libraries slow down
the dynamic linker, whoever asks it to load a module: it searches all of them for each symbol, and their
list for each library that the module needs.

The modules' cost is the median, over the rounds, of the difference with and without modules. The
status is 1 if Assayer's wall time exceeds the limit, a multiple of the baseline's. The ratio may be
below 1, because Assayer has already loaded other things that modules need."""

import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

LIMIT = 1.1
FACTORIES = ("EffectFactory", "FilterFactory", "CodecFactory", "MuxerFactory", "ParserFactory",
             "AnalyzerFactory")


def read_modules(directory):
    """The factory and the real file of each plugin, in the order of the check."""
    lists = dict(re.findall(r"^(\w+):(.*)$", (directory / "plugins.list").read_text(), re.M))
    names = [("OglManager", "OglManager")] + [
        (factory, name) for factory in FACTORIES for name in lists[factory].split(",")]
    return [(factory, str((directory / f"{name.strip()}.so").resolve()))
            for factory, name in names if name.strip()]


def measure(command, environment):
    """The wall and processor seconds of one process."""
    start = time.perf_counter()
    process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, _, usage = os.wait4(process.pid, 0)
    return time.perf_counter() - start, usage.ru_utime + usage.ru_stime


def count_loads(command, environment):
    text = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                          text=True, errors="replace").stderr
    if "[LOADED_PLUGINS]" not in text:
        sys.exit(f"{command[0]} didn't load all its modules:\n{text[-2000:]}")
    return text.count("[LOAD_PLUGIN_NAME]"), text.count("[PLUGINS]")


def find_libraries(program):
    """The libraries that the dynamic linker loads with the program, in search order."""
    text = subprocess.run(["ldd", program], capture_output=True, text=True, check=True).stdout
    return re.findall(r"=> (/\S+)", text)


def make_commands(app, folder, bare_loop):
    """For each name the command with the modules, the command without them, and its variables."""
    full, empty, nothing = (Path(folder, name) for name in ("full", "empty", "nothing"))
    nothing.mkdir()
    for copy, folders in ((full, []), (empty, [nothing])):
        shutil.copytree(app, copy, symlinks=True)
        subprocess.run([copy / "assay", "collect", "--into", copy, *folders], check=True, stdout=subprocess.DEVNULL)
    modules, own = read_modules(full), read_modules(empty)
    loops = [[bare_loop, *(word for module in some for word in module)] for some in (modules, own)]
    loaded = {"LD_PRELOAD": ":".join(find_libraries(app / "Assayer"))}
    return len(modules) - len(own), {
        "Assayer": ([full / "Assayer", "plugins", "60"], [empty / "Assayer", "plugins", "60"], {}),
        "baseline": (*loops, loaded),
        "bare loop": (*loops, {})}


def require_same_work(commands, environment, count):
    """Ends the benchmark unless all commands load the same modules. Prints how many."""
    full, empty, _ = commands["Assayer"]
    loads, failures = count_loads(full, environment)
    own, _ = count_loads(empty, environment)
    if loads - own != count:
        sys.exit(f"Assayer tried {loads - own} of {count} modules")
    found = {"Assayer": loads - failures}
    for name in ("baseline", "bare loop"):
        command, _, variables = commands[name]
        found[name] = int(subprocess.run(command, capture_output=True, text=True, check=True,
                                         env={**environment, **variables}).stdout.split()[-1])
    if len(set(found.values())) > 1:
        sys.exit(f"The commands load different numbers of modules: {found}")
    print(f"{count} modules and {own} of the program's own, {found['Assayer']} of them load")


def main(app, bare_loop, rounds):
    times = {}
    with tempfile.TemporaryDirectory() as folder:
        environment = {**os.environ, "LOCALAPPDATA": folder}
        count, commands = make_commands(app, folder, bare_loop)
        require_same_work(commands, environment, count)
        for _ in range(rounds):
            times.setdefault("refused", []).append(measure([app / "Assayer"], environment))
            for name, (full, empty, variables) in commands.items():
                for key, command in ((name, full), (f"{name}, no modules", empty)):
                    times.setdefault(key, []).append(measure(command, {**environment, **variables}))
    return 0 if report(times, rounds) <= LIMIT else 1


def report(times, rounds):
    """Prints the figures. Returns the wall time as a multiple of the baseline's."""
    ratios = []
    for column, kind in enumerate(("wall", "processor")):
        def added(name):
            return statistics.median(full[column] - empty[column]
                                     for full, empty in zip(times[name], times[f"{name}, no modules"]))

        print(f"{kind} seconds, medians of {rounds} rounds: " + ", ".join(
            f"{name} {statistics.median(sample[column] for sample in samples):.4f}"
            for name, samples in times.items()))
        ours, baseline, bare = (added(name) for name in ("Assayer", "baseline", "bare loop"))
        ratios.append(ours / baseline)
        print(f"{kind} seconds for the modules: {ours:.4f}; {ratios[-1]:.3f} times the baseline's "
              f"{baseline:.4f}, {ours / bare:.3f} times the bare loop's {bare:.4f}")
    return ratios[0]


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), Path(sys.argv[2]).resolve(),
                  int(sys.argv[3]) if len(sys.argv) > 3 else 41))
