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
sys.path.append(os.path.join(HERE, "../differential"))

from machine import Description
from model import Update
from process import descriptors

# Tables that grow once have their size by then.
WARM_UP = 30
# For all updates together: usually it is 0, and a single block left by each would be more.
ALLOWED_GROWTH = 1024  # bytes


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
        self.first = None

    def update(self, folder):
        """One update of a copy of the databases. Its results have to be those of the first one."""
        copy = os.path.join(folder, "data")
        shutil.copytree(self.laid_out, copy)
        files = self.description.product_in(copy)
        update = Update(copy, self.description.language, files)
        update.run()
        update.close()
        found = checksums(files)
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
        calls = sum(soak.update(folder) for _ in range(options.updates))
        after = descriptors(own), heap_in_use()
    print(f"{options.updates} updates in one process, {calls} statements and catalogue calls")
    print(f"descriptors of the process: {before[0]} before, {after[0]} after")
    print(f"bytes allocated by the process: {before[1]} before, {after[1]} after")
    if after[0] != before[0]:
        sys.exit("driver soak: descriptors are left open")
    if after[1] - before[1] > ALLOWED_GROWTH:
        sys.exit("driver soak: the process grows")


main()
