"""A file of random formulas, computed by us and by the others."""

import math
import re
import tempfile
from pathlib import Path

import programs
from formulas import EVERYDAY, Generator

FIRST_COLUMN = "J"


def same(a, b):
    if isinstance(a, tuple) or isinstance(b, tuple):
        return isinstance(a, tuple) and isinstance(b, tuple)  # which error is a matter of each program's order
    if isinstance(a, bool) or isinstance(b, bool):
        return a == b and isinstance(a, bool) and isinstance(b, bool)
    if isinstance(a, str) or isinstance(b, str):
        return a == b
    return math.isclose(a, b, rel_tol=1e-7, abs_tol=1e-9)


def names_in(formula):
    return re.findall(r"([A-Z][A-Z0-9.]*)\(", formula)


def rounds_of(functions):
    """Which functions a file asks, and for the how manieth time."""
    return [(function, number) for function in functions for number in range(6 if function.name in EVERYDAY else 2)]


class Answers:
    """Formulas of one file with the values of all."""

    def __init__(self, generator, asked, others, bin_folder):
        self.inputs = generator.sheet()
        self.formulas = {f"{FIRST_COLUMN}{row}": generator.formula(*what) for row, what in enumerate(asked, 1)}
        with tempfile.TemporaryDirectory() as room:
            file = Path(room) / "sheet.xlsx"
            programs.write_file(bin_folder / "write_sheet", self.cells(), file)
            self.theirs = {name: compute(file, room) for name, compute in others.items()}

    def cells(self):
        return {**self.inputs, **self.formulas}

    def ours(self, sheet_eval, fault=0):
        return programs.ours(sheet_eval, self.cells(), list(self.formulas), fault)

    def others_at(self, place):
        return {name: values.get(place, "") for name, values in self.theirs.items()}


def answers(seed, file, functions, chosen, others, bin_folder):
    """Of the how manieth file; nothing, which is told, if another program does not outlive it."""
    try:
        return Answers(Generator(f"{seed} {file}", functions), rounds_of(chosen), others, bin_folder)
    except programs.Died as died:
        print(f"file {file} of seed {seed}: {died}", flush=True)
        return None
