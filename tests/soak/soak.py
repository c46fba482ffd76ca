#!/usr/bin/python3
"""Starts the real program under Wine again and again, each time with an update to do, and looks
whether anything grows: files, registry, processes, what the Wine server holds, the memory of a
launch. Ends with 1 if something does, or if a launch fails or does something else than the model of
the differential tests."""

import argparse
import os
import signal
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True  # the sources' folder stays as it is
HERE = os.path.dirname(os.path.abspath(__file__))

from databases import all_files, contents
from machine import LONGEST_LAUNCH, WINE, Machine
from process import descriptors, memory, processes_of, program_of
from updates import update_copy

# What is made once, by the first launches, is no growth.
WARM_UP = 5
# Processes that Wine starts beside a program end by themselves, a little later.
LONGEST_WAIT_FOR_STRAGGLERS = 30  # seconds
# All that programs write to. Below HKLM\\System, Wine adds a display each time its desktop starts.
REGISTRY = ("HKCU\\Software", "HKCU\\Environment", "HKLM\\Software")

# How much may come to each of these, in all and for each launch. Whatever a launch leaves is there
# once for each, so anything between 0 and 1 tells that from what Wine opens at times for itself.
# The server's memory comes and goes with that, in pages, and grows by the displays.
ALLOWED_GROWTH = {
    "files in the prefix": (0, 0),
    "temporary files": (0, 0),
    "registry values": (0, 0),
    "processes": (0, 0),
    "descriptors of the server": (0, 0.5),
    "memory of the server in KiB": (64, 0.5),
}
# Of the mean of the last launches over the first. That of single ones varies by 1 percent.
ALLOWED_PEAK = 1.02


class Soak:
    def __init__(self, machine):
        self.machine, self.temporary = machine, os.environ["TMPDIR"]
        self.files = all_files(machine.data)
        self.expected = updated(machine)
        self.peaks, self.seconds = [], []

    def launch(self):
        """One launch on the old databases."""
        self.machine.restore()
        begin = time.monotonic()
        with open(os.devnull, "wb") as output:
            process = self.machine.start(output)
            # No wait with a time limit tells how much memory the process took.
            signal.alarm(LONGEST_LAUNCH)
            _, status, usage = os.wait4(process.pid, 0)
            signal.alarm(0)
            process.returncode = os.waitstatus_to_exitcode(status)
        self.seconds.append(time.monotonic() - begin)
        self.peaks.append(usage.ru_maxrss)
        name = f"launch {len(self.peaks)}"
        require(process.returncode == 0, f"{name} ended with {process.returncode}")
        require(self.machine.wait_for_host(), f"{name} started no host")
        found = contents(self.machine.product_in(self.machine.data))
        require(all_files(self.machine.data) == self.files, f"{name} left or removed files")
        differing = [database for database in found if found[database] != self.expected[database]]
        require(not differing, f"{name} left something else in {differing} than it should")

    def server(self):
        servers = [process for process in processes_of(self.machine.prefix)
                   if "wineserver" in program_of(process)]
        require(len(servers) == 1, f"the prefix has {len(servers)} Wine servers")
        return servers[0]

    def registry_values(self):
        program = os.path.join(self.machine.windows, "sandbox/RegistryDump.exe")
        dump = subprocess.run([WINE, program, *REGISTRY], check=True, stdout=subprocess.PIPE,
                              timeout=LONGEST_LAUNCH)
        return len(dump.stdout.splitlines())

    def wait_for_stragglers(self, usual):
        end = time.monotonic() + LONGEST_WAIT_FOR_STRAGGLERS
        while len(processes_of(self.machine.prefix)) > usual and time.monotonic() < end:
            time.sleep(0.2)

    def measure(self, before=None):
        """`before` tells how many processes there usually are."""
        values = self.registry_values()
        self.wait_for_stragglers(before["processes"] if before else 0)
        return {"files in the prefix": len(all_files(self.machine.prefix)),
                "temporary files": len(all_files(self.temporary)),
                "registry values": values,
                "processes": len(processes_of(self.machine.prefix)),
                "descriptors of the server": descriptors(self.server()),
                "memory of the server in KiB": memory(self.server())}


def require(holds, sentence):
    if not holds:
        sys.exit(f"soak: {sentence}")


def updated(machine):
    """What an update has to leave in the databases that the machine was laid out with."""
    with tempfile.TemporaryDirectory() as folder:
        _, files = update_copy(machine, machine.laid_out, os.path.join(folder, "data"))
        found = contents(files)
    require(found != contents(machine.product_in(machine.laid_out)), "there is nothing to update")
    return found


def end_waiting(*_):
    sys.exit(f"soak: a launch takes more than {LONGEST_LAUNCH} seconds")


def mean(numbers):
    return sum(numbers) / len(numbers)


def first_and_last(numbers):
    """Means of the first and of the last 50 launches, of fewer if there are not so many."""
    count = min(50, len(numbers) // 3)
    return mean(numbers[:count]), mean(numbers[-count:])


def report(soak, before, after, launches):
    for name in before:
        print(f"{name}: {before[name]} before, {after[name]} after")
    first_peak, last_peak = first_and_last(soak.peaks[WARM_UP:])
    print(f"peak memory of a launch in KiB: {first_peak:.0f} at first, {last_peak:.0f} at last")
    first, last = first_and_last(soak.seconds[WARM_UP:])
    print(f"time of a launch: {last / first:.2f} times the first ones' at last")
    for name, (in_all, each) in ALLOWED_GROWTH.items():
        require(after[name] - before[name] <= in_all + each * launches, f"{name} grow")
    require(last_peak <= first_peak * ALLOWED_PEAK, "launches take more memory in the end")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--windows", required=True, help="folder of the Windows build")
    parser.add_argument("--launches", type=int, required=True)
    options = parser.parse_args()
    require("TMPDIR" in os.environ, "TMPDIR has to be a folder of the soak's own")
    signal.signal(signal.SIGALRM, end_waiting)
    machine = Machine(options.windows, os.path.join(HERE, "../.."))
    machine.lay_out()
    soak = Soak(machine)
    for _ in range(WARM_UP):
        soak.launch()
    before = soak.measure()
    server = soak.server()
    for done in range(1, options.launches + 1):
        soak.launch()
        if done % 50 == 0:
            print(f"{done} launches: {soak.measure(before)}", flush=True)
    after = soak.measure(before)
    require(soak.server() == server, "the Wine server is another one in the end")
    report(soak, before, after, options.launches)


if __name__ == "__main__":
    main()
