#!/usr/bin/python3
"""Shows that a comparison can fail: what a program did is changed afterwards in one place, and each
such change has to be found. Takes the arguments of compare.py."""

import copy
import os
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True

import compare
import odbc
from generator import Machine

SEEDS = range(1, 8)


def other_code(outcome, folder, machine):
    database, text, code = outcome.calls[-1]
    outcome.calls[-1] = (database, text, 100 if code != 100 else -1)


def other_text(outcome, folder, machine):
    database, text, code = outcome.calls[0]
    outcome.calls[0] = (database, text + " ", code)


def other_database(outcome, folder, machine):
    _, text, code = outcome.calls[0]
    outcome.calls[0] = ("Another.mdb", text, code)


def call_missing(outcome, folder, machine):
    outcome.calls.pop()


def call_too_many(outcome, folder, machine):
    outcome.calls.append(outcome.calls[-1])


def trace_missing(outcome, folder, machine):
    outcome.traces.pop()


def traces_in_another_order(outcome, folder, machine):
    outcome.traces.reverse()


def misuse(outcome, folder, machine):
    outcome.misuses.append("A handle was used after it had been freed.")


def other_content(outcome, folder, machine):
    path = os.path.join(folder, "data", next(iter(machine.product.values())))
    connection = odbc.Connection(path)
    connection.run(["CREATE TABLE NobodyAskedForIt ([A] LONG)"])
    connection.close()


CHANGES = [other_code, other_text, other_database, call_missing, call_too_many, trace_missing,
           traces_in_another_order, misuse, other_content]


def unnoticed(options, folder):
    """The changes that the comparison took no notice of, each with its seed."""
    program = compare.Program(options.runner, folder)
    passed_over = []
    for seed in SEEDS:
        machine = Machine(seed)
        laid_out = os.path.join(folder, "machine")
        compare.lay_out(machine, laid_out)
        program.begin(laid_out)
        expected, _ = compare.run_model(machine, laid_out)
        actual = program.outcome()
        if compare.differences_between(expected, copy.deepcopy(actual), machine, laid_out):
            passed_over.append((seed, "differs as it is"))
        for change in CHANGES:
            changed = copy.deepcopy(actual)
            change(changed, laid_out, machine)
            if not compare.differences_between(expected, changed, machine, laid_out):
                passed_over.append((seed, change.__name__))
        shutil.rmtree(laid_out)
    program.close()
    return passed_over


def main():
    with tempfile.TemporaryDirectory(prefix="kestrel-differential-") as folder:
        passed_over = unnoticed(compare.read_options(), folder)
    for seed, change in passed_over:
        print(f"Seed {seed}: {change}")
    print(f"{len(SEEDS) * len(CHANGES)} changes, {len(passed_over)} passed over")
    return 1 if passed_over else 0


if __name__ == "__main__":
    sys.exit(main())
