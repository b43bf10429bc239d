"""The environment of the measured programs: a display, a session bus, sleeping processes. Each ends
with its `with` block. All files are in the given folder."""

import os
import pathlib
import platform
import resource
import shutil
import subprocess
import time


class Missing(Exception):
    """A program or a permission is missing on this machine."""


def need(program):
    path = shutil.which(program)
    if path is None:
        raise Missing(f"{program} is not installed")
    return path


def stop(process):
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(timeout=5)
        except subprocess.TimeoutExpired:
            process.kill()
    process.wait()


class Desktop:
    """A private virtual display with a window manager and a session bus."""

    def __init__(self, folder):
        self._folder = pathlib.Path(folder)
        self._processes = []
        self.environment = {}

    def __enter__(self):
        try:
            self._start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *unused):
        for process in reversed(self._processes):
            stop(process)

    def _run(self, arguments, **options):
        process = subprocess.Popen(
            arguments, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options
        )
        self._processes.append(process)
        return process

    def _start(self):
        need("Xvfb"), need("openbox"), need("dbus-daemon")
        reading, writing = os.pipe()
        self._run(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1600x1000x24", "-nolisten", "tcp",
             "-noreset"],
            pass_fds=[writing],
            stdout=subprocess.DEVNULL,
        )
        os.close(writing)
        with os.fdopen(reading) as answer:
            number = answer.readline().strip()
        if not number:
            raise Missing("Xvfb did not start")
        bus = self._run(
            ["dbus-daemon", "--session", "--nofork", "--print-address"], stdout=subprocess.PIPE
        )
        self.environment = {
            **private_environment(self._folder),
            "DISPLAY": f":{number}",
            "DBUS_SESSION_BUS_ADDRESS": bus.stdout.readline().decode().strip(),
        }
        self.environment.pop("WAYLAND_DISPLAY", None)
        self._run(["openbox"], env=self.environment, stdout=subprocess.DEVNULL)
        time.sleep(1)


def private_environment(folder):
    """The caller's environment with a private home, so that no settings of the caller are used."""
    folder = pathlib.Path(folder)
    environment = dict(os.environ)
    for name, part in (
        ("HOME", "home"),
        ("XDG_CONFIG_HOME", "home/.config"),
        ("XDG_CACHE_HOME", "home/.cache"),
        ("XDG_DATA_HOME", "home/.local/share"),
        ("XDG_STATE_HOME", "home/.local/state"),
        ("XDG_RUNTIME_DIR", "run"),
    ):
        path = folder / part
        path.mkdir(parents=True, exist_ok=True, mode=0o700)
        environment[name] = str(path)
    environment["LC_ALL"] = "C.UTF-8"
    return environment


class Sleepers:
    """`count` sleeping processes under forty names, so that they fall into groups."""

    def __init__(self, folder, count):
        self._names = pathlib.Path(folder) / "sleepers"
        self._count = count
        self._pids = []

    def __enter__(self):
        self._check_limits()
        self._names.mkdir(parents=True, exist_ok=True)
        programs = []
        for number in range(40):
            program = self._names / f"sleeper-{number:02}"
            shutil.copy(need("sleep"), program)
            programs.append(str(program))
        try:
            for number in range(self._count):
                program = programs[number % len(programs)]
                self._pids.append(os.posix_spawn(program, [program, "86400"], os.environ))
        except OSError as error:
            self.__exit__()
            raise Missing(f"only {len(self._pids)} processes could be started: {error}") from error
        return self

    def __exit__(self, *unused):
        for pid in self._pids:
            os.kill(pid, 15)
        for pid in self._pids:
            os.waitpid(pid, 0)
        self._pids = []

    def _check_limits(self):
        room = 300
        soft, _ = resource.getrlimit(resource.RLIMIT_NPROC)
        if os.geteuid() != 0 and soft != resource.RLIM_INFINITY and soft < self._count + room:
            raise Missing(f"the limit of processes per user is {soft}")
        with open("/proc/sys/kernel/pid_max", encoding="ascii") as limit:
            pid_max = int(limit.read())
        if pid_max < self._count + room:
            raise Missing(f"kernel.pid_max is {pid_max}")


def process_count():
    return sum(1 for name in os.listdir("/proc") if name.isdigit())


def machine_facts():
    model = platform.machine()
    with open("/proc/cpuinfo", encoding="utf-8") as cpuinfo:
        for line in cpuinfo:
            if line.startswith("model name"):
                model = line.partition(":")[2].strip()
                break
    with open("/proc/meminfo", encoding="ascii") as meminfo:
        memory = int(meminfo.readline().split()[1]) / 1024**2
    return (
        f"{model}, {len(os.sched_getaffinity(0))} cores, {memory:.0f} GB, "
        f"{platform.freedesktop_os_release().get('PRETTY_NAME', 'Linux')}, "
        f"kernel {platform.release()}, load {os.getloadavg()[0]:.2f}"
    )
