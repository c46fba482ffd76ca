#!/usr/bin/python3
"""Brings the same databases up to date again and again in one process, through the driver manager
and the driver: connections, catalogue calls, statements that succeed, find nothing and fail. What
does so is the model of the differential tests. Ends with 1 if the process grows."""

import argparse
import ctypes
import gc
import hashlib
import os
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True  # the sources' folder stays as it is
HERE = os.path.dirname(os.path.abspath(__file__))

from machine import Description
from process import descriptors
from updates import update_copy

# Tables that grow once have their size by then.
WARM_UP = 30
# For the half of the updates that leaves less, since what comes once, at some time, is no growth.
# Usually it is 0, and a single block left by each would be more.
ALLOWED_GROWTH = 512  # bytes
# For what comes once, on some machines: about 2.6 KiB in either of the two lengths.
ALLOWED_ONCE = 4096  # bytes


class HeapInfo(ctypes.Structure):
    """What mallinfo2 tells."""
    _fields_ = [(name, ctypes.c_size_t) for name in (
        "arena", "ordblks", "smblks", "hblks", "hblkhd", "usmblks", "fsmblks", "uordblks",
        "fordblks", "keepcost")]


def heap_in_use():
    """Bytes that C and C++ have allocated and not freed. What the system sees of a process says
    less: it comes and goes with the gaps between allocations."""
    gc.collect()
    mallinfo2 = ctypes.CDLL(None).mallinfo2
    mallinfo2.restype = HeapInfo
    info = mallinfo2()
    return info.uordblks + info.hblkhd


def checksums(files):
    """Of the files as they are. To read them by SQLite would take memory of this process."""
    sums = {}
    for name, file in files.items():
        with open(file, "rb") as stream:
            sums[name] = hashlib.sha256(stream.read()).hexdigest()
    return sums


class DriverSoak:
    def __init__(self, description, laid_out):
        self.description, self.laid_out = description, laid_out
        self.old = checksums(description.product_in(laid_out))
        self.first = None

    def update(self, folder):
        """One update of a copy of the databases. Its results have to be those of the first one."""
        copy = os.path.join(folder, "data")
        update, files = update_copy(self.description, self.laid_out, copy)
        found = checksums(files)
        if found == self.old:
            sys.exit("driver soak: an update changes nothing")
        self.first = self.first or found
        if found != self.first:
            sys.exit("driver soak: an update did something else than the first one")
        shutil.rmtree(copy)
        return len(update.calls)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--data", required=True, help="a data folder before an update")
    parser.add_argument("--updates", type=int, required=True)
    options = parser.parse_args()
    soak = DriverSoak(Description(os.path.join(HERE, "../..")), options.data)
    own = os.getpid()
    with tempfile.TemporaryDirectory(prefix="kestrel-soak-") as folder:
        for _ in range(WARM_UP):
            soak.update(folder)
        before = descriptors(own), heap_in_use()
        half = options.updates // 2
        calls = sum(soak.update(folder) for _ in range(half))
        middle = heap_in_use()
        calls += sum(soak.update(folder) for _ in range(options.updates - half))
        after = descriptors(own), heap_in_use()
    print(f"{options.updates} updates in one process, {calls} statements and catalogue calls")
    print(f"descriptors of the process: {before[0]} before, {after[0]} after")
    print(f"bytes allocated by the process: {before[1]} before, {middle} halfway, {after[1]} after")
    if after[0] != before[0]:
        sys.exit("driver soak: descriptors are left open")
    halves = middle - before[1], after[1] - middle
    if min(halves) > ALLOWED_GROWTH or sum(halves) > ALLOWED_ONCE:
        sys.exit("driver soak: the process grows")


main()
