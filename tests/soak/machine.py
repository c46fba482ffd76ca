"""The machine of the demo in a Wine prefix, for scripts that start the real program on it many
times. The environment is that of the tests: WINEPREFIX, its server held, ODBCSYSINI."""

import os
import re
import shutil
import subprocess
import tempfile
import time

WINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../wine/wine")
HOME = r"C:\Program Files\Norvane\Kestrelforge 2010"
DATA = r"C:\ProgramData\Kestrelforge"
HOST_REPORT = r"C:\Program Files\AutoCAD 2010\ACAD.report.txt"
LONGEST_LAUNCH = 60  # seconds
LONGEST_WAIT_FOR_HOST = 20


class Description:
    """What sandbox/machines/two-releases says. `sources` is the repository's folder."""

    def __init__(self, sources):
        folder = os.path.join(sources, "sandbox/machines/two-releases")
        with open(os.path.join(folder, "registry.reg"), encoding="utf-8") as text:
            self.language = int(re.search(r'"Language"=dword:(\w+)', text.read())[1], 16)
        with open(os.path.join(folder, "files.txt"), encoding="utf-8") as text:
            places = re.findall(r"^databases\\(\w+)\.mdb -> " + re.escape(DATA + "\\") + r"(.*)$",
                                text.read(), re.MULTILINE)
        self.product = {name: place.replace("\\", "/") for name, place in places}

    def product_in(self, folder):
        """The product's databases in a data folder, by name."""
        return {name: os.path.join(folder, place) for name, place in self.product.items()}


class Machine(Description):
    """`windows` is the folder of the Windows build."""

    def __init__(self, windows, sources):
        super().__init__(sources)
        self.windows, self.prefix = windows, os.environ["WINEPREFIX"]
        self.data = self.path(DATA)
        # As it was before the first launch.
        self.laid_out = os.path.join(os.path.dirname(self.prefix), "laid-out")

    def path(self, windows_path):
        """The Linux path of one on drive C."""
        return os.path.join(self.prefix, "drive_c", windows_path[3:].replace("\\", "/"))

    def lay_out(self):
        shutil.rmtree(self.data, ignore_errors=True)
        sandbox = os.path.join(self.windows, "sandbox")
        subprocess.run([WINE, os.path.join(sandbox, "LayOutMachine.exe"), "two-releases"],
                       check=True, stdout=subprocess.DEVNULL, timeout=LONGEST_LAUNCH)
        os.makedirs(self.path(HOME), exist_ok=True)
        shutil.copy(os.path.join(self.windows, "bin/KestrelforgeLauncher.exe"), self.path(HOME))
        shutil.rmtree(self.laid_out, ignore_errors=True)
        shutil.copytree(self.data, self.laid_out)

    def restore(self, folder=None):
        """Puts the data folder back into the state that it was laid out in, or that of a copy."""
        shutil.rmtree(self.data)
        shutil.copytree(folder or self.laid_out, self.data)

    def start(self, output, watched=False, **variables):
        """Starts the program. If it is watched, what it traces goes to the output."""
        report = self.path(HOST_REPORT)
        if os.path.exists(report):
            os.remove(report)
        watcher = [os.path.join(self.windows, "sandbox/WatchRun.exe")] if watched else []
        return subprocess.Popen([WINE, *watcher, HOME + r"\KestrelforgeLauncher.exe"],
                                env=dict(os.environ, **variables), stdin=subprocess.DEVNULL,
                                stdout=output)

    def launch(self, **options):
        """(exit code, output) of a whole run."""
        # Not through a pipe: background processes of Wine would keep it open.
        with tempfile.TemporaryFile() as output:
            code = self.start(output, **options).wait(LONGEST_LAUNCH)
            output.seek(0)
            return code, output.read().decode("utf-8", "replace")

    def host_was_started(self):
        return os.path.exists(self.path(HOST_REPORT))

    def wait_for_host(self):
        end = time.monotonic() + LONGEST_WAIT_FOR_HOST
        while not self.host_was_started() and time.monotonic() < end:
            time.sleep(0.02)
        return self.host_was_started()
