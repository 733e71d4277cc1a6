"""What the plugin phase adds to the bare loading of the same modules.

Usage: plugin_phase.py APP_DIRECTORY BARE_LOOP [ROUNDS]

Collects the machine's own modules into a copy of the installation directory and runs, in turns,
Assayer over them, Assayer without them, Assayer refused, the bare loop over them and the bare loop
without them. What the modules take is the median of the rounds' differences with and without them;
the figure is the quotient of the two, once for wall time and once for processor time. It ends with
status 1 if that of the wall time is above the limit. It may be below 1: libraries that Assayer itself
has loaded aren't loaded again for its modules."""

import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

LIMIT = 1.25
FACTORIES = ("EffectFactory", "FilterFactory", "AnalyzerFactory")


def read_modules(directory):
    """Factory and real file of each collected module, in the order of the check."""
    lists = dict(re.findall(r"^(\w+):(.*)$", (directory / "plugins.list").read_text(), re.M))
    return [(factory, str((directory / f"{name.strip()}.so").resolve()))
            for factory in FACTORIES for name in lists[factory].split(",") if name.strip()]


def measure(command, environment):
    """Wall and processor seconds of one process."""
    start = time.perf_counter()
    process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, _, usage = os.wait4(process.pid, 0)
    return time.perf_counter() - start, usage.ru_utime + usage.ru_stime


def count_loads(command, environment):
    text = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                          text=True, errors="replace").stderr
    if "[LOADED_PLUGINS]" not in text:
        sys.exit(f"{command[0]} didn't get through its modules:\n{text[-2000:]}")
    return text.count("[LOAD_PLUGIN_NAME]"), text.count("[PLUGINS]")


def main(app, bare_loop, rounds):
    with tempfile.TemporaryDirectory() as folder:
        full, empty, nothing = (Path(folder, name) for name in ("full", "empty", "nothing"))
        nothing.mkdir()
        for copy, folders in ((full, []), (empty, [nothing])):
            shutil.copytree(app, copy, symlinks=True)
            subprocess.run([copy / "assayer-collect", *folders], check=True, stdout=subprocess.DEVNULL)
        environment = {**os.environ, "LOCALAPPDATA": folder}
        modules = read_modules(full)
        commands = {"Assayer": [full / "Assayer", "plugins", "60"],
                    "Assayer, no modules": [empty / "Assayer", "plugins", "60"],
                    "Assayer, refused": [empty / "Assayer"],
                    "bare loop": [bare_loop, *(word for module in modules for word in module)],
                    "bare loop, no modules": [bare_loop]}
        loads, failures = count_loads(commands["Assayer"], environment)
        own, _ = count_loads(commands["Assayer, no modules"], environment)
        loaded = subprocess.run(commands["bare loop"], capture_output=True, text=True).stdout.strip()
        if loads - own != len(modules):
            sys.exit(f"Assayer tried {loads - own} of {len(modules)} modules")
        print(f"{len(modules)} modules; {failures} plugins failed; the bare loop loaded {loaded}; "
              f"{rounds} rounds")
        times = {name: [] for name in commands}
        for _ in range(rounds):
            for name, command in commands.items():
                times[name].append(measure(command, environment))
    ratios = []

    def added(name, column):
        return statistics.median(full[column] - empty[column]
                                 for full, empty in zip(times[name], times[f"{name}, no modules"]))

    for column, kind in enumerate(("wall", "processor")):
        medians = {name: statistics.median(sample[column] for sample in samples)
                   for name, samples in times.items()}
        check, bare = added("Assayer", column), added("bare loop", column)
        ratios.append(check / bare)
        print(f"{kind} seconds, medians: " +
              ", ".join(f"{name} {value:.4f}" for name, value in medians.items()))
        print(f"{kind} seconds for the modules: {check:.4f} to {bare:.4f}, ratio {ratios[-1]:.3f}")
    return 0 if ratios[0] <= LIMIT else 1


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), Path(sys.argv[2]).resolve(),
                  int(sys.argv[3]) if len(sys.argv) > 3 else 41))
