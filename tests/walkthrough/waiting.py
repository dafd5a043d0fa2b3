"""Waiting for states. Nothing here waits for a time to pass: each wait has a condition and a generous end."""

import time

PATIENCE = 60  # seconds: a machine that builds beside the walkthrough is slow


class Late(Exception):
    """What was waited for has not come."""


def until(what, condition, patience=PATIENCE):
    """The first true value of the condition. @throws Late with what was waited for."""
    end = time.monotonic() + patience
    while True:
        found = condition()
        if found:
            return found
        if time.monotonic() > end:
            raise Late(f"{patience} s 内没有等到: {what}")
        time.sleep(0.02)  # between two looks
