"""The programs that are measured in turns: ours, and those neighbours that are installed."""

import fcntl
import os
import pathlib
import pty
import re
import select
import struct
import subprocess
import termios
import threading
import time

from whole_process_parts import meter
from whole_process_parts.environment import Missing, need, private_environment, stop

INTERVAL = 4.0
WARM_UP = 2 * INTERVAL + 1


def _alive(process, name):
    if process.poll() is not None:
        raise Missing(f"{name} ended at once with status {process.returncode}")
    return process.pid


def _measure_child(process, name, ticks, interval=INTERVAL, warm_up=WARM_UP):
    try:
        time.sleep(0.5)
        return meter.measure(_alive(process, name), ticks, interval, warm_up)
    except OSError as error:
        raise Missing(f"{name} ended while it was measured: {error}") from error
    finally:
        stop(process)


def _program(build, name):
    path = pathlib.Path(build) / name
    if not path.exists():
        raise Missing(f"{path} is not built (make build)")
    return str(path)


def window(build, desktop, ticks):
    """Our window on Overview."""
    process = subprocess.Popen(
        [_program(build, "tallowcrest"), "--ui-testing"],
        env=desktop.environment,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    )
    return _measure_child(process, "tallowcrest", ticks)


def first_sample(build, desktop):
    """Milliseconds from the start of the process to the first sample on screen."""
    process = subprocess.Popen(
        [_program(build, "tallowcrest"), "--ui-testing"],
        env={**desktop.environment, "TALLOWCREST_STARTUP_TRACE": "1"},
        stdout=subprocess.DEVNULL,
        stderr=subprocess.PIPE,
    )
    try:
        deadline = time.monotonic() + 15
        text = b""
        while time.monotonic() < deadline:
            if select.select([process.stderr], [], [], 0.5)[0]:
                piece = os.read(process.stderr.fileno(), 4096)
                if not piece:
                    break
                text += piece
            found = re.search(rb"^first-sample-on-screen ([0-9.]+)\s*$", text, re.MULTILINE)
            if found:
                return float(found[1])
        raise Missing("tallowcrest told no first sample on screen")
    finally:
        stop(process)
        process.stderr.close()


def headless(build, folder, ticks, interval=INTERVAL, options=()):
    """Our program without a window; what it prints goes nowhere."""
    process = subprocess.Popen(
        [_program(build, "tallowcrest"), "--headless", "--interval", str(interval), *options],
        env=private_environment(folder),
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    )
    return _measure_child(process, "tallowcrest --headless", ticks, interval, 2 * interval + 1)


class _Terminal:
    """A child on a terminal of 120 columns and 40 lines, whose output is read and dropped."""

    def __init__(self, arguments, environment):
        self._master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 40, 120, 0, 0))
        self.process = subprocess.Popen(
            arguments,
            env={**environment, "TERM": "xterm-256color"},
            stdin=slave,
            stdout=slave,
            stderr=slave,
            start_new_session=True,
            # Without a controlling terminal some programs read no keys and busy themselves.
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0),
        )
        os.close(slave)
        threading.Thread(target=self._drain, daemon=True).start()

    def _drain(self):
        try:
            while os.read(self._master, 65536):
                pass
        except OSError:
            pass  # the terminal's other end is closed


def htop(folder, ticks):
    environment = private_environment(folder)
    terminal = _Terminal([need("htop"), "-d", str(int(INTERVAL * 10))], environment)
    return _measure_child(terminal.process, "htop", ticks)


def btop(folder, ticks):
    environment = private_environment(folder)
    settings = pathlib.Path(environment["XDG_CONFIG_HOME"]) / "btop" / "btop.conf"
    settings.parent.mkdir(parents=True, exist_ok=True)
    settings.write_text(f"update_ms = {int(INTERVAL * 1000)}\n", encoding="ascii")
    terminal = _Terminal([need("btop"), "--utf-force"], environment)
    return _measure_child(terminal.process, "btop", ticks)


def gnome_system_monitor(desktop, ticks):
    """Its process list, with its own interval set to ours."""
    path = need("gnome-system-monitor")
    settings = pathlib.Path(desktop.environment["XDG_CONFIG_HOME"]) / "glib-2.0/settings/keyfile"
    settings.parent.mkdir(parents=True, exist_ok=True)
    settings.write_text(
        "[org/gnome/gnome-system-monitor]\n"
        f"update-interval={int(INTERVAL * 1000)}\n"
        "current-tab='processes'\n"
        "show-whose-processes='all'\n",
        encoding="ascii",
    )
    process = subprocess.Popen(
        [path, "--show-processes-tab"],
        env={**desktop.environment, "GSETTINGS_BACKEND": "keyfile"},
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    )
    return _measure_child(process, "gnome-system-monitor", ticks)


def ps(ticks):
    """The tool, run once for each tick."""
    path = need("ps")
    spent = 0.0
    for _ in range(ticks):
        with subprocess.Popen(
            [path, "-eo", "pid,pcpu,pmem,rss,comm"], stdout=subprocess.DEVNULL
        ) as process:
            _, _, usage = os.wait4(process.pid, 0)
            process.returncode = 0
            spent += usage.ru_utime + usage.ru_stime
    return {"cpu": 1000 * spent / ticks}
