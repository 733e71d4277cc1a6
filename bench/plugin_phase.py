"""Measures the plugin phase against the bare loading of the same modules.

Usage: plugin_phase.py APP_DIRECTORY BARE_LOOP [ROUNDS]

Collects the machine's own modules into a copy of the installation directory. Measures processes that
load them, in turn with processes that load only the program's own modules: Assayer without log files, as
`assay` starts it, Assayer with them, the bare loop, and the baseline, which is the bare loop with
Assayer's libraries loaded first. Loaded libraries slow down the dynamic linker, whoever asks it to load a
module: it searches all of them for each symbol, and their list for each library that the module needs.

The modules' cost is the difference with and without modules, and a ratio is that of two costs of the same
round; both are given as medians. A ratio's range is where 95 of 100 medians of as many rounds, drawn from
the measured ones, lie. A ratio may be below 1, because Assayer has already loaded other things that
modules need.

The status is 1 if Assayer's wall time without log files exceeds the limit, a multiple of the baseline's.
First all four get a sixth of ROUNDS, then these two get all of them, because single rounds differ by a
third."""

import os
import random
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
    """How many modules there are, and for each name the command with them, the command without them and its
    variables."""
    full, empty, nothing = (Path(folder, name) for name in ("full", "empty", "nothing"))
    nothing.mkdir()
    for copy, folders in ((full, []), (empty, [nothing])):
        shutil.copytree(app, copy, symlinks=True)
        subprocess.run([copy / "assay", "collect", "--into", copy, *folders], check=True, stdout=subprocess.DEVNULL)
    modules, own = read_modules(full), read_modules(empty)
    assayers = [[copy / "Assayer", "plugins", "60"] for copy in (full, empty)]
    loops = [[bare_loop, *(word for module in some for word in module)] for some in (modules, own)]
    loaded = {"LD_PRELOAD": ":".join(find_libraries(app / "Assayer"))}
    return len(modules) - len(own), {
        "baseline": (*loops, loaded),
        "Assayer": (*assayers, {}),
        "Assayer with log files": (*assayers, {"LOCALAPPDATA": folder}),
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


def measure_round(commands, environment):
    """For each command what its modules cost. What is compared runs one right after the other, because the
    machine's speed changes."""
    full, empty = ({name: measure(command[which], {**environment, **command[2]}) for name, command in commands.items()}
                   for which in (0, 1))
    return {name: [with_modules - without for with_modules, without in zip(full[name], empty[name])]
            for name in commands}


def main(app, bare_loop, rounds):
    environment = {name: value for name, value in os.environ.items()
                   if name != "LOCALAPPDATA" and not name.startswith("GLOG_")}
    with tempfile.TemporaryDirectory() as folder:
        count, commands = make_commands(app, folder, bare_loop)
        require_same_work(commands, environment, count)
        refused = statistics.median(measure([app / "Assayer"], environment)[0] for _ in range(21))
        print(f"a run that refuses its arguments: {refused * 1000:.1f} ms")
        report([measure_round(commands, environment) for _ in range(rounds // 6 + 1)])
        pair = {name: commands[name] for name in ("baseline", "Assayer")}
        costs = [measure_round(pair, environment) for _ in range(rounds)]
        report(costs)
        return 0 if statistics.median(get_ratios(costs, "Assayer", "baseline", 0)) <= LIMIT else 1


def report(costs):
    print(f"medians of {len(costs)} rounds:")
    for name in costs[0]:
        for column, kind in enumerate(("wall", "processor")):
            seconds = statistics.median(cost[name][column] for cost in costs)
            print(f"  {name}: {seconds * 1000:.1f} ms of {kind} time" + "".join(
                f", {describe_ratio(costs, name, other, column)} times the {other}'s"
                for other in ("baseline", "bare loop") if other != name and other in costs[0]))


def get_ratios(costs, name, other, column):
    return [cost[name][column] / cost[other][column] for cost in costs]


def describe_ratio(costs, name, other, column):
    ratios = get_ratios(costs, name, other, column)
    medians = sorted(statistics.median(random.choices(ratios, k=len(ratios))) for _ in range(1000))
    return f"{statistics.median(ratios):.3f} ({medians[25]:.2f} to {medians[974]:.2f})"


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), Path(sys.argv[2]).resolve(),
                  int(sys.argv[3]) if len(sys.argv) > 3 else 401))
