"""The book writers: well-formed packages, right cached values, the example as it is shipped."""

import math
import pathlib
import re
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
from books import benchmark, encryption, linked, plan  # noqa: E402
from books.package import column_letters  # noqa: E402

MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
RELATION_ID = "{http://schemas.openxmlformats.org/officeDocument/2006/relationships}id"


def parts(path):
    with zipfile.ZipFile(path) as package:
        return {name: package.read(name) for name in package.namelist()}


def cells(path):
    """{(sheet, address): (formula text or None, value text)}; checks every part is XML."""
    texts = {name: xml.fromstring(text) for name, text in parts(path).items()}
    targets = {r.get("Id"): r.get("Target") for r in texts["xl/_rels/workbook.xml.rels"]}
    result = {}
    for sheet in texts["xl/workbook.xml"].find(MAIN + "sheets"):
        for cell in texts["xl/" + targets[sheet.get(RELATION_ID)]].iter(MAIN + "c"):
            formula, value = cell.find(MAIN + "f"), cell.find(MAIN + "v")
            result[sheet.get("name"), cell.get("r")] = (
                None if formula is None else formula.text or "", value.text)
    return result


class Written(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = str(pathlib.Path(folder.name, "book.xlsx"))

    def number(self, sheet, address):
        return float(self.cells[sheet, address][1])

    def test_the_shipped_example_is_what_the_script_writes(self):
        plan.write(self.path)
        self.assertEqual(parts(self.path), parts(ROOT / "examples/workbooks/plan.xlsx"))

    def test_the_error_of_the_example_reaches_the_summary(self):
        book = cells(ROOT / "examples/workbooks/plan.xlsx")
        failed = {cell for cell, (_, value) in book.items() if value == "#DIV/0!"}
        self.assertEqual({("Costs", "D8"), ("Cash flow", "D9"), ("Cash flow", "D10"),
                          ("Debt", "D6"), ("Debt", "B7"), ("Summary", "D9"), ("Summary", "D10"),
                          ("Summary", "B14"), ("Summary", "B15")}, failed)

    def test_the_shipped_linked_books_are_what_the_script_writes(self):
        shipped = ROOT / "examples/workbooks/linked"
        written = pathlib.Path(self.path).parent
        linked.write(written)
        for book in ("group.xlsx", "sales.xlsx", "costs.xlsx", "loop.xlsx"):
            self.assertEqual(parts(written / book), parts(shipped / book))
        self.assertEqual((written / "rates.xlsx").read_bytes(),
                         (shipped / "rates.xlsx").read_bytes())

    def test_the_linked_books_remember_what_their_sources_hold(self):
        shipped = ROOT / "examples/workbooks/linked"
        books = {name: cells(shipped / f"{name}.xlsx") for name in ("group", "sales", "costs")}
        group, sales, costs = (books[name] for name in ("group", "sales", "costs"))
        self.assertEqual(group["Group", "B3"][1], sales["North", "B5"][1])
        self.assertEqual(float(group["Group", "B9"][1]),
                         float(sales["North", "B5"][1]) - float(costs["Costs", "B4"][1]))
        texts = parts(shipped / "group.xlsx")
        source = xml.fromstring(texts["xl/externalLinks/externalLink1.xml"])
        for sheet, name in zip(source.iter(MAIN + "sheetData"), ("North", "South")):
            for cell in sheet.iter(MAIN + "cell"):
                self.assertEqual(cell.find(MAIN + "v").text, sales[name, cell.get("r")][1])

    def test_the_cipher_of_the_encrypted_book(self):
        # FIPS 197, appendix C.3.
        aes = encryption.Aes256(bytes(range(32)))
        self.assertEqual(aes.cbc(bytes(16), bytes.fromhex("00112233445566778899aabbccddeeff")).hex(),
                         "8ea2b7ca516745bfeafc49904b496089")

    def test_chain_keeps_the_running_total(self):
        for shared in (False, True):
            with self.subTest(shared=shared):
                benchmark.chain(self.path, rows=3000, shared=shared)
                self.cells = cells(self.path)
                for n in range(2, 3001):
                    self.assertEqual(self.number("Sheet1", f"B{n}"),
                                     self.number("Sheet1", f"B{n - 1}")
                                     + self.number("Sheet1", f"A{n}"))
                self.assertEqual("B1+A2", self.cells["Sheet1", "B2"][0])
                self.assertEqual("" if shared else "B2999+A3000", self.cells["Sheet1", "B3000"][0])

    def test_fan_totals_its_columns(self):
        benchmark.fan(self.path, sums=30, cells=300)
        self.cells = cells(self.path)
        constants = sum(float(value) for (sheet, _), (_, value) in self.cells.items()
                        if sheet == "Data")
        self.assertEqual(constants, self.number("Sums", "B1"))
        self.assertEqual("SUM(Data!AD1:AD10)", self.cells["Sums", "A30"][0])

    def test_grid_cells_are_left_plus_upper_neighbour(self):
        benchmark.grid(self.path, rows=20, columns=30)
        self.cells = cells(self.path)
        for row in range(2, 21):
            for column in range(2, 31):
                left = f"{column_letters(column - 1)}{row}"
                upper = f"{column_letters(column)}{row - 1}"
                formula, value = self.cells["Sheet1", f"{column_letters(column)}{row}"]
                self.assertEqual(f"{left}+{upper}", formula)
                self.assertEqual(float(value),
                                 self.number("Sheet1", left) + self.number("Sheet1", upper))

    def test_model_values_follow_from_its_formulas(self):
        benchmark.model(self.path, sheets=3, rows=40)
        self.cells = cells(self.path)
        formulas = [key for key, (formula, _) in self.cells.items() if formula]
        self.assertEqual(3 * 40 * 5 + 1, len(formulas))
        for sheet, address in formulas:
            if sheet == "Total":
                continue
            column, row = re.match(r"([A-Z]+)(\d+)", address).groups()
            near = {c: self.number(sheet, c + row) for c in "BCDEFGH"}
            before = int(sheet[5:]) - 1
            source = self.number(f"Sheet{before}", f"H{row}") if before else near["C"]
            above = self.number(sheet, f"H{int(row) - 1}") if row != "2" else 0
            expected = {"D": near["B"] * 1.05 + source * 0.1,
                        "E": near["D"] - near["C"] if near["D"] > near["C"] else near["C"],
                        "F": self.number("Lookup", f"B{int(near['C']) + 1}"),
                        "G": near["D"] + near["E"] + near["F"],
                        "H": above * 0.1 + near["G"]}[column]
            self.assertTrue(math.isclose(expected, near[column]), (sheet, address))
        ends = sum(self.number(f"Sheet{n}", "H41") for n in (1, 2, 3))
        self.assertTrue(math.isclose(ends, self.number("Total", "B1")))


if __name__ == "__main__":
    unittest.main()
