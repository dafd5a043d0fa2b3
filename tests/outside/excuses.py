"""Differences from other programs that have a reason: excuses.txt, a line each.

FUNCTION | PATTERN of the formula | ours | theirs | the published rule
"""

import re
from pathlib import Path


class Excuses:
    def __init__(self):
        lines = (Path(__file__).parent / "excuses.txt").read_text(encoding="utf-8").splitlines()
        self.rows = [[part.strip() for part in line.split(" | ")] for line in lines if line and not line.startswith("#")]

    def of(self, formula, mine, theirs):
        """The rule that answers a difference; none if nothing does."""
        for function, pattern, our_kind, their_kind, rule in self.rows:
            if re.search(rf"\b{function}\(", formula) and re.search(pattern, formula) \
                    and self.fits(our_kind, mine) and self.fits(their_kind, theirs):
                return f"{function}: {rule}"
        return None

    @staticmethod
    def fits(kind, value):
        """Kinds: any, error, number, text, truth, or a value as it is written."""
        is_error = isinstance(value, tuple)
        kinds = {"any": True, "error": is_error, "truth": isinstance(value, bool), "text": isinstance(value, str),
                 "number": isinstance(value, (int, float)) and not isinstance(value, bool)}
        return kinds.get(kind, str(value[1] if is_error else value) == kind)
