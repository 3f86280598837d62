"""Questions to a workbook, answered in plain Python.

    import qtoengine

    with qtoengine.open("plan.xlsx") as model:
        for cell in model.inputs("Summary!C7"):
            print(cell.address, cell.value)
"""

import dataclasses
import os
import re
from typing import Any, Dict, Iterator, List, Optional, Tuple

from ._client import Dispatch, com_error

_SHEET = 1  # qualifier of an address: with its sheet
_REFERENCE = re.compile(r"^=?(?:(?:'((?:[^']|'')+)'|([^'!]+))!)?([^!]+)$")
READINGS = {"written": 0, "exact": 1}


@dataclasses.dataclass(frozen=True)
class Cell:
    """One item of a model: a cell or range, a name, a series, a link."""

    address: str  #: with its sheet, "Summary!C7"
    book: str
    title: str
    formula: str  #: "" for an input
    value: Any  #: of an error its text, "#DIV/0!"
    text: str  #: as the sheet shows it
    kind: str  #: "Range", "Name", "Series", "Pivot Table", "!LINK"
    has_error: bool
    is_unknown: bool  #: it could not be looked at, for instance in a book that is not open

    def __str__(self):
        return f"{self.address}  {self.title}  {self.text}".replace("    ", "  ")


@dataclasses.dataclass(frozen=True)
class Tree:
    """What feeds a cell: every cell once, by its key, and the keys of its direct precedents."""

    start: str
    cells: Dict[str, Cell]
    precedents: Dict[str, List[str]]

    def edges(self) -> Iterator[Tuple[Cell, Cell]]:
        """Pairs of a cell and one of its precedents, from the start on."""
        for key, below in self.precedents.items():
            for precedent in below:
                yield self.cells[key], self.cells[precedent]

    def __iter__(self):
        return iter(self.cells.values())

    def __len__(self):
        return len(self.cells)

    def __str__(self):
        lines, shown, stack = [], set(), [(self.start, 0)]
        while stack:
            key, depth = stack.pop()
            cell = self.cells[key]
            lines.append("  " * depth + f"{cell.address}  {cell.formula or cell.text}")
            if key in shown:
                continue
            shown.add(key)
            stack += [(below, depth + 1) for below in reversed(self.precedents.get(key, ()))]
        return "\n".join(lines)


def _plain(address):
    """Without the apostrophes that a sheet's name does not need."""
    return re.sub(r"^'([^\W\d]\w*)'!", r"\1!", address)


def _cell(part) -> Cell:
    if not part.ResultsSet:
        part.SetResultsValues()
    has_error = part.HasError
    formula, text = part.Formula, part.Text
    return Cell(address=_plain(part.AddressLong(_SHEET)), book=part.WorkBookName, title=part.Title,
                formula=formula if formula.startswith("=") else "",
                value=text if has_error else part.value, text=text, kind=part.ObjectType,
                has_error=has_error, is_unknown=part.IsUnknown)


class Model:
    """An open workbook that can be asked. It ends with close() or a `with` block."""

    def __init__(self, path, password: Optional[str] = None):
        self.application = Dispatch("QTOHost.Application")
        given = {"Password": password} if password is not None else {}
        self.book = self.application.Workbooks.Open(os.path.abspath(path), **given)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def __repr__(self):
        return f"<Model {self.book.FullName}>" if self.book else "<Model, closed>"

    def close(self):
        """Closes the workbook without saving it."""
        if self.book:
            self.book.Close(False)
        self.book = self.application = None

    def range(self, start: str):
        """The host's range of "Summary!C7", "'My sheet'!C7", "C7" (on the first sheet) or a name."""
        sheet, cell = self._split(start)
        try:
            return (self.book.Worksheets(sheet) if sheet else self.book.Worksheets(1)).Range(cell)
        except com_error:
            try:
                target = self.book.Names.Item(start).RefersTo
            except com_error:
                raise LookupError(f"{start}: no cell or name of {self.book.Name}; sheets: "
                                  + ", ".join(s.Name for s in self.book.Worksheets)) from None
        sheet, cell = self._split(target)
        return self.book.Worksheets(sheet).Range(cell)

    def inputs(self, start: str, reading: Optional[str] = None) -> List[Cell]:
        """The input cells that a cell rests on, in the order in which they are met."""
        drill = self._drill(start, reading)
        drill.FindInputs()
        return [_cell(part) for part in drill.InputCells]

    def errors(self, start: str, reading: Optional[str] = None) -> List[Cell]:
        """The cells in which the error of a cell arises."""
        drill = self._drill(start, reading)
        drill.TraceError()
        return [_cell(part) for part in drill.ErrorCells]

    def tree(self, start: str, depth: Optional[int] = None,
             reading: Optional[str] = None) -> Tree:
        """What feeds a cell, all the way down or so many levels."""
        drill = self._drill(start, reading)
        drill.MaximumDepth = depth or 0
        drill.DrillHere()
        top = drill.StartModelPart
        cells, precedents, waiting = {}, {}, [top]
        cells[top.UniqueKey] = _cell(top)
        while waiting:
            part = waiting.pop(0)
            below = part.DirectPrecedents
            if below is None or part.UniqueKey in precedents:
                continue
            keys = precedents[part.UniqueKey] = []
            for precedent in below:
                key = precedent.UniqueKey
                keys.append(key)
                if key not in cells:
                    cells[key] = _cell(precedent)
                    waiting.append(precedent)
        return Tree(top.UniqueKey, cells, precedents)

    def edges(self, start: str, reading: Optional[str] = None) -> Iterator[Tuple[Cell, Cell]]:
        """Pairs of a cell and one of its precedents, all the way down: what a graph is made of."""
        return self.tree(start, reading=reading).edges()

    @staticmethod
    def _split(start):
        found = _REFERENCE.match(start.strip())
        if not found:
            raise LookupError(f"{start!r} is no reference to a cell")
        quoted, plain, cell = found.groups()
        return (quoted.replace("''", "'") if quoted else plain), cell

    def _drill(self, start, reading):
        drill = Dispatch("QTOEngine.DrillDown")
        if reading is not None:
            if reading not in READINGS:
                raise ValueError(f"reading is one of {', '.join(READINGS)}, not {reading!r}")
            options = Dispatch("QTOEngine.DrillOptions")
            options.Reading = READINGS[reading]
            drill.DrillOptions = options
        drill.StartUnderlyingObject = self.range(start)
        return drill


def open(path, password: Optional[str] = None) -> Model:  # as in every reader's library
    """Opens a workbook for questions."""
    return Model(path, password)
