' Drills a workbook through both libraries and writes what it finds: drill.vbs BOOK.
' tests/python/drill.py does the same elsewhere, and both must write the same lines.
Option Explicit
Dim host, book, drill

Sub Show(title, parts)
  Dim part
  WScript.Echo title & " " & parts.Count
  For Each part In parts
    WScript.Echo "  " & part.AddressLong(2) & " " & part.Formula & " = " & part.Text
  Next
End Sub

Sub Start(sheet, cell)
  Set drill.StartUnderlyingObject = book.Worksheets(sheet).Range(cell)
End Sub

Set host = CreateObject("QTOHost.Application")
Set book = host.Workbooks.Open(WScript.Arguments(0))
Set drill = CreateObject("QTOEngine.DrillDown")
Start "Summary", "C7"
drill.FindInputs
Show "inputs of Summary!C7", drill.InputCells
drill.MaximumDepth = 1
drill.DrillHere
Show "precedents of Summary!C7", drill.StartModelPart.DirectPrecedents
drill.MaximumDepth = 0
Start "Summary", "B15"
drill.TraceError
Show "errors below Summary!B15", drill.ErrorCells
On Error Resume Next
Start "Summary", "Z99"
WScript.Echo "empty cell " & Hex(Err.Number)
Err.Clear
book.Worksheets "no such sheet"
WScript.Echo "no such sheet " & CStr(Err.Number <> 0)
WScript.Echo "done"
