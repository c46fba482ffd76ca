#!/usr/bin/env python3
"""Times the launcher under Wine against programs that do nothing, turn by turn in one run.

usage: launch_ratio.py ROUNDS LAUNCHER ARGUMENT EMPTY_PROGRAM EMPTY_SHELL_PROGRAM

The environment names the prefix (WINEPREFIX) and a server is held there. Wall time is from the
start of the process to its end; memory is the largest resident size that the kernel saw.
"""
import os
import statistics
import sys
import time

LOADER = "/usr/lib/wine/wine64"


def run(command):
    start = time.perf_counter()
    pid = os.posix_spawn(LOADER, [LOADER, *command], os.environ)
    _, status, usage = os.wait4(pid, 0)
    if status != 0:
        sys.exit(f"{command[0]} ended with status {status:#x}")
    return (time.perf_counter() - start) * 1000, usage.ru_maxrss / 1024


def main():
    rounds = int(sys.argv[1])
    launcher, argument, empty, empty_shell = sys.argv[2:6]
    programs = {
        "empty program": [empty],
        "empty program with the shell": [empty_shell],
        "launcher": [launcher, argument],
    }
    samples = {name: [] for name in programs}
    for command in programs.values():
        run(command)
    for _ in range(rounds):
        for name, command in programs.items():
            samples[name].append(run(command))

    base_time = statistics.median(wall for wall, _ in samples["empty program"])
    base_memory = statistics.median(peak for _, peak in samples["empty program"])
    print(f"{'':30}{'median ms':>10}{'ratio':>8}{'peak MiB':>10}{'more':>8}")
    for name, measured in samples.items():
        wall = statistics.median(wall for wall, _ in measured)
        peak = statistics.median(peak for _, peak in measured)
        print(f"{name:30}{wall:10.1f}{wall / base_time:8.2f}{peak:10.1f}{peak - base_memory:8.1f}")
    print(f"launcher's size: {os.path.getsize(launcher) / 1024:.0f} KiB")


if __name__ == "__main__":
    main()
