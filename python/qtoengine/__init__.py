"""Drives QTOEngine and its spreadsheet host by name.

    from qtoengine import Dispatch, DispatchWithEvents, com_error

    application = Dispatch("QTOHost.Application")
    drill = Dispatch("QTOEngine.DrillDown")
    drill.StartUnderlyingObject = application.Workbooks.Open(path).Worksheets("S").Range("A1")
    drill.FindInputs()
    for part in drill.InputCells:
        print(part.AddressShort, part.value)
"""

from ._client import Dispatch, DispatchWithEvents, com_error

__all__ = ["Dispatch", "DispatchWithEvents", "com_error"]
