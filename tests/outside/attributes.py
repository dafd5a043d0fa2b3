"""What cells and sheets have: how another library writes it into a file, and how others read it again."""

import datetime
import math

from openpyxl.comments import Comment
from openpyxl.styles import Alignment, Border, Color, Font, PatternFill, Protection, Side
from openpyxl.workbook.defined_name import DefinedName
from openpyxl.worksheet.datavalidation import DataValidation
from openpyxl.worksheet.pagebreak import Break

LINES = ("thin", "medium", "dashed", "dotted", "thick", "double", "hair", "mediumDashed", "dashDot", "mediumDashDot",
         "dashDotDot", "mediumDashDotDot", "slantDashDot")  # in the order of their numbers, from 1
ACROSS = ("general", "left", "center", "right", "fill", "justify", "centerContinuous", "distributed")
DOWN = ("top", "center", "bottom", "justify", "distributed")
FORMATS = ("General", "0", "0.00", "#,##0", "#,##0.00", "0%", "0.00%", "0.00E+00", "@", "yyyy-mm-dd", "h:mm:ss",
           '#,##0.00;[Red]-#,##0.00', '"共"0"件"', "yyyy年m月", "[>=100]0;0.0", "0.0,", "# ?/?")
COLOURS = ("FF0000", "112233", "00B050")


def plain(colour):
    """RRGGBB of a colour of openpyxl; none for the automatic one."""
    return colour.rgb[-6:] if colour is not None and isinstance(colour.rgb, str) else None


class XlsCell:
    """A cell as xlrd reads it, with its look."""

    def __init__(self, book, sheet, row, column):
        self.book, self.cell = book, sheet.cell(row - 1, column - 1)
        self.look = book.xf_list[sheet.cell_xf_index(row - 1, column - 1)]
        self.font = book.font_list[self.look.font_index]

    def colour(self, index):
        rgb = self.book.colour_map.get(index)
        return None if rgb is None else "%02X%02X%02X" % rgb

    def value(self):
        if self.cell.ctype == 4:
            return bool(self.cell.value)
        return {0: "#NULL!", 7: "#DIV/0!", 15: "#VALUE!", 23: "#REF!", 29: "#NAME?", 36: "#NUM!",
                42: "#N/A"}[self.cell.value] if self.cell.ctype == 5 else self.cell.value


def font(**what):
    return lambda cell, value: setattr(cell, "font", Font(**{key: value if take is None else take
                                                             for key, take in what.items()}))


def aligned(key, **beside):
    return lambda cell, value: setattr(cell, "alignment", Alignment(**beside, **{key: value}))


def number_format(cell, value):
    cell.value, cell.number_format = 1234.5, value


def bordered(side):
    def write(cell, value):
        cell.border = Border(**{side: Side(style=value[0], color=value[1])})

    def read_xlsx(cell):
        line = getattr(cell.border, side)
        return line.style, plain(line.color)

    def read_xls(cell):
        style = getattr(cell.look.border, side + "_line_style")
        return LINES[style - 1] if style else None, cell.colour(getattr(cell.look.border, side + "_colour_index"))
    return write, read_xlsx, read_xls


BORDER_VALUES = [(style, COLOURS[number % 3]) for number, style in enumerate(LINES)]
# name, values, written into a cell, read by openpyxl, read by xlrd (none: it does not read that)
CELLS = [
    ("values", [1.5, -1e-300, "文字", True, False, "#DIV/0!", "#N/A", " 空 ", "<&>\"'"],
     lambda cell, value: setattr(cell, "value", value), lambda cell: cell.value, XlsCell.value),
    ("bold", [True], font(bold=None), lambda cell: cell.font.bold, lambda cell: cell.font.weight >= 700),
    ("italic", [True], font(italic=None), lambda cell: cell.font.italic, lambda cell: bool(cell.font.italic)),
    ("underline", ["single"], font(underline=None), lambda cell: cell.font.underline,
     lambda cell: "single" if cell.font.underline_type == 1 else None),
    ("struck out", [True], font(strike=None), lambda cell: cell.font.strike, lambda cell: bool(cell.font.struck_out)),
    ("font size", [5, 9, 10.5, 72], font(size=None), lambda cell: cell.font.size, lambda cell: cell.font.height / 20),
    ("font name", ["宋体", "Arial"], font(name=None), lambda cell: cell.font.name, lambda cell: cell.font.name),
    ("font colour", COLOURS, font(color=None), lambda cell: plain(cell.font.color),
     lambda cell: cell.colour(cell.font.colour_index)),
    ("fill", COLOURS, lambda cell, value: setattr(cell, "fill", PatternFill("solid", fgColor=Color(rgb="FF" + value))),
     lambda cell: plain(cell.fill.fgColor), lambda cell: cell.colour(cell.look.background.pattern_colour_index)),
    *[(f"{side} line", BORDER_VALUES, *bordered(side)) for side in ("left", "right", "top", "bottom")],
    ("alignment across", ACROSS, aligned("horizontal"), lambda cell: cell.alignment.horizontal or "general",
     lambda cell: ACROSS[cell.look.alignment.hor_align]),
    ("alignment down", DOWN, aligned("vertical"), lambda cell: cell.alignment.vertical or "bottom",
     lambda cell: DOWN[cell.look.alignment.vert_align]),
    ("indent left", [1, 2, 15], aligned("indent", horizontal="left"), lambda cell: int(cell.alignment.indent),
     lambda cell: cell.look.alignment.indent_level),
    ("indent right", [1, 7], aligned("indent", horizontal="right"), lambda cell: int(cell.alignment.indent),
     lambda cell: cell.look.alignment.indent_level),
    ("rotation", [1, 45, 90, 91, 180, 255], aligned("textRotation"), lambda cell: cell.alignment.textRotation,
     lambda cell: cell.look.alignment.rotation),
    ("wrapped", [True], aligned("wrapText"), lambda cell: cell.alignment.wrapText,
     lambda cell: bool(cell.look.alignment.text_wrapped)),
    ("number format", FORMATS, number_format, lambda cell: cell.number_format,
     lambda cell: cell.book.format_map[cell.look.format_key].format_str),
    ("unlocked", [False], lambda cell, value: setattr(cell, "protection", Protection(locked=value)),
     lambda cell: cell.protection.locked, lambda cell: bool(cell.look.protection.cell_locked)),
]


def pixels(digits, points):
    """Of a width, which files count in digits of their usual font."""
    return round(digits * {11: 7, 10: 7, 9: 6}.get(points, math.nan))


def set_margins(sheet, _):
    sheet.page_margins.left, sheet.page_margins.right = 0.5, 0.75


def set_names(sheet, _):
    book = sheet.parent
    for name, value, place in (("全部", "利润!$A$1:$B$2", None), ("一表", "利润!$C$3", 0)):
        defined = DefinedName(name, attr_text=value, localSheetId=place)
        book.defined_names.append(defined)


def names_of(sheet, place):
    return sorted((name.name, name.attr_text) for name in sheet.parent.defined_names.definedName
                  if name.localSheetId == place and not name.name.startswith("_xlnm"))


def set_list(sheet, value):
    rule = DataValidation(type="list", formula1=value, allow_blank=True)
    rule.add("A50:A52")
    sheet.add_data_validation(rule)


def set_breaks(sheet, value):
    for row in value:
        sheet.row_breaks.append(Break(id=row))


def xls_names(book, scope):
    return sorted(name.name for name in book.name_obj_list if name.scope == scope and not name.builtin)


def page(key, root="page_setup"):
    def write(sheet, value):
        setattr(getattr(sheet, root), key, value)
    return write, lambda sheet: getattr(getattr(sheet, root), key)


def header(which):
    return (lambda sheet, value: setattr(getattr(sheet, which).center, "text", value),
            lambda sheet: getattr(sheet, which).center.text)


def fit(sheet, value):
    sheet.sheet_properties.pageSetUpPr.fitToPage = True
    sheet.page_setup.fitToWidth, sheet.page_setup.fitToHeight = value


# name, value, written into a sheet, read by openpyxl, read by xlrd from book and sheet
SHEETS = [
    ("column width in pixels", 140, lambda sheet, value: setattr(sheet.column_dimensions["A"], "width", value / 7),
     lambda sheet: pixels(sheet.column_dimensions["A"].width, sheet.parent._fonts[0].sz),
     lambda book, sheet: pixels(sheet.colinfo_map[0].width / 256, book.font_list[0].height / 20)),
    ("row height", 40.0, lambda sheet, value: setattr(sheet.row_dimensions[60], "height", value),
     lambda sheet: sheet.row_dimensions[60].height, lambda book, sheet: sheet.rowinfo_map[59].height / 20),
    ("hidden row", True, lambda sheet, value: setattr(sheet.row_dimensions[61], "hidden", value),
     lambda sheet: sheet.row_dimensions[61].hidden, lambda book, sheet: bool(sheet.rowinfo_map[60].hidden)),
    ("hidden column", True, lambda sheet, value: setattr(sheet.column_dimensions["C"], "hidden", value),
     lambda sheet: sheet.column_dimensions["C"].hidden, lambda book, sheet: bool(sheet.colinfo_map[2].hidden)),
    ("merged cells", "A70:C71", lambda sheet, value: sheet.merge_cells(value),
     lambda sheet: str(sheet.merged_cells.ranges[0]) if sheet.merged_cells.ranges else None,
     lambda book, sheet: "A70:C71" if (69, 71, 0, 3) in sheet.merged_cells else None),
    ("frozen panes", "B3", lambda sheet, value: setattr(sheet, "freeze_panes", value), lambda sheet: sheet.freeze_panes,
     lambda book, sheet: "B3" if (sheet.horz_split_pos, sheet.vert_split_pos) == (2, 1) else None),
    ("note", "说明", lambda sheet, value: setattr(sheet["A60"], "comment", Comment(value, "我")),
     lambda sheet: sheet["A60"].comment and sheet["A60"].comment.text,
     lambda book, sheet: sheet.cell_note_map[59, 0].text if (59, 0) in sheet.cell_note_map else None),
    ("formula", "=SUM(1,2)*2", lambda sheet, value: setattr(sheet["A62"], "value", value),
     lambda sheet: sheet["A62"].value, None),
    ("name of the book", [("全部", "利润!$A$1:$B$2")], set_names, lambda sheet: names_of(sheet, None),
     lambda book, sheet: [("全部", "利润!$A$1:$B$2")] if xls_names(book, -1) == ["全部"] else None),
    ("name of one sheet", [("一表", "利润!$C$3")], lambda sheet, value: None, lambda sheet: names_of(sheet, 0),
     lambda book, sheet: [("一表", "利润!$C$3")] if xls_names(book, 0) == ["一表"] else None),
    ("list of entries", '"是,否"', set_list,
     lambda sheet: sheet.data_validations.dataValidation and sheet.data_validations.dataValidation[0].formula1, None),
    ("page breaks", [30, 40], set_breaks, lambda sheet: [stop.id for stop in sheet.row_breaks.brk],
     lambda book, sheet: [stop[0] for stop in sheet.horizontal_page_breaks]),
    ("print area", "$A$1:$F$90", lambda sheet, value: setattr(sheet, "print_area", "A1:F90"),
     lambda sheet: "".join(sheet.print_area).split("!")[-1], None),
    ("repeated rows", "1:2", lambda sheet, value: setattr(sheet, "print_title_rows", value),
     lambda sheet: sheet.print_title_rows.replace("$", ""), None),
    ("repeated columns", "A:B", lambda sheet, value: setattr(sheet, "print_title_cols", value),
     lambda sheet: sheet.print_title_cols.replace("$", ""), None),
    ("orientation", "landscape", *page("orientation"), None),
    ("paper", 8, *page("paperSize"), None),
    ("scale", 80, *page("scale"), None),
    ("first page", 5, lambda sheet, value: (setattr(sheet.page_setup, "firstPageNumber", value),
                                            setattr(sheet.page_setup, "useFirstPageNumber", True)),
     lambda sheet: sheet.page_setup.firstPageNumber, None),
    ("order of pages", "overThenDown", *page("pageOrder"), None),
    ("fitted pages", (1, 3), fit, lambda sheet: (sheet.page_setup.fitToWidth, sheet.page_setup.fitToHeight), None),
    ("margins", (0.5, 0.75), set_margins, lambda sheet: (sheet.page_margins.left, sheet.page_margins.right), None),
    ("centred on the page", True, *page("horizontalCentered", "print_options"), None),
    ("grid lines printed", True, *page("gridLines", "print_options"), None),
    ("header", "利润表", *header("oddHeader"), None),
    ("footer", "第 &P 页", *header("oddFooter"), None),
    ("date counted from", datetime.datetime(2025, 3, 1),
     lambda sheet, value: setattr(sheet["A63"], "value", value), lambda sheet: sheet["A63"].value,
     lambda book, sheet: datetime.datetime(1899, 12, 30) + datetime.timedelta(sheet.cell_value(62, 0))),
]
