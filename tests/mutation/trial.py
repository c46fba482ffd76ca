"""A copy of the tree in which one change at a time is built and tested."""
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time

# What is run besides the unit tests, the quickest first.
PROGRAMS = ["string_memory_tests", "static_order_tests", "static_order_reversed_tests",
            "contract_tests", "update_memory_tests", "scenario_tests"]

# Without optimisation, because most of the time goes into compiling; without warnings, because a
# variable that a change leaves unused is no reason to leave the change out. The leak sanitizer
# needs nothing but another allocator.
PLAIN = ["-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O0 -w",
         "-DCMAKE_EXE_LINKER_FLAGS=-fsanitize=leak"]
SANITIZED = ["-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O1 -w",
             "-DKESTREL_SANITIZE=address,undefined"]

SLOW_TEST_SECONDS = 0.1  # of processor time, on the unchanged tree; such tests run last
MOST_MEMORY = 3 << 30    # bytes, of a program without the address sanitizer
MOST_SECONDS = 1200      # by the clock; only a program that sleeps needs it

ENVIRONMENT = {
    "ASAN_OPTIONS": "detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:"
                    "hard_rss_limit_mb=6000",
    "LSAN_OPTIONS": "print_suppressions=0",
}


class TreeCopy:
    """The files of the repository, as they are in the working tree."""

    def __init__(self, root, folder):
        self.root, self.folder = root, folder

    def update(self):
        """Brings the copy up to date; files that are as they were keep their times."""
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=self.root,
            check=True, stdout=subprocess.PIPE).stdout.decode().split("\0")
        wanted = {name for name in listed if name and os.path.exists(self.original(name))}
        for name in sorted(wanted):
            with open(self.original(name), "rb") as stream:
                content = stream.read()
            if name == "tests/CMakeLists.txt":
                content += b"add_subdirectory(mutation)\n"
            self.write_if_other(name, content)
        for folder, _, files in os.walk(self.folder):
            for file in files:
                path = os.path.join(folder, file)
                if os.path.relpath(path, self.folder) not in wanted:
                    os.remove(path)

    def original(self, name):
        return os.path.join(self.root, name)

    def path(self, name):
        return os.path.join(self.folder, name)

    def write_if_other(self, name, content):
        path = self.path(name)
        if os.path.exists(path):
            with open(path, "rb") as stream:
                if stream.read() == content:
                    return
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as stream:
            stream.write(content)
        shutil.copymode(self.original(name), path)

    def read(self, name):
        with open(self.path(name), encoding="utf-8", newline="") as stream:
            return stream.read()


class Build:
    """A build folder of the copy, with a second one beside it that remembers the unchanged state.
    The objects of a change are replaced from there and not compiled again."""

    def __init__(self, tree, folder, options, driver, jobs):
        self.tree, self.folder, self.jobs = tree, folder, f"-j{jobs}"
        self.pristine = folder + "-unchanged"
        self.command(["cmake", "-G", "Ninja", "-S", tree.folder, "-B", folder,
                      "-DCMAKE_CXX_COMPILER=g++", f"-DKESTREL_DRIVER_FOLDER={driver}", *options])

    def build_unchanged(self, targets):
        """Gives the folder of the programs."""
        self.command(["ninja", "-C", self.folder, self.jobs, *targets])
        mirror(self.folder, self.pristine)
        return os.path.join(self.pristine, "bin")

    @staticmethod
    def command(arguments):
        done = subprocess.run(arguments, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if done.returncode != 0:
            raise SystemExit(done.stdout.decode(errors="replace")[-4000:] +
                             f"\nThe unchanged tree fails: {' '.join(arguments)}")

    def build_changed(self, site, targets, programs_folder):
        """Builds the changed tree and copies its programs away; False if it doesn't compile."""
        path = self.tree.path(site.file)
        original, times = self.tree.read(site.file), os.stat(path)
        try:
            with open(path, "w", encoding="utf-8", newline="") as stream:
                stream.write(original[:site.start] + site.replacement + original[site.end:])
            code = run_group(["ninja", "-C", self.folder, self.jobs, *targets], None,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            if code == 0:
                for target in targets:
                    shutil.copy2(os.path.join(self.folder, "bin", target), programs_folder)
            return code == 0
        finally:
            with open(path, "w", encoding="utf-8", newline="") as stream:
                stream.write(original)
            os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
            mirror(self.pristine, self.folder)


def mirror(source, destination):
    """Copies what differs in size or time."""
    for folder, _, files in os.walk(source):
        target = os.path.join(destination, os.path.relpath(folder, source))
        os.makedirs(target, exist_ok=True)
        for file in files:
            ours, theirs = os.path.join(folder, file), os.path.join(target, file)
            if os.path.exists(theirs):
                one, other = os.stat(ours), os.stat(theirs)
                if (one.st_size, one.st_mtime_ns) == (other.st_size, other.st_mtime_ns):
                    continue
                os.remove(theirs)
            shutil.copy2(ours, theirs)


class Scratch:
    """A folder of its own for each run of a program, in memory where there is such a place."""

    def __init__(self):
        memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        self.folder = tempfile.mkdtemp(prefix="kestrel-mutation-", dir=memory)

    def close(self):
        shutil.rmtree(self.folder, ignore_errors=True)

    def __enter__(self):
        return self.folder

    def __exit__(self, *_):
        self.close()


def run_group(arguments, seconds, **more):
    """The code that a program ends with, or None if it takes too long. It leaves no child behind,
    also where this script is interrupted."""
    process = subprocess.Popen(arguments, start_new_session=True, **more)
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        return None
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def run(arguments, scratch, processor_seconds, limit_memory):
    """None if the program ends with 0, else what it said or how it ended."""
    limits = ["prlimit", "--core=0"]
    if processor_seconds is not None:
        limits.append(f"--cpu={processor_seconds}")
    if limit_memory:
        limits.append(f"--data={MOST_MEMORY}")
    output_file = os.path.join(scratch, "output.txt")
    with open(output_file, "wb") as output:
        code = run_group(limits + arguments, MOST_SECONDS, stdin=subprocess.DEVNULL, stdout=output,
                         stderr=subprocess.STDOUT,
                         env=dict(os.environ, TMPDIR=scratch, **ENVIRONMENT))
    if code == 0:
        return None
    with open(output_file, encoding="utf-8", errors="replace") as stream:
        said = stream.read()
    failed = re.search(r"^\[  FAILED  \] (\S+?),? |^Seed \d+ differs|SUMMARY: .*|.*runtime error.*",
                       said, re.MULTILINE)
    if failed is not None:
        return failed[1] or failed[0]
    last_words = " ".join(said.strip().rsplit("\n", 1)[-1].split())
    return f"no end: {last_words}" if code is None else f"ended with {code}: {last_words}"


class Suite:
    """A program of the tests, or a part of it, and how long it may take."""

    def __init__(self, name, arguments, limit_memory):
        self.name, self.arguments, self.limit_memory = name, arguments, limit_memory
        self.processor_seconds = None

    def run(self, programs_folder):
        with Scratch() as scratch:
            arguments = [text.format(programs=programs_folder, scratch=scratch)
                         for text in self.arguments]
            return run(arguments, scratch, self.processor_seconds, self.limit_memory)

    def measure(self, programs_folder):
        """Runs it on the unchanged tree, where it has to pass, and gives a change four times as
        long and ten seconds."""
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        failure = self.run(programs_folder)
        if failure is not None:
            raise SystemExit(f"{self.name} fails on the unchanged tree: {failure}")
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        used = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        self.processor_seconds = int(4 * used) + 10


def program_suite(name, limit_memory, *more):
    return Suite(name, ["{programs}/" + name, "--gtest_brief=1", "--gtest_fail_fast", *more],
                 limit_memory)


class UnitTests:
    """The unit tests: first those of the changed folder, without the slow ones, then all others."""

    def __init__(self, programs_folder):
        self.all = program_suite("unit_tests", True, "--gtest_output=json:{scratch}/tests.json")
        self.first_part, self.seconds = {}, {}  # by folder
        with Scratch() as scratch:
            results = os.path.join(scratch, "tests.json")
            self.all.arguments[-1] = f"--gtest_output=json:{results}"
            self.all.measure(programs_folder)
            with open(results, encoding="utf-8") as stream:
                suites = json.load(stream)["testsuites"]
        self.all.arguments.pop()
        for suite in suites:
            for test in suite["testsuite"]:
                seconds = float(test["time"].rstrip("s"))
                if seconds < SLOW_TEST_SECONDS:
                    folder = re.search(r"tests/unit/(\w+)/", test["file"])[1]
                    self.first_part.setdefault(folder, []).append(
                        f"{suite['name']}.{test['name']}")
                    self.seconds[folder] = self.seconds.get(folder, 0) + seconds

    def suites(self, site):
        folder = site.file.split("/")[0]
        if folder not in self.first_part:
            return [self.all]
        names = ":".join(self.first_part[folder])
        return [self.part(names, int(4 * self.seconds[folder]) + 10),
                self.part("-" + names, self.all.processor_seconds)]

    @staticmethod
    def part(names, processor_seconds):
        suite = program_suite("unit_tests", True, "--gtest_filter=" + names)
        suite.processor_seconds = processor_seconds
        return suite


def differential_suite(tree, driver):
    return Suite("differential", [
        tree.path("tests/differential/compare.py"), "--runner", "{programs}/differential_runner",
        "--driver", driver, "--kept", "{scratch}/kept", "--most", "1"], True)


def now():
    return time.strftime("%H:%M:%S")
