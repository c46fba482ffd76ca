#!/usr/bin/python3
"""Times the patch engine against the bare road: the same statements, recorded from an engine,
through the same driver with a fresh handle for each row, and the same rows of the patch read into
bound buffers. Natively and under Wine, turn by turn.

usage: engine_ratio.py FOLDER NATIVE_BIN WINDOWS_BIN [--short]

Writes FOLDER/engine.csv and FOLDER/engine.svg. The databases are gone in the end; they lie in
memory (/dev/shm) if there is enough, else in FOLDER; KESTREL_BENCH_DATA names another place. Ends
with 1 if a limit is passed, or if an engine and its replay have not left the same database, byte by
byte.

A time is the least of the rounds, since whatever else the machine does only adds to it; a ratio is
that of the two. Each round has an engine and a replay behind one another, and the next one has them
the other way round. Times are those of the work alone: opening databases and reading the road don't
count. Memory is the largest resident size of the process.
"""
import csv
import filecmp
import os
import shutil
import subprocess
import sys

import engine_data
import engine_plot

WINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../tests/wine/wine")

# glibc gives the end of the heap back to the system, and gets it again, for each row or for none:
# that depends on what happens to lie there, and would be a difference of its own.
STEADY_HEAP = {"MALLOC_MMAP_THRESHOLD_": str(32 << 20), "MALLOC_TRIM_THRESHOLD_": str(64 << 20)}

# Name, flags of the step, target to begin with, statements and misses for each row, rows that the
# target has in the end (a share of the patch's), reports of the engine.
CASES = (
    ("merge, update", engine_data.MERGE, "behind", 1, 0, 1, 0),
    ("merge, insert", engine_data.MERGE, "empty", 2, 1, 1, 0),
    ("copy, new table", engine_data.CREATE, "bare", 1, 0, 1, 0),
    ("delete by key", engine_data.DELETE, "equal", 1, 0, 0, 0),
    # No key is told for such a table, which is reported for the source and for the target.
    ("delete by row", engine_data.DELETE, "keyless", 1, 0, 0, 2),
)
COLUMNS = ["table", "case", "rows", "platform", "rounds", "engine ms", "replay ms", "ratio",
           "engine us/row", "replay us/row", "engine peak MiB", "replay peak MiB"]


class Plan:
    """What is measured, in how many rounds, and what is allowed."""

    def __init__(self, short):
        # In a short run the start of a step counts as much as its rows.
        self.ratio_limit = 1.5 if short else 1.1
        self.growth_limit_mib = 1.0
        # Databases and roads of the largest table.
        self.data_bytes = (1 << 29) if short else (6 << 30)
        # Time of a row in the largest table in terms of one in the smallest that isn't all start.
        self.linear_limit = 3 if short else 1.5
        parts, widest = engine_data.parts_table(), engine_data.widest_table()
        self.sizes = (
            [("20 columns", parts, 500, 2), ("20 columns", parts, 3000, 2),
             ("255 columns", widest, 60, 2)] if short else
            [("20 columns", parts, 1000, 5), ("20 columns", parts, 10000, 9),
             ("20 columns", parts, 100000, 3), ("20 columns", parts, 1000000, 1),
             ("255 columns", widest, 50, 3), ("255 columns", widest, 500, 5)])
        # Runs of fewer rows than this are there for the memory and the plot: they are so short that
        # the start of the step, which a replay hasn't got, would be what is judged.
        self.least_rows = {"20 columns": 0 if short else 10000, "255 columns": 60 if short else 500}

    def is_within(self, line):
        return (line["ratio"] <= self.ratio_limit or
                line["rows"] < self.least_rows[line["table"]])


def stop(sentence):
    """Ends the program."""
    sys.exit(f"engine_ratio.py: {sentence}")


def lines_as_numbers(text):
    return {name: float(number) for name, number in (line.split() for line in text.split("\n") if
                                                     line.strip())}


def peak_mib(pid):
    with open(f"/proc/{pid}/status", encoding="ascii", errors="replace") as status:
        for line in status:
            if line.startswith("VmHWM:"):
                return int(line.split()[1]) / 1024
    return stop("the kernel tells no VmHWM")


def run(command, report_lines):
    """Runs a program that waits for the end of its input when it has told its figures."""
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                          env=os.environ | STEADY_HEAP) as made:
        output = "".join(made.stdout.readline() for _ in range(report_lines))
        peak = peak_mib(made.pid) if output else 0
        made.stdin.close()
        if made.wait() != 0:
            stop(f"{' '.join(command)} ended with {made.returncode}")
    return lines_as_numbers(output), peak


class Platform:
    def __init__(self, name, folder, prefix, suffix):
        self.name = name
        self.engine = [*prefix, os.path.join(folder, "engine_run" + suffix)]
        self.replay = [*prefix, os.path.join(folder, "replay_run" + suffix)]


class Machine:
    """The files of one table of one size."""

    def __init__(self, folder, table, rows):
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
        self.folder = folder
        self.rows = rows
        self.patch = self.path("patch")
        engine_data.make_patch(self.patch, table, rows)
        make = engine_data.make_target
        make(self.path("behind"), table, rows)
        make(self.path("equal"), table, rows, version=2)
        make(self.path("keyless"), table, rows, version=2, tells_key=False)
        make(self.path("empty"), table, 0)
        make(self.path("bare"), table)
        self.road = os.path.join(folder, "road")

    def path(self, name):
        return os.path.join(self.folder, name + ".mdb")

    def fresh(self, target, name):
        shutil.copyfile(self.path(target), self.path(name))
        return self.path(name)


def record(machine, recorder, case):
    name, flags, target, statements, misses, _, reports = case
    engine_data.write_step(machine.patch, flags)
    command = [recorder, machine.patch, machine.fresh(target, "recorded"), engine_data.TARGET,
               machine.road]
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True)
    found = lines_as_numbers(done.stdout)
    created = 1 if flags == engine_data.CREATE else 0
    expected = {"rows": machine.rows, "statements": machine.rows * statements + created,
                "no_data": machine.rows * misses, "failed": 0, "traces": reports}
    if found != expected:
        stop(f"{name}: the engine did {found}, and not {expected}")


def measure_pair(machine, platform, case, engine_first):
    """Seconds and peaks of an engine and a replay, each on a target of its own."""
    name, _, target, _, _, share, reports = case
    result = {}
    for side in ("engine", "replay") if engine_first else ("replay", "engine"):
        file = machine.fresh(target, side)
        arguments = ([machine.patch, file, engine_data.TARGET] if side == "engine" else
                     [machine.patch, file, machine.road])
        figures, peak = run(getattr(platform, side) + arguments, 2)
        if side == "engine" and figures["traces"] != reports:
            stop(f"{name}: {figures['traces']:.0f} reports of the engine, and not {reports}")
        result[side] = figures["seconds"], peak
    if not filecmp.cmp(machine.path("engine"), machine.path("replay"), shallow=False):
        stop(f"{name}: engine and replay left different databases")
    if engine_data.count_rows(machine.path("engine")) != machine.rows * share:
        stop(f"{name}: the target has not the rows that it should have")
    return result


def summary(machine, table, platform, case, pairs):
    engine = min(pair["engine"][0] for pair in pairs)
    replay = min(pair["replay"][0] for pair in pairs)
    values = [table, case[0], machine.rows, platform.name, len(pairs), engine * 1e3, replay * 1e3,
              engine / replay, engine * 1e6 / machine.rows, replay * 1e6 / machine.rows,
              max(pair["engine"][1] for pair in pairs), max(pair["replay"][1] for pair in pairs)]
    return dict(zip(COLUMNS, values))


def measure_case(plan, machine, table, platforms, case, rounds):
    """A line for each platform. One that is above the limit gets up to as many rounds again, and
    two more: a single one may have met something else that the machine did."""
    samples = {platform.name: [] for platform in platforms}
    for number in range(2 * rounds + 2):
        for platform in platforms:
            pairs = samples[platform.name]
            if (number < rounds or
                    not plan.is_within(summary(machine, table, platform, case, pairs))):
                pairs.append(measure_pair(machine, platform, case, number % 2 == 0))
    return [summary(machine, table, platform, case, samples[platform.name])
            for platform in platforms]


def print_head(platforms):
    print(f"{'':36}" + "".join(f"   {platform.name:42}" for platform in platforms))
    each = f"{'ratio':>9}{'engine ms':>11}{'replay ms':>10}{'us a row':>9}{'MiB':>6}"
    print(f"{'table':12}{'case':16}{'rows':>8}" + each * len(platforms), flush=True)


def print_case(lines):
    text = f"{lines[0]['table']:12}{lines[0]['case']:16}{lines[0]['rows']:>8}"
    for line in lines:
        text += (f"{line['ratio']:>9.2f}{line['engine ms']:>11.1f}{line['replay ms']:>10.1f}"
                 f"{line['engine us/row']:>9.1f}{line['engine peak MiB']:>6.1f}")
    print(text, flush=True)


def findings(plan, lines):
    """Sentences on every limit that is passed."""
    passed = []
    for line in lines:
        if not plan.is_within(line):
            passed.append(f"{line['case']}, {line['rows']} rows, {line['platform']}: "
                          f"{line['ratio']:.3f} times the replay, limit {plan.ratio_limit}")
    groups = {}
    for line in lines:
        groups.setdefault((line["table"], line["case"], line["platform"]), []).append(line)
    for (table, case, platform), group in groups.items():
        group.sort(key=lambda line: line["rows"])
        least, most = group[0], group[-1]
        growth = most["engine peak MiB"] - least["engine peak MiB"]
        if growth > plan.growth_limit_mib:
            passed.append(f"{table}, {case}, {platform}: {growth:.2f} MiB more memory for "
                          f"{most['rows']} rows than for {least['rows']}")
        # The shortest run has its start in it, so the next one is what others are compared with.
        base = group[1] if len(group) > 2 else least
        slower = most["engine us/row"] / base["engine us/row"]
        if slower > plan.linear_limit:
            passed.append(f"{table}, {case}, {platform}: a row takes {slower:.2f} times as long "
                          f"among {most['rows']} as among {base['rows']}")
    return passed


def write_results(folder, lines):
    with open(os.path.join(folder, "engine.csv"), "w", encoding="ascii", newline="") as file:
        writer = csv.DictWriter(file, COLUMNS)
        writer.writeheader()
        for line in lines:
            writer.writerow({name: round(value, 4) if isinstance(value, float) else value
                             for name, value in line.items()})
    engine_plot.write(os.path.join(folder, "engine.svg"), lines)


def data_folder(results, plan):
    """In memory if there is enough of it: a disk takes its time when it likes."""
    place = os.environ.get("KESTREL_BENCH_DATA")
    if place is None:
        with open("/proc/meminfo", encoding="ascii") as meminfo:
            available = next(int(line.split()[1]) * 1024 for line in meminfo
                             if line.startswith("MemAvailable:"))
        enough = min(available, shutil.disk_usage("/dev/shm").free) > plan.data_bytes + (2 << 30)
        place = "/dev/shm" if enough else results
    if shutil.disk_usage(place).free < plan.data_bytes:
        stop(f"{place} has less than {plan.data_bytes >> 20} MiB left")
    folder = os.path.join(place, "kestrelforge-bench")
    print(f"Databases in {folder}", flush=True)
    return folder


def main():
    folder, native, windows = sys.argv[1:4]
    plan = Plan("--short" in sys.argv[4:])
    os.makedirs(folder, exist_ok=True)
    data = data_folder(os.path.abspath(folder), plan)
    platforms = [Platform("native", native, [], ""),
                 Platform("Wine", windows, [WINE], ".exe")]
    lines = []
    print_head(platforms)
    try:
        for table, columns, rows, rounds in plan.sizes:
            machine = Machine(data, columns, rows)
            for case in CASES:
                record(machine, os.path.join(native, "engine_record"), case)
                measured = measure_case(plan, machine, table, platforms, case, rounds)
                print_case(measured)
                lines += measured
    finally:
        shutil.rmtree(data, ignore_errors=True)
    write_results(folder, lines)
    print(f"\nThe same as a table: {folder}/engine.csv; time against rows: {folder}/engine.svg")
    passed = findings(plan, lines)
    print("\n".join(passed) if passed else "All limits are kept.")
    sys.exit(1 if passed else 0)


if __name__ == "__main__":
    main()
