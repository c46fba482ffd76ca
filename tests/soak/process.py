"""What the system tells about processes."""

import os


def program_of(process):
    return os.path.basename(os.readlink(f"/proc/{process}/exe"))


def processes_of(prefix):
    """The ids of all processes of Wine that belong to a prefix."""
    found = []
    for entry in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{entry}/environ", "rb") as stream:
                variables = stream.read().split(b"\0")
            is_wine = "wine" in program_of(entry)
        except OSError:  # it has ended meanwhile
            continue
        if is_wine and b"WINEPREFIX=" + os.fsencode(prefix) in variables:
            found.append(int(entry))
    return found


def descriptors(process):
    return len(os.listdir(f"/proc/{process}/fd"))


def memory(process):
    """What it has written to, in KiB, without files and what it shares with others."""
    with open(f"/proc/{process}/smaps_rollup", encoding="ascii") as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith("Anonymous:"))
