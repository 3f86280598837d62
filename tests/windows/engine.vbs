' The engine from a script: values, errors, collections. Every failure is written out.
Option Explicit
Dim failed : failed = 0

Sub Check(what, good)
  If Not good Then
    failed = failed + 1
    WScript.Echo "FAILED " & what
  End If
End Sub

Dim drill, options, part, parts, item, count
Set drill = CreateObject("QTOEngine.DrillDown")
' Wine gives the interface's name, others the class's.
Check "class name", Replace(TypeName(drill), "_", "") = "DrillDown"
drill.MaxItems = 7
Check "whole number", drill.MaxItems = 7 And TypeName(drill.MaxItems) = "Long"
drill.IgnoreConstantIfZeroOrOne = True
Check "Boolean", CInt(drill.IgnoreConstantIfZeroOrOne) = -1
Set options = CreateObject("QTOEngine.DrillOptions")
options.ParseIf = 1
Set drill.DrillOptions = (options)
Check "same object", drill.DrillOptions Is options

Set part = CreateObject("QTOEngine.ModelPart")
part.Create Nothing, "Name", "Rate"
Check "optional argument", part.AddressShort = "Rate"
part.Title = "Zins"
Check "text", part.Title = "Zins"
Set parts = CreateObject("QTOEngine.ModelParts")
parts.AddExisting (part)
count = 0
For Each item In parts
  count = count + 1
  Check "enumerated", item Is part
Next
Check "all enumerated", count = 1 And parts.Count = 1
Check "item by key", parts.Item(part.UniqueKey) Is part

On Error Resume Next
drill.MaxItems = -1
Check "number of an error", Hex(Err.Number) = "80040004"
Check "source of an error", Err.Source = "QTOEngine"
Check "text of an error", Len(Err.Description) > 0
Err.Clear
drill.NoSuchMember = 1
Check "unknown member", Err.Number = 438
Err.Clear
drill.MaxItems = "many"
Check "wrong type", Err.Number = 13
Err.Clear
Set drill.StartUnderlyingObject = Nothing
Check "nothing as start", Hex(Err.Number) = "80040001"
Err.Clear
drill.FindInputs
Check "no start", Hex(Err.Number) = "80040001"
Err.Clear
On Error Goto 0
If failed = 0 Then WScript.Echo "all checks passed"
