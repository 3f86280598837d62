"""Drills a workbook through both libraries and writes what it finds: drill.py BOOK.
tests/windows/drill.vbs does the same on Windows, and both must write the same lines."""

import sys

from qtoengine import Dispatch, com_error


def show(title, parts):
    print(title, parts.Count)
    for part in parts:
        print(f"  {part.AddressLong(2)} {part.Formula} = {part.Text}")


def number_of(action):
    try:
        action()
    except com_error as error:
        return error.excepinfo[5] if error.excepinfo else error.hresult
    return 0


def main(path):
    host = Dispatch("QTOHost.Application")
    book = host.Workbooks.Open(path)
    drill = Dispatch("QTOEngine.DrillDown")

    def start(sheet, cell):
        drill.StartUnderlyingObject = book.Worksheets(sheet).Range(cell)

    start("Summary", "C7")
    drill.FindInputs()
    show("inputs of Summary!C7", drill.InputCells)
    drill.MaximumDepth = 1
    drill.DrillHere()
    show("precedents of Summary!C7", drill.StartModelPart.DirectPrecedents)
    drill.MaximumDepth = 0
    start("Summary", "B15")
    drill.TraceError()
    show("errors below Summary!B15", drill.ErrorCells)
    print(f"empty cell {number_of(lambda: start('Summary', 'Z99')) & 0xFFFFFFFF:X}")
    print("no such sheet", number_of(lambda: book.Worksheets("no such sheet")) != 0)
    print("done")


if __name__ == "__main__":
    main(sys.argv[1])
