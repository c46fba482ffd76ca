#!/usr/bin/env python3
"""Times the frame of the database update under Wine against a program that only connects to the same
databases, turn by turn in one run.

usage: frame_ratio.py ROUNDS CONNECTIONS EMPTY_PROGRAM CONNECT_ONLY UPDATE_FRAME

CONNECTIONS is the file with the connection strings. What the empty program takes is the start of a
process, and is taken away from the other two before the time per connection is told.
"""
import statistics
import sys

sys.dont_write_bytecode = True  # the sources' folder stays as it is

from launch_ratio import name_of, run


def main():
    rounds = int(sys.argv[1])
    connections, empty, connect_only, frame = sys.argv[2:]
    with open(connections, encoding="ascii") as file:
        count = sum(1 for _ in file)
    commands = {
        name_of(empty): [empty],
        name_of(connect_only): [connect_only, connections],
        name_of(frame): [frame],
    }
    samples = {name: [] for name in commands}
    for command in commands.values():
        run(command)
    for _ in range(rounds):
        for name, command in commands.items():
            samples[name].append(run(command))
    medians = {
        name: [statistics.median(column) for column in zip(*measured)]
        for name, measured in samples.items()
    }
    start = medians[name_of(empty)][0]
    reference = medians[name_of(connect_only)][0]
    print(f"{'':26}{'median ms':>10}{'ms per connection':>19}{'peak MiB':>10}{'ratio':>8}")
    for name, (wall, peak) in medians.items():
        each = "" if name == name_of(empty) else f"{(wall - start) / count:.2f}"
        print(f"{name:26}{wall:10.1f}{each:>19}{peak:10.1f}{wall / reference:8.2f}")
    print(f"{count} connections, all open at the same time")


if __name__ == "__main__":
    main()
