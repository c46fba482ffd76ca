#!/usr/bin/python3
"""Fails when a Windows program, or one that it starts, has an address space that is laid out at
random: the heap of Wine's loader might then take the place of a page that Wine needs.

usage: wine_start.py WINE [--by-chance]

The environment is that of the tests. With --by-chance it is a failure if nothing is random: so the
check is seen to tell the one from the other.
"""
import os
import subprocess
import sys
import time

ADDR_NO_RANDOMIZE = 0x0040000
MARK = f"KESTREL_WINE_START={os.getpid()}"
LONGEST_START = 20  # seconds


def read(folder, name):
    """What the kernel tells there, empty about a process that has ended."""
    try:
        with open(f"/proc/{folder}/{name}", "rb") as file:
            return file.read().decode(errors="replace")
    except OSError:
        return ""


def gap_before_heap(pid):
    """Bytes between Wine's loader and its heap, None for a process that hasn't got them."""
    loader_end = None
    for line in read(pid, "maps").splitlines():
        begin, end = (int(number, 16) for number in line.split()[0].split("-"))
        if line.endswith("/wine64"):
            loader_end = end
        elif line.endswith("[heap]") and loader_end is not None:
            return begin - loader_end
    return None


def started():
    """The gap of each Windows program that this check has made, by process: they inherit its mark."""
    marked = (pid for pid in os.listdir("/proc")
              if pid.isdigit() and MARK in read(pid, "environ").split("\0"))
    gaps = ((pid, gap_before_heap(pid)) for pid in marked)
    return {pid: gap for pid, gap in gaps if gap is not None}


def gaps_of_two(wine):
    """Of a program that is held at its prompt, of the one that has started it, and of what Wine
    adds to them."""
    mark, value = MARK.split("=")
    with subprocess.Popen([wine, "cmd", "/c", "cmd"], stdin=subprocess.PIPE,
                          stdout=subprocess.DEVNULL, env=os.environ | {mark: value}) as program:
        end = time.monotonic() + LONGEST_START
        before, now = {}, {}
        # A process that is being made looks like its maker for a moment.
        while time.monotonic() < end and (len(now) < 2 or now != before):
            time.sleep(0.1)
            before, now = now, started()
        program.stdin.close()
        program.wait()
    if len(now) < 2 or now != before:
        sys.exit(f"wine_start.py: no two processes that stay: {now}")
    return list(now.values())


def may_do_without_chance():
    command = ["setarch", "-R", "true"]
    return subprocess.run(command, stderr=subprocess.DEVNULL, check=False).returncode == 0


def has_chance():
    """Whether a program that says nothing of it gets a heap at random."""
    return (read("sys", "kernel/randomize_va_space").strip() == "2" and
            not int(read("self", "personality"), 16) & ADDR_NO_RANDOMIZE)


def main():
    wine = sys.argv[1]
    by_chance = "--by-chance" in sys.argv[2:]
    if not may_do_without_chance() or (by_chance and not has_chance()):
        print("This machine gives no choice between chance and none.")
        return
    gaps = gaps_of_two(wine)
    print("Bytes between the loader and its heap:", *gaps)
    if any(gaps) != by_chance:
        sys.exit("wine_start.py: at random" if any(gaps) else "wine_start.py: not at random")


if __name__ == "__main__":
    main()
