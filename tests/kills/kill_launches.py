#!/usr/bin/python3
"""Kills the real program under Wine at chosen statements of an update, looks at what is in the
databases then, and lets the next launch go on. What has to be there is what the model of the
differential tests makes of the same databases."""

import argparse
import os
import shutil
import signal
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the sources' folder stays as it is
HERE = os.path.dirname(os.path.abspath(__file__))
sys.path += [os.path.join(HERE, "../differential"), os.path.join(HERE, "../soak")]

import odbc
from databases import all_files, contents, description
from machine import Machine
from updates import update_copy


class Statements(list):
    """The calls of a model, which looks into the databases after each statement, as the connection
    that sent it sees them."""

    def __init__(self, update):
        # None of those that it has made already changes anything.
        super().__init__(update.calls)
        self.connections = {model.name: model.connection for model in update.models}
        start = {name: content_by(connection) for name, connection in self.connections.items()}
        self.states = [start] + [start for _, text, _ in self if is_statement(text)]

    def append(self, call):
        super().append(call)
        name, text, _ = call
        if is_statement(text):
            changes = name in self.connections and not text.startswith("SELECT ")
            changed = {name: content_by(self.connections[name])} if changes else {}
            self.states.append(self.states[-1] | changed)


def texts(connection, sql):
    statement = connection.statement()
    require(odbc.succeeded(statement.execute(sql)), f"{sql} fails")
    found = []
    while odbc.succeeded(statement.fetch()):
        found.append(statement.value(1, odbc.C_WCHAR))
    statement.free()
    return found


def content_by(connection):
    return description(lambda sql: texts(connection, sql))


def is_statement(text):
    return text != "tables" and not text.startswith("columns of ")


def require(holds, sentence):
    if not holds:
        raise RuntimeError(sentence)


def require_same(found, expected, sentence):
    for name, tables in expected.items():
        require(found[name] == tables,
                f"{sentence}: {name}\n  expected: {tables}\n  found:    {found[name]}")


class Kills:
    def __init__(self, machine, killing_driver):
        self.machine, self.killing_driver = machine, killing_driver
        self.temporary = tempfile.TemporaryDirectory(prefix="kestrel-kills-")
        self.states = self.run_model(machine.laid_out, Statements)[0].states
        self.statements = len(self.states) - 1
        self.count = 0

    def run_model(self, folder, calls=None):
        """Does what the rules want to be done with these databases, in a copy of their folder.
        Returns the calls, what the databases hold in the end, and the traces."""
        copy = os.path.join(self.temporary.name, "model")
        update, files = update_copy(self.machine, folder, copy, calls)
        final = contents(files)
        shutil.rmtree(copy)
        return update.calls, final, "".join(update.traces)

    def kill(self, side, statement):
        """Leaves the data folder as the killed launch has left it."""
        self.machine.restore()
        code, _ = self.machine.launch(KESTREL_KILL_AT=f"{side} {statement}",
                                      ODBCSYSINI=self.killing_driver)
        require(code == -signal.SIGKILL, f"the launch was not killed and ended with {code}")
        require(not self.machine.host_was_started(), "a killed launch has started the host")
        self.count += 1

    def check_databases(self, expected):
        data = self.machine.data
        require_same(contents(self.machine.product_in(data)), expected, "after the kill")
        for name in all_files(data):
            if name.endswith(".mdb"):
                require(integrity(os.path.join(data, name)) == ["ok"], f"{name} is damaged")
        require(all_files(data) == all_files(self.machine.laid_out),
                f"files are missing or left over: {all_files(data)}")
        require_same(contents(self.machine.product_in(data)), expected, "after a connection")

    def check_next_launch(self):
        _, expected, traces = self.run_model(self.machine.data)
        code, output = self.machine.launch(watched=True)
        require(code == 0, f"the next launch ended with {code}")
        require(self.machine.wait_for_host(), "the next launch started no host")
        require(output == traces, f"the next launch traced {output!r} instead of {traces!r}")
        found = contents(self.machine.product_in(self.machine.data))
        require_same(found, expected, "after the next launch")

    def check(self, side, statement):
        try:
            self.kill(side, statement)
            left = os.path.join(self.temporary.name, "left")
            shutil.copytree(self.machine.data, left)
            self.check_databases(self.states[statement - (side == "before")])
            self.machine.restore(left)
            shutil.rmtree(left)
            self.check_next_launch()
        except (RuntimeError, subprocess.TimeoutExpired) as error:
            sys.exit(f"killed {side} statement {statement}: {error}")

    def check_count(self):
        """The program runs as many statements as the model, so a later one is never reached."""
        self.machine.restore()
        code, _ = self.machine.launch(KESTREL_KILL_AT=f"before {self.statements + 1}",
                                      ODBCSYSINI=self.killing_driver)
        if code != 0 or not self.machine.wait_for_host():
            sys.exit(f"a launch doesn't run {self.statements} statements: it ended with {code}")


def integrity(file):
    connection = odbc.Connection(file)
    require(connection.connected, f"{file} can't be opened")
    answer = texts(connection, "PRAGMA integrity_check")
    connection.close()
    return answer


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--windows", required=True, help="folder of the Windows build")
    parser.add_argument("--killing-driver", required=True, help="folder of its odbcinst.ini")
    parser.add_argument("--points", type=int, required=True, help="how many kills")
    options = parser.parse_args()
    machine = Machine(options.windows, os.path.join(HERE, "../.."))
    machine.lay_out()
    kills = Kills(machine, options.killing_driver)
    kills.check_count()
    for i in range(options.points):
        # Both sides of statements that are spread over the run, the last one among them.
        pair, side = divmod(i, 2)
        statement = kills.statements * (pair + 1) // ((options.points + 1) // 2)
        kills.check(("before", "after")[side], statement)
    print(f"{kills.count} of {2 * kills.statements} points")


main()
