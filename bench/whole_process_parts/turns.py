"""The turns of the main thread's event loop.

A turn is the time between two waits of the event loop. Its length includes delays by other
processes; the time that the thread has run in it does not.
"""

import pathlib
import typing

from whole_process_parts.environment import Missing


class Turn(typing.NamedTuple):
    began: float  # as of `time.time`
    length: float  # in seconds, like the next
    ran: float


class Log:
    """The turns of the programs that are started with `environment`."""

    def __init__(self, build, folder):
        clock = (pathlib.Path(build) / "turn_clock.so").absolute()
        if not clock.exists():
            raise Missing(f"{clock} is not built (make bench)")
        self._file = (pathlib.Path(folder) / "turns").absolute()
        self._file.unlink(missing_ok=True)
        self.environment = {"LD_PRELOAD": str(clock), "TALLOWCREST_TURNS": str(self._file)}

    def turns(self, pid, begin, end):
        """Those of one process that began between two times."""
        if not self._file.exists():
            return []
        lines = (line.split() for line in self._file.read_text(encoding="ascii").splitlines())
        found = (Turn(*map(float, fields[1:])) for fields in lines if int(fields[0]) == pid)
        return [turn for turn in found if begin <= turn.began <= end]


def told(turns):
    """The longest, in milliseconds."""
    def longest(lengths):
        return ", ".join(f"{1000 * length:.2f}" for length in sorted(lengths, reverse=True)[:5])

    return (f"the longest took {longest(turn.length for turn in turns)} ms; "
            f"the most that the thread ran in one: {longest(turn.ran for turn in turns)} ms")
