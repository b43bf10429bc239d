"""The resources that a running process has used so far, read from the kernel."""

import os
import time

_CLOCK_TICK = 1.0 / os.sysconf("SC_CLK_TCK")


def cpu_seconds(pid):
    """CPU time of all threads, ended ones included, plus that of children it has waited for."""
    # The kernel's CPU clock of another process: exact to the nanosecond, unlike /proc/PID/stat.
    own = time.clock_gettime((~pid << 3) | 2)
    with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as stat:
        fields = stat.read().rpartition(")")[2].split()
    return own + (int(fields[13]) + int(fields[14])) * _CLOCK_TICK


def main_thread_seconds(pid):
    with open(f"/proc/{pid}/task/{pid}/schedstat", encoding="ascii") as schedstat:
        return int(schedstat.read().split()[0]) / 1e9


def pss_megabytes(pid):
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as rollup:
        for line in rollup:
            if line.startswith("Pss:"):
                return int(line.split()[1]) / 1024
    raise RuntimeError(f"no Pss line for process {pid}")


def is_running(pid):
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as stat:
            return stat.read().rpartition(")")[2].split()[0] != "Z"
    except FileNotFoundError:
        return False


def measure(pid, ticks, interval, warm_up):
    """Milliseconds of CPU per tick, of the main thread alone, and the memory at the end."""
    time.sleep(warm_up)
    started = time.monotonic()
    cpu, main = cpu_seconds(pid), main_thread_seconds(pid)
    time.sleep(ticks * interval)
    spent = cpu_seconds(pid) - cpu
    main_spent = main_thread_seconds(pid) - main
    # The sleep can take longer than requested.
    seen = (time.monotonic() - started) / interval
    return {
        "cpu": 1000 * spent / seen,
        "main": 1000 * main_spent / seen,
        "pss": pss_megabytes(pid),
    }
