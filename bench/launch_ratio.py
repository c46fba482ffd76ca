#!/usr/bin/env python3
"""Times the launcher under Wine against programs that do nothing, turn by turn in one run.

usage: launch_ratio.py ROUNDS LAUNCHER ARGUMENT EMPTY_PROGRAM...

The environment names the prefix (WINEPREFIX) and a server is held there. Wall time is from the
start of the process to its end; memory is the largest resident size that the kernel saw.
"""
import ctypes
import os
import statistics
import sys
import time

# Elsewhere tests/wine/wine sets this flag for a start. Its own time would count here, so the flag is
# set beforehand, and each program inherits it.
LOADER = "/usr/lib/wine/wine64"
ADDR_NO_RANDOMIZE = 0x0040000


def run(command):
    ctypes.CDLL(None).personality(ADDR_NO_RANDOMIZE)
    start = time.perf_counter()
    pid = os.posix_spawn(LOADER, [LOADER, *command], os.environ)
    _, status, usage = os.wait4(pid, 0)
    if status != 0:
        sys.exit(f"{command[0]} ended with status {status:#x}")
    return (time.perf_counter() - start) * 1000, usage.ru_maxrss / 1024


def name_of(program):
    return os.path.splitext(os.path.basename(program))[0]


def main():
    rounds = int(sys.argv[1])
    launcher, argument = sys.argv[2:4]
    programs = {name_of(program): [program] for program in sys.argv[4:]}
    programs[name_of(launcher)] = [launcher, argument]
    samples = {name: [] for name in programs}
    for command in programs.values():
        run(command)
    for _ in range(rounds):
        for name, command in programs.items():
            samples[name].append(run(command))

    medians = {
        name: [statistics.median(column) for column in zip(*measured)]
        for name, measured in samples.items()
    }
    own_wall, own_peak = medians[name_of(launcher)]
    print(f"{'':26}{'median ms':>10}{'peak MiB':>10}{'launcher is':>14}{'and needs':>14}")
    for name, (wall, peak) in medians.items():
        ratio = f"{own_wall / wall:.2f} times"
        more = f"{own_peak - peak:+.1f} MiB"
        print(f"{name:26}{wall:10.1f}{peak:10.1f}{ratio:>14}{more:>14}")
    print(f"launcher's size: {os.path.getsize(launcher) / 1024:.0f} KiB")


if __name__ == "__main__":
    main()
