"""What lies in the database and on paper, read through the program's own command line and other programs."""

import csv
import io
import sqlite3
import subprocess
from pathlib import Path

import openpyxl


class Books:
    def __init__(self, program, database):
        self.program, self.database = program, Path(database)

    def asks(self, statement, *values):
        connection = sqlite3.connect(f"file:{self.database}?mode=ro", uri=True)
        try:
            return connection.execute(statement, values).fetchall()
        finally:
            connection.close()

    # Joined to nothing, a column loses the order of its own that only the program knows.

    def report(self, name):
        """The number under which a report is stored; none if there is no such report."""
        rows = self.asks("select noid from tblCWSelfReport where fname||''=?", name)
        assert len(rows) < 2, f"{len(rows)} reports are called {name}"
        return rows[0][0] if rows else None

    def content(self, name):
        return self.asks("select fFileContent from tblCWSelfReport where fname||''=?", name)[0][0]

    def design(self, name):
        """The stored report as another program reads it: formulas, fonts, lines, number formats."""
        stored = self.database.with_name("stored.ss7")
        stored.write_bytes(self.content(name))
        return self.workbook(stored)

    def workbook(self, file, values=False):
        converted = self.database.with_name("converted.xlsx")
        self.run("convert", str(file), str(converted))
        return openpyxl.load_workbook(converted, data_only=values)

    def figures(self, name):
        """Rows of texts of a stored report, calculated anew."""
        text = self.run("run", str(self.report(name)), "--db", str(self.database)).stdout
        return [row for row in csv.reader(io.StringIO(text.lstrip("\ufeff")))]

    def complaints(self, name):
        """What a calculation says of cells without a figure."""
        return self.run("run", str(self.report(name)), "--db", str(self.database)).stderr

    def balance(self, account, year, period, column="fEndBal"):
        """An account's balance by a query of its own."""
        rows = self.asks(f"select sum(b.{column}) from tblAccountBal b join tblAccount a on a.fitemid=b.faccountid "
                         "where a.fNumber||''=? and b.fYear=? and b.fPeriod=? and b.fDetailId=0", account, year, period)
        return rows[0][0]

    def books_a_deposit(self, amount):
        """122102 押金 to 100101 现金 by a voucher of December 2025, with the balances of both and of those above."""
        connection = sqlite3.connect(self.database)
        with connection:
            voucher = connection.execute("select max(fvoucherid)+1 from tblVoucher").fetchone()[0]
            connection.execute("insert into tblVoucher values(?,2025,12,'2025-12-18 00:00:00',?,'付仓库押金',0)",
                               (voucher, f"记-{voucher}"))
            for line, (codes, side, sign) in enumerate(((("1221", "122102"), "Debit", 1),
                                                        (("1001", "100101"), "Credit", -1)), 1):
                ids = [connection.execute("select fitemid from tblAccount where fNumber||''=?", (code,)).fetchone()[0]
                       for code in codes]
                connection.execute(f"insert into tblVoucherEntry(fvoucherid,fentryid,faccountid,fCurrencyid,f{side}For,"
                                   f"f{side}) values(?,?,?,1,?,?)", (voucher, line, ids[-1], amount, amount))
                for account in ids:
                    for unit in ("", "For"):
                        connection.execute(
                            f"update tblAccountBal set f{side}{unit}=f{side}{unit}+?,fYtd{side}{unit}=fYtd{side}{unit}+?,"
                            f"fEndBal{unit}=fEndBal{unit}+? where faccountid=? and fYear=2025 and fPeriod=12 and "
                            "fDetailId=0 and fCurrencyid=1", (amount, amount, sign * amount, account))
        connection.close()

    def largest_debit(self, account, year, period):
        """Number and amount of the voucher, by a query of its own."""
        return self.asks("select v.fnumber,e.fDebit from tblVoucherEntry e join tblVoucher v on v.fvoucherid=e.fvoucherid "
                         "join tblAccount a on a.fitemid=e.faccountid where a.fNumber||''=? and v.fYear=? and v.fPeriod=? "
                         "order by e.fDebit desc limit 1", account, year, period)[0]

    def run(self, *arguments):
        done = subprocess.run([self.program, *arguments], capture_output=True, text=True)
        assert done.returncode == 0, f"{arguments}: {done.stderr}"
        return done


def paper(pdf):
    """The text of a PDF, its columns side by side."""
    return subprocess.run(["pdftotext", "-layout", str(pdf), "-"], capture_output=True, text=True, check=True).stdout
