"""The formula-auditing engine and its spreadsheet host.

    import qtoengine

    with qtoengine.open("plan.xlsx") as model:
        for cell in model.inputs("Summary!C7"):
            print(cell.address, cell.value)

Below that, everything by name, as automation clients are written everywhere:

    from qtoengine import Dispatch, DispatchWithEvents, com_error

    application = Dispatch("QTOHost.Application")
    drill = Dispatch("QTOEngine.DrillDown")
    drill.StartUnderlyingObject = application.Workbooks.Open(path).Worksheets("S").Range("A1")
    drill.FindInputs()
    for part in drill.InputCells:
        print(part.AddressShort, part.value)
"""

from ._client import Dispatch, com_error
from ._events import DispatchWithEvents, WithEvents
from .model import Cell, Model, Tree, open

__all__ = ["Cell", "Dispatch", "DispatchWithEvents", "Model", "Tree", "WithEvents", "com_error",
           "open"]
