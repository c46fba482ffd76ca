#!/usr/bin/env python3
"""Makes small changes to the program, one at a time in a copy of the tree, and counts those that
the tests catch. The sample depends on the seed and the sources alone. Each change that no test
catches has to be judged in survivors.tsv: why it makes no difference."""
import argparse
import collections
import concurrent.futures
import os
import random
import sys
import threading

sys.dont_write_bytecode = True  # the sources' folder stays as it is

from sites import candidates, changeable_lines
from trial import (PLAIN, PROGRAMS, SANITIZED, Build, Scratch, TreeCopy, UnitTests,
                   differential_suite, now, program_suite)

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
WORK = os.path.join(ROOT, "build", "mutation")
FOLDERS = ["foundation", "settings", "host", "database", "sql", "patch", "update", "launcher"]
WINDOWS_ONLY = {"launcher/main.cpp"}  # not part of a native build


class Sample:
    """Points at equal distances in all lines that can be changed, laid end to end. Each stands for
    the next change to its file that nobody had yet."""

    def __init__(self, tree, count, seed):
        self.files = []
        for folder in FOLDERS:
            for name in sorted(os.listdir(tree.path(folder))):
                file = f"{folder}/{name}"
                if name.endswith((".h", ".cpp")) and file not in WINDOWS_ONLY:
                    self.files += [file] * changeable_lines(file, tree.read(file))
        self.order = {file: candidates(file, tree.read(file), seed) for file in set(self.files)}
        distance = len(self.files) / count
        begin = random.Random(seed).random() * distance
        self.points = [int(begin + distance * i) for i in range(count)]

    def next_change(self, point):
        """From the next file if this one has no more."""
        for i in range(len(self.files)):
            file = self.files[(point + i) % len(self.files)]
            site = next(self.order[file], None)
            if site is not None:
                return site
        raise SystemExit("There are no more changes to make.")


class Trials:
    def __init__(self, options, judged):
        self.options, self.judged = options, judged
        self.caught = {}  # site: by which suite, and how
        self.unfit = 0
        self.driver = os.path.join(ROOT, "build", "driver", "driver")
        self.sanitized_driver = os.path.join(ROOT, "build", "driver-asan", "driver")
        os.environ["ODBCSYSINI"] = self.driver
        self.tree = TreeCopy(ROOT, os.path.join(WORK, "tree"))
        self.tree.update()
        self.plain = self.build("plain", PLAIN, self.driver)
        self.unit_tests = UnitTests(self.plain.build_unchanged(["unit_tests"]))

    def build(self, name, build_options, driver):
        return Build(self.tree, os.path.join(WORK, name), build_options, driver,
                     self.options.workers)

    def is_judged(self, site):
        return key_of(site) in self.judged

    def run_pass(self, build, targets, sites, suites_of):
        """Builds one change after the other while the tests of those before run. Returns the sites
        that the suites don't catch, and those that don't compile."""
        unfit, trials = [], []
        places = threading.Semaphore(self.options.workers + 1)
        with concurrent.futures.ThreadPoolExecutor(self.options.workers) as pool:
            for site in sites:
                places.acquire()
                scratch = Scratch()
                if build.build_changed(site, targets, scratch.folder):
                    trials.append((site, pool.submit(self.try_change, site, suites_of(site),
                                                     scratch, places)))
                else:
                    unfit.append(site)
                    scratch.close()
                    places.release()
            return [site for site, trial in trials if not trial.result()], unfit

    def try_change(self, site, suites, scratch, places):
        try:
            for suite in suites:
                failure = suite.run(scratch.folder)
                if failure is not None:
                    self.caught[site] = (suite.name, failure)
                    print(f"{now()} {site.file}: {site.after}\n         caught by {suite.name}: "
                          f"{failure}", flush=True)
                    return True
            print(f"{now()} {site.file}: {site.after}\n         left", flush=True)
            return False
        finally:
            scratch.close()
            places.release()

    def unit_pass(self, sites):
        """As run_pass. A header of the foundation is compiled into everything, so the tests of that
        folder come before all others. Nor is everything compiled for a header's change that is
        judged already: it counts as left."""
        judged = [site for site in sites if is_header(site) and self.is_judged(site)]
        foundation = [site for site in sites if is_header(site) and site not in judged and
                      site.file.startswith("foundation/")]
        others = [site for site in sites if site not in judged + foundation]
        left, unfit = [], []
        if foundation:
            self.plain.build_unchanged(["foundation_tests"])
            suite = program_suite("foundation_tests", True)
            suite.processor_seconds = self.unit_tests.all.processor_seconds
            left, unfit = self.run_pass(self.plain, ["foundation_tests"], foundation,
                                        lambda site: [suite])
        left, more_unfit = self.run_pass(self.plain, ["unit_tests"],
                                         sorted(left + others, key=is_header),
                                         self.unit_tests.suites)
        self.unfit += len(unfit + more_unfit)
        return judged + left, unfit + more_unfit

    def program_pass(self, sites):
        """Returns those that are left."""
        judged = [site for site in sites if is_header(site) and self.is_judged(site)]
        sites = [site for site in sites if site not in judged]
        if not sites:
            return judged
        suites = [program_suite(name, True) for name in PROGRAMS]
        suites.append(differential_suite(self.tree, self.driver))
        targets = [*PROGRAMS, "differential_runner"]
        programs = self.plain.build_unchanged(targets)
        for suite in suites:
            suite.measure(programs)
        return judged + self.run_pass(self.plain, targets, sites, lambda site: suites)[0]

    def sanitized_pass(self, sites):
        """For what nobody has judged yet: the sanitizers see what no test can ask for."""
        sites = [site for site in sites if not self.is_judged(site)]
        if not sites:
            return
        build = self.build("sanitized", SANITIZED, self.sanitized_driver)
        for targets in (["unit_tests"], PROGRAMS):
            programs = build.build_unchanged(targets)
            suites = [program_suite(name, False) for name in targets]
            for suite in suites:
                suite.measure(programs)
            sites, _ = self.run_pass(build, targets, sites, lambda site, suites=suites: suites)
            if not sites:
                return


def is_header(site):
    return site.file.endswith(".h")


def key_of(site):
    return site.file, str(site.number), site.before, site.after


def read_judgements(file):
    """(file, number, line, changed line): why the change makes no difference."""
    judged = {}
    with open(file, encoding="utf-8") as stream:
        for number, line in enumerate(stream, 1):
            if line.startswith("#") or not line.strip():
                continue
            columns = line.rstrip("\n").split("\t")
            if len(columns) != 5 or len(columns[4]) < 20:
                raise SystemExit(f"{file}:{number}: five columns, of which the last one tells why")
            judged[tuple(columns[:4])] = columns[4]
    return judged


def sample(trials, options):
    """As many changes as are wanted, tried with the unit tests; those that don't compile are
    replaced. Returns all of them, and those that are left."""
    chosen = Sample(trials.tree, options.count, options.seed)
    points, made, left = chosen.points, [], []
    while points:
        sites = [chosen.next_change(point) for point in points]
        more_left, unfit = trials.unit_pass(sites)
        left += more_left
        made += [site for site in sites if site not in unfit]
        points = [point for point, site in zip(points, sites) if site in unfit]
    return made, left


def again(trials, options):
    """The changes that the last run left, as far as they can still be made."""
    with open(options.results, encoding="utf-8") as stream:
        wanted = {tuple(line.rstrip("\n").split("\t")[1:5]) for line in stream
                  if line.startswith("left\t")}
    files = sorted({file for file, *_ in wanted})
    sites = [site for file in files
             for site in candidates(file, trials.tree.read(file), options.seed)
             if key_of(site) in wanted]
    left, unfit = trials.unit_pass(sites)
    return [site for site in sites if site not in unfit], left


def write_results(file, made, caught):
    with open(file, "w", encoding="utf-8") as stream:
        for site in made:
            suite, failure = caught.get(site, ("", ""))
            stream.write("\t".join(["caught" if suite else "left", *key_of(site), suite, failure]) +
                         "\n")


def report(made, trials, options):
    """Prints what was found; returns what is wrong with it, if anything is."""
    left = [site for site in made if site not in trials.caught]
    unjudged = [site for site in left if not trials.is_judged(site)]
    caught = len(made) - len(left)
    rate = 100 * caught / len(made)
    by = collections.Counter(suite for suite, _ in trials.caught.values())
    if unjudged:
        print("\nNo test catches these, and nobody has judged them:")
        for site in unjudged:
            print("\t".join(key_of(site)))
    figure = (f"Small changes to the program: {len(made)} made, {caught} caught ({rate:.1f} %), "
              f"{len(left)} left, of which {len(left) - len(unjudged)} are judged\n"
              "Caught by " + ", ".join(f"{name} {count}" for name, count in by.most_common()) +
              f"; {trials.unfit} more did not compile\n")
    print("\n" + figure)
    with open(options.figure, "w", encoding="utf-8") as stream:
        stream.write(figure)
    if unjudged:
        return f"{len(unjudged)} changes that no test catches are not judged"
    if options.least is not None and rate < options.least:
        return f"Fewer than {options.least} % were caught"
    return None


def read_options():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--count", type=int, default=200, help="how many changes")
    parser.add_argument("--seed", type=int, default=1, help="which ones")
    parser.add_argument("--workers", type=int, default=os.cpu_count(), help="programs at a time")
    parser.add_argument("--least", type=float, help="per cent that must be caught")
    parser.add_argument("--again", action="store_true", help="only those that the last run left")
    options = parser.parse_args()
    options.results = os.path.join(WORK, "results.tsv")
    options.figure = os.path.join(WORK, "figure.txt")
    return options


def main():
    options = read_options()
    trials = Trials(options, read_judgements(os.path.join(HERE, "survivors.tsv")))
    made, left = again(trials, options) if options.again else sample(trials, options)
    left = trials.program_pass(left)
    trials.sanitized_pass(left)
    write_results(options.results, made, trials.caught)
    return report(made, trials, options)


if __name__ == "__main__":
    sys.exit(main())
