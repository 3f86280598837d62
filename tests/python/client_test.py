"""The Python package against a real book, through both libraries."""

import os
import unittest

from qtoengine import Dispatch, DispatchWithEvents, com_error

BOOK = os.environ["QTO_BOOK"]


class Stopping:
    seen = ()

    def OnBeforeGetPrecedents(self, parent, cancel):
        Stopping.seen += (parent.AddressShort, cancel)
        return parent, True


class Silent:
    pass


class ClientTest(unittest.TestCase):
    def setUp(self):
        self.application = Dispatch("QTOHost.Application")
        book = self.application.Workbooks.Open(BOOK)
        self.cell = book.Worksheets("Summary").Range("C7")

    def number(self, action):
        with self.assertRaises(com_error) as raised:
            action()
        return f"{raised.exception.hresult & 0xFFFFFFFF:08X}"

    def test_drills_and_iterates(self):
        drill = Dispatch("QTOEngine.DrillDown")
        drill.StartUnderlyingObject = self.cell
        drill.FindInputs()
        parts = list(drill.InputCells)
        self.assertEqual(len(parts), drill.InputCells.Count)
        self.assertGreater(len(parts), 10)
        self.assertEqual(parts[0].UniqueKey, drill.InputCells.Item(1).UniqueKey)
        self.assertTrue(parts[0].AddressLong(1).endswith("!" + parts[0].AddressShort))

    def test_events_are_answered(self):
        for handler, more in ((Stopping, False), (Silent, True)):
            drill = DispatchWithEvents("QTOEngine.DrillDown", handler)
            drill.StartUnderlyingObject = self.cell
            drill.FindInputs()
            self.assertEqual(drill.InputCells.Count > 10, more)
        self.assertEqual(Stopping.seen, ("C7", False))

    def test_errors_arrive_by_number(self):
        drill = Dispatch("QTOEngine.DrillDown")
        sheet = self.cell.Worksheet

        def start(value):
            drill.StartUnderlyingObject = value

        self.assertEqual(self.number(lambda: start(None)), "80040001")
        self.assertEqual(self.number(lambda: start(sheet.Range("Z99"))), "80040002")
        self.assertEqual(self.number(lambda: setattr(drill, "MaxItems", "many")), "80020005")
        self.assertEqual(self.number(lambda: setattr(drill, "InputCells", None)), "80020003")
        self.assertEqual(self.number(lambda: drill.FindInputs(1)), "8002000E")
        self.assertEqual(self.number(lambda: Dispatch("QTOEngine.Parser")), "800401F3")
        self.assertFalse(hasattr(drill, "NoSuchMember"))

    def test_values_cross_unchanged(self):
        sheet = self.application.Workbooks.Add().Worksheets(1)
        for value in ("Größe 😀", 2.5, 7, True):
            sheet.Range("A1").Value = value
            self.assertEqual(sheet.Range("A1").Value, value)
        self.assertEqual(sheet.Range("A1:B2").Value, ((True, None), (None, None)))


if __name__ == "__main__":
    unittest.main()
