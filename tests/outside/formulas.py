"""Random sheets, and random formulas over them: from the grammar, and from the arguments that our functions name."""

import random
import re
import subprocess

# Arguments by words in their Chinese names, the first that fits. What has no word is a number.
KINDS = (
    ("small", "^[月日]$"), ("dates", "假日"), ("rate", "利率|收益率|贴现率|票息率|折旧率|利率序列"), ("basis", "基准"), ("zero_or_one", "类型|全精度"),
    ("reference", "区域|引用"), ("range", "现金流|数组|序列|已知|集合|数值1|数据|值1|矩阵|概率|观察|预期|数列|[xy]值"), ("criterion", "条件"),
    ("complex", "复数"), ("date", "日期|发行日|结算日|到期日|首次付息日|起算日|日$|期末$|截止"),
    ("time_text", "时间文本"), ("truth", "逻辑|真假|累积|返回联系"), ("format", "格式"), ("text", "文本|字符|查找内容|单位|货币|名称|内容|分隔"),
    ("frequency", "频率"), ("year", "^年$"), ("small", "位数|期数|次数|期间|第几|个数|年|月|天|时|分|秒|阶|进制|k$|K$|次序|位置|行|列|长度|偏移"),
    ("probability", "显著|置信"), ("positive", "自由度|标准差|寿命|残值|原值|面值|价格|投资额|清偿"),
)
# What has no value to compare, or one that depends on the day, the file or the program.
LEFT_OUT = set("""NOW TODAY RAND RANDBETWEEN RANDARRAY CELL INFO HYPERLINK GETPIVOTDATA RTD FORMULATEXT SHEET SHEETS
    INDIRECT ISFORMULA AREAS PHONETIC CALL EUROCONVERT ENCODEURL WEBSERVICE FILTERXML NUMBERSTRING RMB DOLLAR USDOLLAR
    ASC JIS DBCS WIDECHAR BAHTTEXT SORT SORTBY UNIQUE FILTER SEQUENCE LET LAMBDA CHOOSECOLS CHOOSEROWS TAKE DROP
    VSTACK HSTACK TOCOL TOROW WRAPROWS WRAPCOLS EXPAND TEXTSPLIT TEXTBEFORE TEXTAFTER SINGLE XLOOKUP XMATCH
    REPLACEB LEFTB RIGHTB MIDB LENB FINDB SEARCHB NUMBERVALUE""".split())
WHOLE = ("BITAND", "BITOR", "BITXOR", "BITLSHIFT", "BITRSHIFT", "COMBIN", "GCD", "LCM")  # of whole numbers only
ROWS = 20
TEXTS = ("甲", "乙", "现金", "abc", "ABC", "a*c", "12", "3.5%", "x y", " 空 ", "2025-3-1", "", "银行存款", "b", "zz")


FORMATS = ("0", "0.00", "#,##0", "#,##0.00", "0%", "0.0%", "0.00E+00", "000", "+0;-0;0", "0.0,", "@")
SENSIBLE = {"TEXT": "shown", "RANK": "ranked", "RANK.EQ": "ranked", "RANK.AVG": "ranked", "MATCH": "found",
            "LOOKUP": "found_beside", "VLOOKUP": "found_in_table", "IRR": "flows", "MIRR": "flows_and_rates", "COUNTIFS": "conditions",
            "SUMIFS": "numbers_by_conditions", "AVERAGEIFS": "numbers_by_conditions"}
DAY_FORMATS = ("yyyy-mm-dd", "yyyy/m/d", "d.m.yyyy", "yyyy-mm", "m/d/yy")


class Function:
    def __init__(self, name, arguments):
        self.name = name
        self.arguments = []  # (kind, may be left out)
        self.repeats = "…" in arguments
        for text in split_arguments(arguments):
            word = text.strip("[]… ").rstrip("…,")
            if word:
                kind = next((kind for kind, words in KINDS if re.search(words, word)), "number")
                if name in WHOLE:
                    kind = "whole"
                elif name == "SUBTOTAL":
                    kind = "operation" if not self.arguments else "reference"
                self.arguments.append((kind, text.startswith("[")))


def split_arguments(text):
    parts, depth, part = [], 0, ""
    for sign in text:
        depth += (sign == "[") - (sign == "]")
        if sign == "," and depth == 0:
            parts.append(part)
            part = ""
        else:
            part += sign
    return parts + [part] if part else parts


def functions_of(program):
    """The table as the program prints it; without those of the ledger."""
    text = subprocess.run([program, "functions"], check=True, capture_output=True, text=True).stdout
    rows = re.findall(r"^\|\s*`([A-Z0-9._]+)\((.*?)\)`", text, re.M)
    return [Function(name, arguments) for name, arguments in rows if name not in LEFT_OUT]


class Generator:
    """What it makes for one function does not depend on which others there are."""

    def __init__(self, seed, functions):
        self.seed = seed
        self.random = random.Random(seed)
        self.rows = None  # of blocks that must be as long as each other
        self.numeric = [function for function in functions if function.name in EVERYDAY]

    # The sheet

    def sheet(self):
        """Columns: whole numbers, cents, texts, dates, truth values and blanks, ascending numbers, rates, a mixture."""
        draw, cells = self.random, {}
        rising = sorted(round(draw.uniform(-50, 200), 1) for _ in range(ROWS))
        for row in range(1, ROWS + 1):
            column = {
                "A": draw.randint(-20, 100), "B": round(draw.uniform(-5000, 5000), 2), "C": draw.choice(TEXTS),
                "D": draw.randint(36526, 47000), "E": draw.choice([True, False, None]), "F": rising[row - 1],
                "G": round(draw.uniform(0.01, 0.3), 3),
                "H": draw.choice([draw.randint(-9, 9), draw.choice(TEXTS), True, None, None, round(draw.random(), 4)])}
            for name, value in column.items():
                if value is not None and value != "":
                    cells[f"{name}{row}"] = "'" + value if isinstance(value, str) else value
        if draw.random() < 0.3:
            cells[f"H{draw.randint(1, ROWS)}"] = draw.choice(["#N/A", "#DIV/0!", "#VALUE!"])
        return cells

    # Formulas

    def formula(self, function, number):
        self.random = random.Random(f"{self.seed} {function.name} {number}")
        call = self.call(function, 0)
        return "=" + (call if self.random.random() < 0.8 else self.compared(call))

    def compared(self, left):
        operator = self.random.choice("+-*/^&=<>") if self.random.random() < 0.8 else self.random.choice(["<=", ">=", "<>"])
        return f"{left}{operator}{self.number(1)}"

    def call(self, function, depth):
        draw = self.random
        if function.name in SENSIBLE and draw.random() < 0.97:
            return f"{function.name}({getattr(self, SENSIBLE[function.name])(depth + 1)})"
        arguments = function.arguments
        optional = [index for index, (_, may_go) in enumerate(arguments) if may_go]
        count = len(arguments)
        if optional and draw.random() < 0.5:
            count = draw.randint(optional[0], len(arguments))
        kinds = [kind for kind, _ in arguments[:count]]
        if function.repeats and kinds and draw.random() < 0.5:
            kinds += kinds[-1:] * draw.randint(1, 2)
        outer, self.rows = self.rows, None
        if sum(kind in ("range", "reference") for kind in kinds) > 1 and draw.random() < 0.7:
            self.rows = self.some_rows()  # as long as each other
        text = ','.join(self.argument(kind, depth + 1) for kind in kinds)
        self.rows = outer
        return f"{function.name}({text})"

    # Arguments that make sense together

    def shown(self, depth):
        """A number, else a day with its own format."""
        if self.random.random() < 0.85:
            return f'{self.number(depth)},{self.format(depth)}'
        return f'{self.date(depth)},"{self.random.choice(DAY_FORMATS)}"'

    def ranked(self, depth):
        """A number among others."""
        block = self.block("ABFG")
        return f"{self.cell_of(block)},{block}" + self.random.choice(["", ",0", ",1"])

    def found(self, depth):
        """A number in a line: in ascending order, or just this one."""
        block, draw = self.block("F"), self.random
        if draw.random() < 0.5:
            return f"{draw.uniform(-60, 210):.1f},{block}" + draw.choice(["", ",1"])
        block = self.block("ABC")
        return f"{self.cell_of(block)},{block},0"

    def found_beside(self, depth):
        first, last = self.some_rows()
        return f"{self.random.uniform(-60, 210):.1f},F{first}:F{last}" + self.random.choice(["", f",B{first}:B{last}"])

    def found_in_table(self, depth):
        first, last = self.some_rows()
        if self.random.random() < 0.5:
            return f"{self.random.uniform(-60, 210):.1f},F{first}:G{last},{self.random.randint(1, 2)}"
        column = self.random.choice("AB")
        return f"{self.cell_of(f'{column}{first}:{column}{last}')},{column}{first}:G{last},{self.random.randint(1, 5)},FALSE"

    def flows(self, depth):
        later = ",".join(str(self.random.randint(10, 90)) for _ in range(self.random.randint(2, 6)))
        return f"{{-{self.random.randint(50, 300)},{later}}}" + self.random.choice(["", "", ",0.1"])

    def flows_and_rates(self, depth):
        return f"{self.flows(depth).split('}')[0]}}},{self.rate(depth)},{self.rate(depth)}"

    def conditions(self, depth):
        self.rows = self.some_rows()
        pairs = [f"{self.block('ABCFG')},{self.criterion(depth)}" for _ in range(self.random.randint(1, 3))]
        self.rows = None
        return ",".join(pairs)

    def numbers_by_conditions(self, depth):
        conditions = self.conditions(depth)
        first, last = re.findall(r"\d+", conditions)[:2]
        column = self.random.choice("ABFG")
        return f"{column}{first}:{column}{last},{conditions}"

    def cell_of(self, block):
        first, last = (int(part[1:]) for part in block.split(":"))
        return f"{block[0]}{self.random.randint(first, last)}"

    def argument(self, kind, depth):
        if kind != "format" and self.random.random() < 0.03:  # something else than what is asked for
            kind = self.random.choice([kind for kind, _ in KINDS] + ["number"])
        return getattr(self, kind)(depth)

    def cell(self, columns):
        anchor = self.random.choice(["", "$"])
        return f"{anchor}{self.random.choice(columns)}{anchor}{self.random.randint(1, ROWS)}"

    def block(self, columns, width=1):
        left = self.random.choice(columns)
        right = chr(min(ord("H"), ord(left) + width - 1))
        first, last = self.rows or self.some_rows()
        return f"{left}{first}:{right}{last}"

    def some_rows(self):
        return sorted(self.random.sample(range(1, ROWS + 1), 2))

    def number(self, depth):
        draw = self.random
        roll = draw.random()
        if roll < 0.3 or depth > 3:
            return draw.choice([str(draw.randint(-3, 30)), f"{draw.uniform(-20, 100):.2f}", f"{draw.random():.3f}"])
        if roll < 0.7:
            return self.cell("ABFG" if draw.random() < 0.9 else "CEH")
        if roll < 0.85:
            return f"({self.number(depth + 1)}{draw.choice('+-*/')}{self.number(depth + 1)})"
        return self.call(draw.choice(self.numeric), depth)

    def range(self, depth):
        draw = self.random
        roll = draw.random()
        if roll < 0.7:
            return self.block("ABF")
        if roll < 0.85:
            return self.block("ABGH", draw.randint(1, 2))
        if roll < 0.98:
            return "{" + ",".join(str(draw.randint(-9, 20)) for _ in range(draw.randint(2, 5))) + "}"
        return self.number(depth)

    def reference(self, depth):
        return self.block("ABFGH") if self.random.random() < 0.8 else self.cell("ABFGH")

    def operation(self, depth):
        return str(self.random.choice([0, 100]) + self.random.randint(1, 11))

    def whole(self, depth):
        return str(self.random.randint(0, 60)) if self.random.random() < 0.7 else self.cell("A")

    def dates(self, depth):
        return self.block("D")

    def rate(self, depth):
        return self.cell("G") if self.random.random() < 0.6 else f"{self.random.uniform(0.005, 0.2):.4f}"

    def basis(self, depth):
        return str(self.random.randint(0, 4))

    def zero_or_one(self, depth):
        return str(self.random.randint(0, 1))

    def criterion(self, depth):
        draw = self.random
        return draw.choice([f'">{draw.randint(-5, 40)}"', f'"<={draw.randint(-5, 40)}"', '"<>"', '"甲"', '"a*"',
                            f'"<>{draw.randint(0, 9)}"', str(draw.randint(0, 20)), self.cell("AC")])

    def complex(self, depth):
        draw = self.random
        return f'"{draw.randint(-5, 5)}{draw.choice("+-")}{draw.randint(1, 6)}i"'

    def date(self, depth):
        return self.cell("D") if self.random.random() < 0.6 else str(self.random.randint(36526, 47000))

    def time_text(self, depth):
        return f'"{self.random.randint(0, 25)}:{self.random.randint(0, 59):02}"'

    def truth(self, depth):
        return self.random.choice(["TRUE", "FALSE", f"{self.number(depth + 1)}>{self.number(depth + 1)}", self.cell("E")])

    def text(self, depth):
        draw = self.random
        return draw.choice([f'"{draw.choice(TEXTS)}"', self.cell("C"), f'{self.cell("C")}&"{draw.choice(TEXTS)}"',
                            self.cell("A")])

    def format(self, depth):
        return f'"{self.random.choice(FORMATS)}"'

    def year(self, depth):
        return str(self.random.randint(1990, 2045))

    def frequency(self, depth):
        return self.random.choice("124")

    def small(self, depth):
        return str(self.random.randint(0, 8)) if self.random.random() < 0.8 else self.cell("A")

    def probability(self, depth):
        return f"{self.random.uniform(0.01, 0.99):.3f}"

    def positive(self, depth):
        return f"{self.random.uniform(0.5, 100):.2f}" if self.random.random() < 0.7 else self.cell("A")


# Those that reports of accountants use most, of each of which little may be excused.
EVERYDAY = """SUM AVERAGE COUNT COUNTA COUNTBLANK MAX MIN ROUND ROUNDUP ROUNDDOWN INT TRUNC ABS MOD SIGN SUMIF SUMIFS
    COUNTIF COUNTIFS AVERAGEIF AVERAGEIFS SUMPRODUCT SUBTOTAL IF IFERROR AND OR NOT VLOOKUP HLOOKUP LOOKUP INDEX MATCH
    CHOOSE OFFSET LEFT RIGHT MID LEN TRIM UPPER LOWER SUBSTITUTE FIND SEARCH TEXT VALUE CONCATENATE DATE YEAR MONTH DAY
    EDATE EOMONTH DAYS360 WEEKDAY NPV IRR PMT FV PV RATE NPER SLN DDB RANK LARGE SMALL MEDIAN STDEV PRODUCT POWER
    SQRT""".split()
