// The engine from the other script language.
var failed = 0;
function check(what, good) {
  if (!good) {
    ++failed;
    WScript.Echo("FAILED " + what);
  }
}
function number_of(run) {
  try {
    run();
  } catch (error) {
    return (error.number >>> 0).toString(16);
  }
  return "none";
}

var drill = new ActiveXObject("QTOEngine.DrillDown");
drill.MaxItems = 7;
check("whole number", drill.MaxItems === 7);
drill.IgnoreConstantIfZeroOrOne = true;
check("Boolean", drill.IgnoreConstantIfZeroOrOne === true);
var part = new ActiveXObject("QTOEngine.ModelPart");
part.Title = "Zins";
check("text", part.Title === "Zins");
check("property with an argument", number_of(function () { return part.AddressLong(0); }) === "80040004");
check("value out of range", number_of(function () { drill.MaxItems = -1; }) === "80040004");
check("nothing to drill", number_of(function () { drill.FindInputs(); }) === "80040001");
check("wrong number of arguments", number_of(function () { drill.FindInputs(1, 2); }) !== "none");
if (failed === 0) WScript.Echo("all checks passed");
