"""A private desktop for one test program: display, session bus, accessibility bus, window manager.

Each program is started in a process group of its own and ended again. The caller's desktop is
neither used nor changed.
"""

import os
import shutil
import signal
import subprocess
import tempfile
import time

DEADLINE = 30.0  # seconds; only ends a test that hangs


def eventually(question, what, deadline=DEADLINE):
    """Calls `question` until its answer is true, and returns the answer.

    Raises an AssertionError that names `what` after `deadline` seconds.
    """
    end = time.monotonic() + deadline
    while True:
        answer = question()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError(f"never came true: {what}")
        time.sleep(0.05)


class Started:
    """A program that the test has started, with what it wrote to standard error."""

    def __init__(self, command, env, log, **options):
        self.log = log
        with open(log, "wb") as file:
            self.process = subprocess.Popen(
                command, env=env, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                stderr=file, start_new_session=True, **options)

    @property
    def pid(self):
        return self.process.pid

    def is_running(self):
        return self.process.poll() is None

    def complaints(self):
        with open(self.log, encoding="utf-8", errors="replace") as file:
            return file.read()

    def status(self, deadline=DEADLINE):
        """The exit status; negative for the signal that ended it."""
        return self.process.wait(deadline)

    def end(self):
        for number, patience in ((signal.SIGTERM, 5), (signal.SIGKILL, 5)):
            try:
                os.killpg(self.process.pid, number)
            except ProcessLookupError:
                pass
            try:
                self.process.wait(patience)
                break
            except subprocess.TimeoutExpired:
                continue


class PrivateDesktop:
    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="tallowcrest-desktop-")
        self.started = []
        self.env = {
            "PATH": os.environ.get("PATH", "/usr/bin:/bin"),
            "HOME": self._folder("home"),
            "XDG_CONFIG_HOME": self._folder("home/.config"),
            "XDG_DATA_HOME": self._folder("home/.local/share"),
            "XDG_CACHE_HOME": self._folder("home/.cache"),
            "XDG_RUNTIME_DIR": self._folder("run"),
            "LC_ALL": "C.UTF-8",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        }
        for name, value in os.environ.items():
            if name.endswith("SAN_OPTIONS") or name == "LD_LIBRARY_PATH":
                self.env[name] = value
        # The keyboard map library copies texts of known length that have no final zero. That is
        # valid, but `strict_string_checks` reports it.
        if "ASAN_OPTIONS" in self.env:
            self.env["ASAN_OPTIONS"] += ":strict_string_checks=0"
        try:
            self._start_display()
            self._start_buses()
        except BaseException:
            self.end()
            raise

    def _folder(self, name):
        path = os.path.join(self.folder, name)
        os.makedirs(path, mode=0o700, exist_ok=True)
        return path

    def start(self, *command, **options):
        env = options.pop("env", self.env)
        log = os.path.join(self.folder, f"log-{len(self.started)}")
        program = Started(command, env, log, **options)
        self.started.append(program)
        return program

    def _start_display(self):
        reader, writer = os.pipe()
        # Without -noreset the server resets when its last client leaves, and rejects clients then.
        self.start("Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x900x24", "-nolisten",
                   "tcp", "-noreset", pass_fds=[writer])
        os.close(writer)
        with os.fdopen(reader) as answers:
            number = answers.readline().strip()
        if not number:
            raise AssertionError("Xvfb did not start: " + self.started[-1].complaints())
        self.env["DISPLAY"] = ":" + number
        self.start("openbox")
        eventually(lambda: "window id" in self.output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
                   "openbox manages the display")

    def _start_buses(self):
        socket = os.path.join(self.folder, "bus")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + socket
        self.start("dbus-daemon", "--session", "--nofork", "--nopidfile",
                   "--address=unix:path=" + socket)
        eventually(lambda: os.path.exists(socket), "the session bus listens")
        launcher = next(path for path in ("/usr/libexec/at-spi-bus-launcher",
                                          "/usr/lib/at-spi2-core/at-spi-bus-launcher")
                        if os.path.exists(path))
        self.start(launcher, "--launch-immediately")

    def output(self, *command):
        return subprocess.run(command, env=self.env, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              timeout=DEADLINE, check=False).stdout

    def windows(self, title="^Tallowcrest$"):
        """The visible windows of that title."""
        return self.output("xdotool", "search", "--onlyvisible", "--name", title).split()

    def focus(self, window):
        self.output("xdotool", "windowactivate", "--sync", window)

    def keys(self, *names):
        self.output("xdotool", "key", "--clearmodifiers", *names)

    def type(self, text):
        self.output("xdotool", "type", "--delay", "20", text)

    def brightness(self, window):
        """The mean of a window's pixels, from 0 (black) to 1 (white)."""
        mean = self.output("import", "-silent", "-window", window, "-colorspace", "Gray",
                           "-format", "%[fx:mean]", "info:-")
        return float(mean) if mean else None

    def end(self):
        for program in reversed(self.started):
            program.end()
        shutil.rmtree(self.folder, ignore_errors=True)
