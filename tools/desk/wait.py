"""Waiting for something to become true, with a deadline, and saying plainly what was not seen."""

import os
import time

# How many times longer than usual to wait, where everything is slower.
PATIENCE = float(os.environ.get("DORMEL_PATIENCE", "1"))


class NotSeen(AssertionError):
    """What was waited for did not happen in time."""


def until(what, seen, within, every=0.005):
    """Calls seen() until it answers something true, and returns that answer.

    what names the thing for the message of NotSeen, which is raised after `within` seconds times PATIENCE. seen may return a
    false value of any kind; a No among them tells why, and the message repeats it.
    """
    started = time.monotonic()
    while True:
        answer = seen()
        if answer:
            return answer
        waited = time.monotonic() - started
        if waited >= within * PATIENCE:
            reason = f": {answer.why}" if isinstance(answer, No) else ""
            raise NotSeen(f"not seen within {within:g} s: {what}{reason}")
        time.sleep(every)


class No:
    """A false answer that knows why."""

    def __init__(self, why):
        self.why = why

    def __bool__(self):
        return False

    def __repr__(self):
        return f"No({self.why!r})"
