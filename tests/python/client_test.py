"""The Python package against a real book, through both libraries."""

import ctypes
import gc
import os
import unittest

from qtoengine import Dispatch, DispatchWithEvents, WithEvents, com_error
from qtoengine._client import _registry_files

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

    def test_what_handlers_raise_ends_the_drill_and_comes_out_of_its_call(self):
        for kind in (ValueError, KeyboardInterrupt):
            class Raising:
                calls = 0

                def OnBeforeGetPrecedents(self, parent, cancel):
                    Raising.calls += 1
                    raise kind("from the handler")

            drill = DispatchWithEvents("QTOEngine.DrillDown", Raising)
            drill.StartUnderlyingObject = self.cell
            with self.assertRaisesRegex(kind, "from the handler"):
                drill.FindInputs()
            self.assertEqual(Raising.calls, 1)
            self.assertEqual(drill.MaxItems, Dispatch("QTOEngine.DrillDown").MaxItems)

    def test_handlers_keep_state_on_self(self):
        class Counting:
            def __init__(self):
                self.count = 0

            def OnBeforeGetPrecedents(self, parent, cancel):
                self.count += 1

        drill = DispatchWithEvents("QTOEngine.DrillDown", Counting)
        drill.StartUnderlyingObject = self.cell
        drill.FindInputs()
        self.assertGreater(drill.count, 10)

    def test_events_of_an_object_that_is_there(self):
        class Titles:
            seen = ()

            def OnTitleChanged(self, old, new):
                self.seen += ((old, new),)

        drill = Dispatch("QTOEngine.DrillDown")
        drill.StartUnderlyingObject = self.cell
        part = drill.StartModelPart
        with WithEvents(part, Titles) as handler:
            part.Title = "one"
            del part
            drill.StartModelPart.Title = "two"  # the connection is the part's, not the reference's
            self.assertEqual([new for _, new in handler.seen], ["one", "two"])
        drill.StartModelPart.Title = "three"
        self.assertEqual(len(handler.seen), 2)
        both = DispatchWithEvents(drill.StartModelPart, Titles)
        both.Title = "four"
        self.assertEqual(both.seen[-1][1], "four")
        with self.assertRaises(com_error):
            WithEvents(Dispatch("QTOEngine.LinkList"), Titles)

    def test_events_of_lists(self):
        class Adding:
            def OnBeforeItemAdded(self, item):
                self.added = item.AddressShort
                return item

        parts = DispatchWithEvents("QTOEngine.ModelParts", Adding)
        part = Dispatch("QTOEngine.ModelPart")
        part.Create(self.cell, "Range")
        parts.AddExisting(part)
        self.assertEqual((parts.Count, parts.added), (1, "C7"))

    def test_lists_are_sequences(self):
        drill = Dispatch("QTOEngine.DrillDown")
        drill.StartUnderlyingObject = self.cell
        drill.FindInputs()
        cells = drill.InputCells
        self.assertEqual(cells[0], cells.Item(1))
        self.assertEqual(cells[-1], cells.Item(cells.Count))
        self.assertEqual(cells[1:3], [cells.Item(2), cells.Item(3)])
        self.assertEqual(cells[cells[1].UniqueKey], cells[1])
        self.assertIn(cells[1], cells)
        self.assertRaises(IndexError, lambda: cells[len(cells)])
        self.assertRaises(KeyError, lambda: cells["nowhere"])
        self.assertEqual(repr(cells), f"<ModelParts of {len(cells)}>")
        self.assertIn("Assumptions", repr(cells[0]))
        self.assertEqual(cells._repr_html_().count("<tr>"), 51)
        self.assertIn("FindInputs", dir(drill))
        with self.assertRaisesRegex(AttributeError, "did you mean MaxItems"):
            drill.MaxItem

    def test_objects_are_one_reference_in_both_libraries(self):
        drill = Dispatch("QTOEngine.DrillDown")
        drill.StartUnderlyingObject = self.cell
        self.assertEqual(drill.StartUnderlyingObject, self.cell)
        self.assertEqual(drill.StartModelPart.UnderlyingObject, self.cell)
        self.assertEqual(drill.StartModelPart.ExcelApplication, self.application)

    def test_books_close_with_their_block(self):
        with self.application.Workbooks.Add() as book:
            self.assertEqual(self.application.Workbooks.Count, 2)
        self.assertEqual(self.application.Workbooks.Count, 1)
        self.assertRaises(com_error, lambda: book.Name)

    def test_lost_parts_are_refused_as_start(self):
        drill = Dispatch("QTOEngine.DrillDown")
        drill.StartUnderlyingObject = self.cell
        empty = Dispatch("QTOEngine.ModelPart")
        self.assertEqual(
            self.number(lambda: setattr(drill, "StartUnderlyingObject", empty)), "80040001")
        self.assertEqual(drill.StartUnderlyingObject, self.cell)
        part = Dispatch("QTOEngine.ModelPart")
        part.Create(self.cell, "Range")
        self.assertEqual(self.number(lambda: part.Create(self.cell, "Name")), "80040001")
        self.assertEqual(part.Formula, self.cell.Formula)

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

    def test_errors_tell_what_is_known(self):
        drill = Dispatch("QTOEngine.DrillDown")
        with self.assertRaises(com_error) as raised:
            drill.MaxItems = -1
        error = raised.exception
        self.assertEqual(error.source, "QTOEngine")
        self.assertIn("out of range", error.description)
        self.assertEqual(error.excepinfo[5], error.hresult)
        with self.assertRaises(com_error) as raised:
            self.application.Workbooks.Open("/no/such/book.xlsx")
        self.assertIn("book.xlsx", raised.exception.description)
        with self.assertRaises(com_error) as raised:
            drill.MaxItems = "many"
        self.assertIsNone(raised.exception.excepinfo)
        self.assertEqual(raised.exception.argerror, 0)

    def test_arguments_can_be_named(self):
        part = Dispatch("QTOEngine.ModelPart")
        part.Create(None, UnknownName="Rate", LikelyType="Name")
        self.assertEqual(part.AddressShort, "Rate")
        self.assertEqual(self.cell.GetAddress(RowAbsolute=False, ColumnAbsolute=False), "C7")
        self.assertEqual(self.number(lambda: part.Create(None, Colour="red")), "80020006")

    def test_what_was_let_go_is_refused(self):
        drill = Dispatch("QTOEngine.DrillDown")
        drill.__del__()
        self.assertEqual(self.number(lambda: drill.MaxItems), "80010108")
        self.assertEqual(self.number(lambda: setattr(drill, "MaxItems", 1)), "80010108")

    def test_libraries_can_go_when_nothing_is_held(self):
        servers = {library for file in _registry_files() if file.is_file()
                   for *_, library in (line.split("\t") for line in file.read_text().splitlines())}
        self.assertEqual(len(servers), 2)
        del self.cell, self.application
        gc.collect()
        modules = sorted((ctypes.CDLL(path) for path in servers), key=lambda m: "host" in m._name)
        self.assertEqual([module.DllCanUnloadNow() for module in modules], [0, 0])
        # and come back when they are wanted again
        self.assertEqual(Dispatch("QTOEngine.ModelParts").Count, 0)

    def test_values_cross_unchanged(self):
        sheet = self.application.Workbooks.Add().Worksheets(1)
        for value in ("Größe 😀", 2.5, 7, True):
            sheet.Range("A1").Value = value
            self.assertEqual(sheet.Range("A1").Value, value)
        self.assertEqual(sheet.Range("A1:B2").Value, ((True, None), (None, None)))


if __name__ == "__main__":
    unittest.main()
