"""Our engine and other spreadsheet programs, each in a process of its own: what the cells of a sheet are for them."""

import json
import math
import os
import re
import shutil
import subprocess
import zipfile
from pathlib import Path
from xml.etree import ElementTree

FAULT = "SELFREPORT_FAULT"  # the switch of planted faults
SPREADSHEET = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
# Formulas of the file are computed, not taken as they were stored.
RECALCULATES = """<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry">
<item oor:path="/org.openoffice.Office.Calc/Formula/Load"><prop oor:name="OOXMLRecalcMode"><value>0</value></prop></item>
</oor:items>
"""


class Died(Exception):
    """Another program did not outlive a file."""


def compute(command, seconds):
    try:
        subprocess.run(command, check=True, capture_output=True, timeout=seconds)
    except (subprocess.CalledProcessError, subprocess.TimeoutExpired) as problem:
        raise Died(f"{command[0]} ended with {getattr(problem, 'returncode', 'no answer')}") from problem


def request(cells, wanted):
    return json.dumps({"id": 1, "sheets": [{"name": "Sheet1", "cells": cells}],
                       "want": [f"Sheet1!{cell}" for cell in wanted]}, ensure_ascii=False)


def ours(sheet_eval, cells, wanted, fault=0):
    """Values by cell: numbers, texts, truth values; errors as ("e", text)."""
    done = subprocess.run([sheet_eval], input=request(cells, wanted) + "\n", capture_output=True, text=True, check=True,
                          env={**os.environ, FAULT: str(fault)})
    values = json.loads(done.stdout)["values"]
    return {name.split("!")[1]: ("e", value["v"]) if value["t"] == "e" else value["v"] for name, value in values.items()}


def write_file(write_sheet, cells, file):
    subprocess.run([write_sheet, str(file)], input=request(cells, []), text=True, check=True, capture_output=True)


def gnumeric(file, folder):
    result = Path(folder) / "gnumeric.xlsx"
    compute(["ssconvert", "--recalc", str(file), str(result)], 300)
    return cells_of(result)


def calc(file, folder):
    profile, out = Path(folder) / "profile", Path(folder) / "calc"
    settings = profile / "user" / "registrymodifications.xcu"
    if not settings.exists():
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(RECALCULATES)
    compute(["soffice", f"-env:UserInstallation=file://{profile.resolve()}", "--headless", "--convert-to", "xlsx",
             "--outdir", str(out), str(file)], 600)
    return cells_of(out / Path(file).name)


PROGRAMS = {"gnumeric": ("ssconvert", gnumeric), "calc": ("soffice", calc)}


def present(names):
    return {name: PROGRAMS[name][1] for name in names if shutil.which(PROGRAMS[name][0])}


def cells_of(file):
    """The values of the first sheet of an .xlsx file, read without a library: dates stay numbers."""
    with zipfile.ZipFile(file) as parts:
        shared = []
        if "xl/sharedStrings.xml" in parts.namelist():
            for item in ElementTree.fromstring(parts.read("xl/sharedStrings.xml")):
                shared.append("".join(text.text or "" for text in item.iter(SPREADSHEET + "t")))
        first = sorted(name for name in parts.namelist() if re.fullmatch(r"xl/worksheets/sheet\d+\.xml", name))[0]
        root = ElementTree.fromstring(parts.read(first))
    return {cell.get("r"): value_of(cell, shared) for cell in root.iter(SPREADSHEET + "c")}


def value_of(cell, shared):
    kind, value = cell.get("t", "n"), cell.find(SPREADSHEET + "v")
    if kind == "inlineStr":
        return "".join(text.text or "" for text in cell.iter(SPREADSHEET + "t"))
    if value is None or value.text is None:
        return ""
    if kind == "s":
        return shared[int(value.text)]
    if kind == "b":
        return value.text == "1"
    if kind == "e":
        return ("e", value.text)
    if kind == "str":
        return value.text
    number = float(value.text)
    return number if math.isfinite(number) else ("e", "#NUM!")
