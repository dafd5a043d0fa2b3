"""Differences from other programs that have a reason: excuses.txt, whose head says what stands in a line. A function's name
may end with *, patterns write | as \\|. alone.txt says what a program is not asked about without a second one.
"""

import re
from pathlib import Path


def rows_of(name):
    lines = (Path(__file__).parent / name).read_text(encoding="utf-8").splitlines()
    return [[part.strip() for part in line.split(" | ")] for line in lines if line and not line.startswith("#")]


def not_asked(programs):
    """Whether a formula is not for a program that computes alone."""
    patterns = [re.compile(pattern) for program, pattern, _ in rows_of("alone.txt") if [program] == list(programs)]
    return lambda formula: any(pattern.search(formula) for pattern in patterns)


class Excuse:
    def __init__(self, functions, pattern, ours, theirs, most, example, rule):
        names = "|".join(re.escape(name).replace(r"\*", "[A-Z0-9]*") for name in functions.split())
        self.functions = re.compile(rf"(?<![A-Z0-9.])(?:{names})\(")
        self.pattern = re.compile(pattern.replace(r"\|", "|"))
        self.ours, self.theirs, self.example = ours, theirs, example
        self.most = int(most) / 10_000
        self.name = f"{functions.split()[0]}…: {rule}"

    def answers(self, formula, mine, theirs):
        return self.functions.search(formula) and self.pattern.search(formula) \
            and fits(self.ours, mine) and fits(self.theirs, theirs)


class Excuses:
    def __init__(self):
        self.rows = [Excuse(*row) for row in rows_of("excuses.txt")]

    def of(self, formula, mine, theirs):
        """The one that answers a difference; none if nothing does."""
        return next((row for row in self.rows if row.answers(formula, mine, theirs)), None)


def fits(kind, value):
    is_error = isinstance(value, tuple)
    kinds = {"any": True, "error": is_error, "truth": isinstance(value, bool), "text": isinstance(value, str),
             "number": isinstance(value, (int, float)) and not isinstance(value, bool)}
    return kinds.get(kind, str(value[1] if is_error else value) == kind)
