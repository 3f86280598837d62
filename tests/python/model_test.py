"""Questions to a workbook through the plain layer."""

import os
import unittest

import qtoengine

BOOK = os.environ["QTO_BOOK"]


class ModelTest(unittest.TestCase):
    def setUp(self):
        self.model = qtoengine.open(BOOK)
        self.addCleanup(self.model.close)

    def test_inputs(self):
        cells = self.model.inputs("Summary!C7")
        self.assertEqual(len(cells), 67)
        self.assertEqual(cells[0].address, "Assumptions!B10")
        self.assertEqual((cells[0].value, cells[0].formula), (2000, ""))
        self.assertEqual(cells[0].title, "Loan.Value")

    def test_errors_begin_where_they_arise(self):
        (origin,) = self.model.errors("Summary!B15")
        self.assertEqual((origin.address, origin.value), ("Costs!D8", "#DIV/0!"))
        self.assertTrue(origin.has_error)

    def test_trees_and_edges(self):
        tree = self.model.tree("Summary!C7", depth=1)
        self.assertEqual(str(tree).splitlines(),
                         ["Summary!C7  =Debt!C4-C6", "  Debt!C4  =C2-C3",
                          "  Summary!C6  ='Cash flow'!C8"])
        edges = list(self.model.edges("Summary!C7"))
        starts = {above.address for above, _ in edges}
        ends = {below.address for _, below in edges}
        inputs = {cell.address for cell in self.model.inputs("Summary!C7")}
        self.assertLessEqual(inputs, ends)
        self.assertEqual(ends - starts, inputs - starts)

    def test_starts_are_found_or_told(self):
        for start in ("'Cash flow'!C8", "Cash flow!$C$8"):
            self.assertEqual(self.model.range(start).GetAddress(External=True),
                             "'[plan.xlsx]Cash flow'!$C$8")
        with self.assertRaisesRegex(LookupError, "Nowhere!A1: .*sheets: Summary, "):
            self.model.inputs("Nowhere!A1")
        with self.assertRaisesRegex(ValueError, "written, exact"):
            self.model.inputs("Summary!C7", reading="aloud")

    def test_a_closed_model_lets_go_of_its_book(self):
        with qtoengine.open(BOOK) as other:
            book = other.book
        self.assertIsNone(other.book)
        with self.assertRaises(qtoengine.com_error):
            book.Worksheets(1).Range("A1").Value


if __name__ == "__main__":
    unittest.main()
