"""Prints an audit of a workbook: every formula of a sheet, the inputs that it rests on, and where
its errors come from.

    PYTHONPATH=build/release/python python3 examples/audit.py [BOOK [SHEET]]
"""

import pathlib
import sys

from qtoengine import Dispatch


def formulas(sheet):
    used = sheet.UsedRange
    values = used.Value if used.Count > 1 else ((used.Value,),)
    for row in range(1, len(values) + 1):
        for column in range(1, len(values[0]) + 1):
            cell = used.Cells(row, column)
            if cell.HasFormula:
                yield cell


def audit(drill, cell):
    drill.StartUnderlyingObject = cell
    drill.FindInputs()
    inputs = [part.AddressLong(1) for part in drill.InputCells]
    more = f" … {len(inputs)} in all" if len(inputs) > 3 else ""
    address = cell.Address.replace("$", "")
    print(f"{address:6} {cell.Text:>12}  from {', '.join(inputs[:3])}{more}")
    if drill.StartModelPart.HasError:
        drill.TraceError()
        for part in drill.ErrorCells:
            print(f"{'':20} error arises at {part.AddressLong(1)}: {part.Formula}")


def main(arguments):
    book_path = arguments[0] if arguments else str(
        pathlib.Path(__file__).resolve().parent / "workbooks/plan.xlsx")
    book = Dispatch("QTOHost.Application").Workbooks.Open(book_path)
    sheet = book.Worksheets(arguments[1] if len(arguments) > 1 else 1)
    print(f"{book.Name}, sheet {sheet.Name}")
    drill = Dispatch("QTOEngine.DrillDown")
    drill.DrillOptions = Dispatch("QTOEngine.DrillOptions")
    drill.DrillOptions.Reading = 1  # qtoReadExact: formulas as structure
    for cell in formulas(sheet):
        audit(drill, cell)


if __name__ == "__main__":
    main(sys.argv[1:])
