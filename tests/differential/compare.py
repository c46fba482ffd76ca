#!/usr/bin/python3
"""Lets the program and the model update the same random machines and compares what they did:
every statement with its result, every trace, and what the databases hold in the end."""

import argparse
import collections
import os
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True  # the sources' folder stays as it is

import odbc
from coverage import SITUATIONS
from generator import Machine
from model import Update


# ---- Machines ------------------------------------------------------------------------------------

def lay_out(machine, folder):
    """`folder/data` for the program and `folder/model` for the model, with the same databases."""
    data = os.path.join(folder, "data")
    for path, content in machine.databases.items():
        file = os.path.join(data, path)
        os.makedirs(os.path.dirname(file), exist_ok=True)
        with open(file, "wb") as stream:
            stream.write(content if isinstance(content, bytes) else b"")
        if not isinstance(content, bytes):
            connection = odbc.Connection(file)
            connection.run(content)
            connection.close()
    shutil.copytree(data, os.path.join(folder, "model"))
    write(os.path.join(data, "Configuration/DatabaseConfiguration.xml"), machine.configuration())
    write(os.path.join(folder, "machine.txt"), machine.surroundings())


def write(file, text):
    os.makedirs(os.path.dirname(file), exist_ok=True)
    with open(file, "w", encoding="utf-8", errors="surrogatepass", newline="") as stream:
        stream.write(text)


class Outcome:
    def __init__(self, calls, traces, misuses=()):
        self.calls, self.traces, self.misuses = calls, traces, list(misuses)

    def lines(self):
        return ([f"{code:4} {database}: {text}" for database, text, code in self.calls] + [""] +
                [f"trace {text!r}" for text in self.traces] +
                [f"misuse {text}" for text in self.misuses])


def run_model(machine, folder):
    data = os.path.join(folder, "model")
    update = Update(data, machine.language, {name: os.path.join(data, path)
                                             for name, path in machine.product.items()})
    update.run()
    update.close()
    return Outcome(update.calls, update.traces), update.seen


# ---- The program ---------------------------------------------------------------------------------

class Program:
    """The process that updates one machine after the other."""

    def __init__(self, runner, temporary):
        self.command, self.environment = [runner], dict(os.environ, TMPDIR=temporary)
        self.environment.setdefault("LSAN_OPTIONS", "print_suppressions=0")
        self.start()

    def start(self):
        self.process = subprocess.Popen(self.command, env=self.environment, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.rest = b""

    def begin(self, folder):
        self.process.stdin.write(folder.encode() + b"\n")
        self.process.stdin.flush()

    def records(self):
        """Until `end`; None if the program ended instead."""
        records = []
        while True:
            *whole, self.rest = self.rest.split(b"\0")
            for record in whole:
                text = record.decode("utf-8", "surrogatepass")
                if text == "end ":
                    return records
                records.append(text)
            block = self.process.stdout.read1(1 << 16)
            if not block:
                self.process.wait()
                self.start()
                return None
            self.rest += block

    def outcome(self):
        records = self.records()
        if records is None:
            return Outcome([], [], ["the program ended; its last words are above"])
        diary = [record[5:] for record in records if record.startswith("call ")]
        traces = [record[6:] for record in records if record.startswith("trace ")]
        misuses = [record[7:] for record in records if record.startswith("misuse ")]
        return Outcome(calls_of(diary), traces, misuses)

    def close(self):
        self.process.stdin.close()
        return self.process.wait()


ALLOCATED = re.compile(r"SQLAllocHandle\(STMT, (dbc#\d+)\) = 0 (stmt#\d+)")
CONNECTED = re.compile(
    r'SQLDriverConnectW\((dbc#\d+), .*DBQ=C:\\Data\\(?:.*\\)?([^"\\]*)", .* = [01]$')
EXECUTED = re.compile(r'SQLExecDirectW\((stmt#\d+), "(.*)", -3\) = (-?\d+)', re.DOTALL)
COLUMNS = re.compile(r'SQLColumnsW\((stmt#\d+), null 0, null 0, "(.*)" -3, null 0\) = (-?\d+)')
TABLES = re.compile(r'SQLTablesW\((stmt#\d+), null 0, null 0, null 0, "TABLE" 5\) = (-?\d+)')


def calls_of(diary):
    """(database, statement, code) for each line of the diary that asks a database for something."""
    files, owners, calls = {}, {}, []
    for line in diary:
        if found := CONNECTED.match(line):
            files[found[1]] = found[2]
        elif found := ALLOCATED.fullmatch(line):
            owners[found[2]] = files.get(found[1], found[1])
        elif found := EXECUTED.fullmatch(line):
            calls.append((owners[found[1]], found[2], int(found[3])))
        elif found := COLUMNS.fullmatch(line):
            calls.append((owners[found[1]], "columns of " + found[2], int(found[3])))
        elif found := TABLES.fullmatch(line):
            calls.append((owners[found[1]], "tables", int(found[2])))
        elif not line.startswith(("SQLAllocHandle(", "SQLDriverConnectW(", "SQLDisconnect(")):
            calls.append(("?", line, 0))
    return calls


# ---- Comparison ----------------------------------------------------------------------------------

def stored_content(file):
    """Each table's definition and its rows in an order that is their own."""
    connection = sqlite3.connect(f"file:{file}?mode=ro", uri=True)
    connection.text_factory = lambda raw: raw.decode("utf-8", "surrogatepass")
    tables = {}
    for kind, name, sql in connection.execute("SELECT type, name, sql FROM sqlite_master"):
        rows = []
        if kind == "table":
            rows = connection.execute('SELECT * FROM "' + name.replace('"', '""') + '"').fetchall()
        tables[kind, name, sql] = sorted(repr(row) for row in rows)
    connection.close()
    return tables


def same_bytes(left, right):
    with open(left, "rb") as one, open(right, "rb") as other:
        return one.read() == other.read()


def differing_contents(machine, folder):
    differences = []
    for path, content in machine.databases.items():
        program = os.path.join(folder, "data", path)
        model = os.path.join(folder, "model", path)
        if same_bytes(program, model):
            continue
        if isinstance(content, bytes):
            differences.append(f"{path} was written to")
            continue
        ours, theirs = stored_content(model), stored_content(program)
        for key in sorted({*ours, *theirs}, key=str):
            if ours.get(key) != theirs.get(key):
                differences.append(f"{path}, {key[0]} {key[1]}:\n  model:   {ours.get(key)}\n"
                                   f"  program: {theirs.get(key)}")
    return differences


def first_difference(kind, expected, actual):
    for i in range(max(len(expected), len(actual))):
        ours = expected[i] if i < len(expected) else "nothing more"
        theirs = actual[i] if i < len(actual) else "nothing more"
        if ours != theirs:
            return [f"{kind} {i + 1}:\n  model:   {ours}\n  program: {theirs}"]
    return []


def named_like_files(calls, machine):
    """The program's connections are known by their files, the model's by their names."""
    names = {os.path.basename(path): name for name, path in machine.product.items()}
    return [(names.get(database, database), text, code) for database, text, code in calls]


def differences_between(expected, actual, machine, folder):
    actual.calls = named_like_files(actual.calls, machine)
    return (actual.misuses + first_difference("statement", expected.calls, actual.calls) +
            first_difference("trace", expected.traces, actual.traces) +
            differing_contents(machine, folder))


def keep(machine, expected, actual, differences, kept):
    """The machine as texts, with what either side did to it."""
    folder = os.path.join(kept, f"seed-{machine.seed}")
    shutil.rmtree(folder, ignore_errors=True)
    for path, content in machine.databases.items():
        text = ("no database\n" if isinstance(content, bytes) else
                "".join(statement + ";\n" for statement in content))
        write(os.path.join(folder, path[:-len(".mdb")] + ".sql"), text)
    write(os.path.join(folder, "Configuration/DatabaseConfiguration.xml"), machine.configuration())
    write(os.path.join(folder, "machine.txt"), machine.surroundings())
    write(os.path.join(folder, "model.txt"), "\n".join(expected.lines()) + "\n")
    write(os.path.join(folder, "program.txt"), "\n".join(actual.lines()) + "\n")
    write(os.path.join(folder, "differences.txt"), "\n".join(differences) + "\n")
    return folder


# ---- The run -------------------------------------------------------------------------------------

class Comparison:
    def __init__(self, options):
        self.options = options
        self.seen, self.statements, self.failed = collections.Counter(), 0, []

    def compare(self, seed, program, folder):
        machine = Machine(seed)
        lay_out(machine, folder)
        program.begin(folder)
        expected, seen = run_model(machine, folder)
        actual = program.outcome()
        self.seen += seen
        self.statements += len(expected.calls)
        differences = differences_between(expected, actual, machine, folder)
        if differences:
            self.failed.append(seed)
            kept = keep(machine, expected, actual, differences, self.options.kept)
            print(f"\nSeed {seed} differs, see {kept}")
            print("\n".join(differences)[:2000], flush=True)

    def run(self):
        memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        begin = time.time()
        with tempfile.TemporaryDirectory(prefix="kestrel-differential-", dir=memory) as temporary:
            program = Program(self.options.runner, temporary)
            for done in range(self.options.count):
                folder = os.path.join(temporary, "machine")
                self.compare(self.options.first + done, program, folder)
                shutil.rmtree(folder)
                self.show_progress(done + 1, time.time() - begin)
                if len(self.failed) >= self.options.most:
                    break
            if program.close() != 0:
                self.failed.append("the end of the program")
        return self.report(done + 1, time.time() - begin)

    def show_progress(self, done, seconds):
        if sys.stdout.isatty() and done % 10 == 0:
            print(f"\r{done} of {self.options.count}, {done / seconds:.0f} a second, "
                  f"{len(self.failed)} differ", end="", flush=True)

    def report(self, done, seconds):
        print(f"\n{done} machines in {seconds:.1f} s ({done / seconds:.0f} a second), "
              f"{self.statements} statements and catalogue calls, {len(self.failed)} differ")
        if self.options.counts:
            for situation in sorted(self.seen):
                print(f"{self.seen[situation]:9} {situation}")
        # Few machines don't meet everything.
        never = [name for name in SITUATIONS if not self.seen[name]] if done >= 300 else []
        unknown = sorted(set(self.seen) - set(SITUATIONS))
        for situation in never:
            print(f"Never came up: {situation}")
        for situation in unknown:
            print(f"Not in the list of situations: {situation}")
        return 1 if self.failed or never or unknown else 0


def read_options():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runner", required=True, help="the program differential_runner")
    parser.add_argument("--count", type=int, default=300, help="how many machines")
    parser.add_argument("--first", type=int, default=1, help="the first seed")
    parser.add_argument("--most", type=int, default=5, help="differing machines to stop at")
    parser.add_argument("--kept", required=True, help="folder for the machines that differ")
    parser.add_argument("--counts", action="store_true", help="show how often what came up")
    parser.add_argument("--driver", required=True, help="folder of the driver's odbcinst.ini")
    options = parser.parse_args()
    if not os.path.exists(os.path.join(options.driver, "libkestrelodbc.so")):
        parser.error(f"no driver in {options.driver}: cmake --build --preset driver")
    os.environ["ODBCSYSINI"] = options.driver
    return options


if __name__ == "__main__":
    sys.exit(Comparison(read_options()).run())
