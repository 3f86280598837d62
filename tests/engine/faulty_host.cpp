#include "tests/engine/faulty_host.hpp"

#include <utility>

namespace qto::test {
namespace {

using namespace host;

/// What all wrappers share: the object behind, and the hook before every ordinary call.
template <class Kind>
class Wrapper : public Kind {
 public:
  Wrapper(FaultyHost& desk, Ref<Kind> inner) : desk_(desk), inner_(std::move(inner)) {}
  Ref<HostObject> Parent() const override {
    desk_.count("Parent");
    return desk_.wrap_object(inner_->Parent());
  }
  bool exists() const noexcept override { return inner_->exists(); }
  const Ref<Kind>& inner() const { return inner_; }

 protected:
  Ref<host::Application> application() const override {
    desk_.count("Application");
    return desk_.application();
  }
  Kind& call(const char* name) const {
    desk_.count(name);
    return *inner_;
  }
  template <class Item>
  std::vector<Ref<Item>> wrap_all(const std::vector<Ref<Item>>& items) const {
    std::vector<Ref<Item>> out;
    for (const auto& item : items) out.push_back(desk_.wrap(item));
    return out;
  }
  Variant wrap_value(Variant value) const {
    if (!value.is_object()) return value;
    return Variant(desk_.wrap_any(value.object()));
  }

  FaultyHost& desk_;
  Ref<Kind> inner_;
};

class FaultyRange : public Wrapper<Range> {
 public:
  using Wrapper::Wrapper;
  Ref<host::Worksheet> Worksheet() const override {
    return desk_.wrap(call("Range.Worksheet").Worksheet());
  }
  Rect block() const noexcept override { return inner_->block(); }
  int AreasCount() const noexcept override { return inner_->AreasCount(); }
  std::int64_t CellsCount() const noexcept override { return inner_->CellsCount(); }
  Ref<Range> Cells(std::int32_t row, std::int32_t column) const override {
    return desk_.wrap(call("Range.Cells").Cells(row, column));
  }
  Ref<Range> Rows(std::int32_t k) const override { return desk_.wrap(call("Range.Rows").Rows(k)); }
  Ref<Range> Columns(std::int32_t k) const override {
    return desk_.wrap(call("Range.Columns").Columns(k));
  }
  std::string Address(bool row, bool column, std::int32_t style, bool external) const override {
    return call("Range.Address").Address(row, column, style, external);
  }
  std::string AddressLocal(bool row, bool column, std::int32_t style,
                           bool external) const override {
    return call("Range.AddressLocal").AddressLocal(row, column, style, external);
  }
  bool HasFormula() const override { return call("Range.HasFormula").HasFormula(); }
  std::string Formula() const override { return call("Range.Formula").Formula(); }
  std::string FormulaLocal() const override { return call("Range.FormulaLocal").FormulaLocal(); }
  std::string FormulaR1C1Local() const override {
    return call("Range.FormulaR1C1Local").FormulaR1C1Local();
  }
  Variant value() const override { return call("Range.value").value(); }
  std::string Text() const override { return call("Range.Text").Text(); }
  Ref<DefinedName> find_name() const override { return desk_.wrap(inner_->find_name()); }
  Ref<Range> End(std::int32_t direction) const override {
    return desk_.wrap(call("Range.End").End(direction));
  }
  Ref<Range> EntireRow() const override { return desk_.wrap(call("Range.EntireRow").EntireRow()); }
  Ref<Range> EntireColumn() const override {
    return desk_.wrap(call("Range.EntireColumn").EntireColumn());
  }
  std::optional<bool> Hidden() const override { return call("Range.Hidden").Hidden(); }
  void put_Hidden(bool hidden) override { call("Range.put_Hidden").put_Hidden(hidden); }
  void Select() override { call("Range.Select").Select(); }
  void put_value(const Variant& value) override { call("Range.put_value").put_value(value); }
  void put_Formula(std::string_view text) override { call("Range.put_Formula").put_Formula(text); }
  void put_FormulaArray(std::string_view text) override {
    call("Range.put_FormulaArray").put_FormulaArray(text);
  }
  std::string NumberFormat() const override { return call("Range.NumberFormat").NumberFormat(); }
  void put_NumberFormat(std::string_view code) override {
    call("Range.put_NumberFormat").put_NumberFormat(code);
  }
};

Ref<Range> unwrap(const Ref<Range>& range) {
  const auto faulty = ref_cast<FaultyRange>(range);
  return faulty ? faulty->inner() : range;
}

class FaultyName : public Wrapper<DefinedName> {
 public:
  using Wrapper::Wrapper;
  std::string Name() const override { return call("Name.Name").Name(); }
  std::string NameLocal() const override { return call("Name.NameLocal").NameLocal(); }
  int Index() const override { return call("Name.Index").Index(); }
  bool Visible() const override { return call("Name.Visible").Visible(); }
  std::string RefersTo() const override { return call("Name.RefersTo").RefersTo(); }
  std::string RefersToLocal() const override { return call("Name.RefersToLocal").RefersToLocal(); }
  std::string RefersToR1C1Local() const override {
    return call("Name.RefersToR1C1Local").RefersToR1C1Local();
  }
};

class FaultyPivotTable : public Wrapper<PivotTable> {
 public:
  using Wrapper::Wrapper;
  std::string Name() const override { return call("PivotTable.Name").Name(); }
  Ref<Range> TableRange2() const override {
    return desk_.wrap(call("PivotTable.TableRange2").TableRange2());
  }
  std::string SourceData() const override { return call("PivotTable.SourceData").SourceData(); }
};

class FaultySeries : public Wrapper<Series> {
 public:
  using Wrapper::Wrapper;
  std::string Name() const override { return call("Series.Name").Name(); }
  std::string Formula() const override { return call("Series.Formula").Formula(); }
  std::string FormulaLocal() const override { return call("Series.FormulaLocal").FormulaLocal(); }
  std::string FormulaR1C1Local() const override {
    return call("Series.FormulaR1C1Local").FormulaR1C1Local();
  }
  std::int32_t ChartType() const override { return call("Series.ChartType").ChartType(); }
  void Select() override { call("Series.Select").Select(); }
};

template <class Kind>
class FaultySheet : public Wrapper<Kind> {
 public:
  using Wrapper<Kind>::Wrapper;
  using Wrapper<Kind>::call;
  std::string Name() const override { return call("Sheet.Name").Name(); }
  int Index() const override { return call("Sheet.Index").Index(); }
  Ref<host::Workbook> Workbook() const override {
    return this->desk_.wrap(call("Sheet.Workbook").Workbook());
  }
  std::int32_t Visible() const override { return call("Sheet.Visible").Visible(); }
  void put_Visible(std::int32_t state) override { call("Sheet.put_Visible").put_Visible(state); }
  void Unprotect(std::string_view password) override {
    call("Sheet.Unprotect").Unprotect(password);
  }
  void Select() override { call("Sheet.Select").Select(); }
  void Activate() override { call("Sheet.Activate").Activate(); }
};

class FaultyChart : public FaultySheet<Chart> {
 public:
  using FaultySheet::FaultySheet;
  std::vector<Ref<Series>> SeriesCollection() const override {
    return wrap_all(call("Chart.SeriesCollection").SeriesCollection());
  }
  void SelectChartArea() override { call("Chart.SelectChartArea").SelectChartArea(); }
};

class FaultyChartObject : public Wrapper<ChartObject> {
 public:
  using Wrapper::Wrapper;
  std::string Name() const override { return call("ChartObject.Name").Name(); }
  Ref<host::Chart> Chart() const override { return desk_.wrap(call("ChartObject.Chart").Chart()); }
  void Activate() override { call("ChartObject.Activate").Activate(); }
};

class FaultyWorksheet : public FaultySheet<Worksheet> {
 public:
  using FaultySheet::FaultySheet;
  Ref<host::Range> find_range(std::string_view address) const override {
    return desk_.wrap(inner_->find_range(address));
  }
  Ref<host::Range> Range(std::string_view address) const override {
    return desk_.wrap(call("Worksheet.Range").Range(address));
  }
  bool find_block(std::string_view address, Rect& block) const override {
    return inner_->find_block(address, block);
  }
  Ref<host::Range> Block(const Rect& block) const override {
    return desk_.wrap(call("Worksheet.Block").Block(block));
  }
  Ref<host::Range> Cells(std::int32_t row, std::int32_t column) const override {
    return desk_.wrap(call("Worksheet.Cells").Cells(row, column));
  }
  Ref<host::Range> UsedRange() const override {
    return desk_.wrap(call("Worksheet.UsedRange").UsedRange());
  }
  Ref<DefinedName> find_name(std::string_view name) const override {
    return desk_.wrap(inner_->find_name(name));
  }
  Ref<DefinedName> Names(std::string_view name) const override {
    return desk_.wrap(call("Worksheet.Names").Names(name));
  }
  Ref<DefinedName> AddName(std::string_view name, std::string_view refers_to) override {
    return desk_.wrap(call("Worksheet.AddName").AddName(name, refers_to));
  }
  Variant Evaluate(std::string_view text) const override {
    return wrap_value(call("Worksheet.Evaluate").Evaluate(text));
  }
  Variant elements_in_cell(CellPos cell, std::string_view piece, bool over_ranges) const override {
    return wrap_value(
        call("Worksheet.elements_in_cell").elements_in_cell(cell, piece, over_ranges));
  }
  Variant value_in_cell(CellPos cell, std::string_view piece) const override {
    return wrap_value(call("Worksheet.value_in_cell").value_in_cell(cell, piece));
  }
  Ref<host::Range> range_in_cell(CellPos cell, std::string_view piece) const override {
    return desk_.wrap(call("Worksheet.range_in_cell").range_in_cell(cell, piece));
  }
  Ref<host::Range> CircularReference() const override {
    return desk_.wrap(call("Worksheet.CircularReference").CircularReference());
  }
  std::vector<Ref<PivotTable>> PivotTables() const override {
    return wrap_all(call("Worksheet.PivotTables").PivotTables());
  }
  std::vector<Ref<ChartObject>> ChartObjects() const override {
    return wrap_all(call("Worksheet.ChartObjects").ChartObjects());
  }
  Ref<ChartObject> ChartObjects(std::string_view name) const override {
    return desk_.wrap(call("Worksheet.ChartObjects").ChartObjects(name));
  }
  std::uint64_t IdentityStamp() const noexcept override { return inner_->IdentityStamp(); }
  void append_cell_formula(CellPos pos, std::string& out) const override {
    call("Worksheet.append_cell_formula").append_cell_formula(pos, out);
  }
  Variant cell_value(CellPos pos) const override {
    return call("Worksheet.cell_value").cell_value(pos);
  }
  bool cell_has_formula(CellPos pos) const override {
    return call("Worksheet.cell_has_formula").cell_has_formula(pos);
  }
};

class FaultyWorkbook : public Wrapper<Workbook> {
 public:
  using Wrapper::Wrapper;
  std::string Name() const override { return call("Workbook.Name").Name(); }
  std::string Path() const override { return call("Workbook.Path").Path(); }
  std::string FullName() const override { return call("Workbook.FullName").FullName(); }
  Ref<Sheet> find_sheet(std::string_view name) const override {
    return desk_.wrap(inner_->find_sheet(name));
  }
  Ref<Worksheet> find_worksheet(std::string_view name) const override {
    return desk_.wrap(inner_->find_worksheet(name));
  }
  Ref<Sheet> Sheets(std::string_view name) const override {
    return desk_.wrap(call("Workbook.Sheets").Sheets(name));
  }
  Ref<Sheet> Sheets(int position) const override {
    return desk_.wrap(call("Workbook.Sheets").Sheets(position));
  }
  int SheetsCount() const override { return call("Workbook.SheetsCount").SheetsCount(); }
  Ref<Worksheet> Worksheets(std::string_view name) const override {
    return desk_.wrap(call("Workbook.Worksheets").Worksheets(name));
  }
  Ref<Worksheet> Worksheets(int position) const override {
    return desk_.wrap(call("Workbook.Worksheets").Worksheets(position));
  }
  int WorksheetsCount() const override {
    return call("Workbook.WorksheetsCount").WorksheetsCount();
  }
  Ref<Worksheet> AddWorksheet(std::string_view name) override {
    return desk_.wrap(call("Workbook.AddWorksheet").AddWorksheet(name));
  }
  Ref<DefinedName> find_name(std::string_view name) const override {
    return desk_.wrap(inner_->find_name(name));
  }
  Ref<DefinedName> Names(std::string_view name) const override {
    return desk_.wrap(call("Workbook.Names").Names(name));
  }
  std::vector<Ref<DefinedName>> AllNames() const override {
    return wrap_all(call("Workbook.AllNames").AllNames());
  }
  Ref<DefinedName> AddName(std::string_view name, std::string_view refers_to) override {
    return desk_.wrap(call("Workbook.AddName").AddName(name, refers_to));
  }
  bool AcceptLabelsInFormulas() const override {
    return call("Workbook.AcceptLabelsInFormulas").AcceptLabelsInFormulas();
  }
  void put_AcceptLabelsInFormulas(bool on) override {
    call("Workbook.put_AcceptLabelsInFormulas").put_AcceptLabelsInFormulas(on);
  }
  std::vector<std::string> LinkSources(std::int32_t type) const override {
    return call("Workbook.LinkSources").LinkSources(type);
  }
  void Unprotect(std::string_view password) override {
    call("Workbook.Unprotect").Unprotect(password);
  }
  void Activate() override { call("Workbook.Activate").Activate(); }
  void Close(bool save_changes) override { call("Workbook.Close").Close(save_changes); }
  void FollowHyperlink(std::string_view address) override {
    call("Workbook.FollowHyperlink").FollowHyperlink(address);
  }
};

class FaultyWorkbooks : public Wrapper<Workbooks> {
 public:
  using Wrapper::Wrapper;
  Ref<Workbook> find(std::string_view name) const override {
    return desk_.wrap(inner_->find(name));
  }
  Ref<Workbook> find(int position) const override { return desk_.wrap(inner_->find(position)); }
  Ref<Workbook> Item(std::string_view name) const override {
    return desk_.wrap(call("Workbooks.Item").Item(name));
  }
  Ref<Workbook> Item(int position) const override {
    return desk_.wrap(call("Workbooks.Item").Item(position));
  }
  int Count() const override { return call("Workbooks.Count").Count(); }
  Ref<Workbook> Open(std::string_view file_name, std::optional<bool> update_links, bool read_only,
                     std::string_view password) override {
    return desk_.wrap(call("Workbooks.Open").Open(file_name, update_links, read_only, password));
  }
  Ref<Workbook> Add() override { return desk_.wrap(call("Workbooks.Add").Add()); }
};

class FaultyFunctions : public Wrapper<WorksheetFunction> {
 public:
  using Wrapper::Wrapper;
  std::optional<double> Match(const Variant& wanted, const Ref<Range>& range,
                              std::optional<double> type) override {
    return inner_->Match(wanted, unwrap(range), type);
  }
  double CountIf(const Ref<Range>& range, const Variant& criteria) override {
    return call("WorksheetFunction.CountIf").CountIf(unwrap(range), criteria);
  }
};

class FaultyPane : public Wrapper<Pane> {
 public:
  using Wrapper::Wrapper;
  Ref<Range> VisibleRange() const override {
    return desk_.wrap(call("Pane.VisibleRange").VisibleRange());
  }
  void SmallScroll(std::int32_t up, std::int32_t to_left) override {
    call("Pane.SmallScroll").SmallScroll(up, to_left);
  }
};

class FaultyWindow : public Wrapper<Window> {
 public:
  using Wrapper::Wrapper;
  Ref<Pane> ActivePane() const override {
    return desk_.wrap(call("Window.ActivePane").ActivePane());
  }
  std::int32_t ScrollRow() const override { return call("Window.ScrollRow").ScrollRow(); }
  std::int32_t ScrollColumn() const override { return call("Window.ScrollColumn").ScrollColumn(); }
  void put_ScrollRow(std::int32_t row) override { call("Window.put_ScrollRow").put_ScrollRow(row); }
  void put_ScrollColumn(std::int32_t column) override {
    call("Window.put_ScrollColumn").put_ScrollColumn(column);
  }
};

class FaultyApplication : public Wrapper<Application> {
 public:
  using Wrapper::Wrapper;
  Ref<host::Workbooks> Workbooks() override {
    return make_ref<FaultyWorkbooks>(desk_, inner_->Workbooks());
  }
  Ref<Workbook> ActiveWorkbook() override {
    return desk_.wrap(call("Application.ActiveWorkbook").ActiveWorkbook());
  }
  Ref<Sheet> ActiveSheet() override {
    return desk_.wrap(call("Application.ActiveSheet").ActiveSheet());
  }
  Ref<Object> Selection() override {
    return desk_.wrap_any(call("Application.Selection").Selection());
  }
  Ref<Window> ActiveWindow() override {
    return desk_.wrap(call("Application.ActiveWindow").ActiveWindow());
  }
  Ref<Chart> ActiveChart() override {
    return desk_.wrap(call("Application.ActiveChart").ActiveChart());
  }
  std::string Caption() override { return call("Application.Caption").Caption(); }
  std::int32_t ReferenceStyle() override {
    return call("Application.ReferenceStyle").ReferenceStyle();
  }
  bool ScreenUpdating() override { return call("Application.ScreenUpdating").ScreenUpdating(); }
  void put_ScreenUpdating(bool on) override {
    call("Application.put_ScreenUpdating").put_ScreenUpdating(on);
  }
  bool EnableEvents() override { return call("Application.EnableEvents").EnableEvents(); }
  void put_EnableEvents(bool on) override {
    call("Application.put_EnableEvents").put_EnableEvents(on);
  }
  bool DisplayAlerts() override { return call("Application.DisplayAlerts").DisplayAlerts(); }
  void put_DisplayAlerts(bool on) override {
    call("Application.put_DisplayAlerts").put_DisplayAlerts(on);
  }
  void Goto(const Ref<Range>& reference, bool scroll) override {
    call("Application.Goto").Goto(unwrap(reference), scroll);
  }
  Ref<Range> Intersect(const Ref<Range>& a, const Ref<Range>& b) override {
    return desk_.wrap(call("Application.Intersect").Intersect(unwrap(a), unwrap(b)));
  }
  std::string ConvertFormula(std::string_view formula, std::int32_t from, std::int32_t to,
                             const Ref<Range>& relative_to) override {
    return call("Application.ConvertFormula")
        .ConvertFormula(formula, from, to, unwrap(relative_to));
  }
  Ref<host::WorksheetFunction> WorksheetFunction() override {
    return desk_.wrap(call("Application.WorksheetFunction").WorksheetFunction());
  }
  Ref<DefinedName> find_name(std::string_view name) override {
    return desk_.wrap(inner_->find_name(name));
  }
  Ref<DefinedName> Names(std::string_view name) override {
    return desk_.wrap(call("Application.Names").Names(name));
  }
  void bring_to_front() override { call("Application.bring_to_front").bring_to_front(); }
  void yield() override { call("Application.yield").yield(); }
};

template <class Faulty, class Kind>
Ref<HostObject> wrapped_as(FaultyHost& desk, const Ref<HostObject>& inner) {
  const auto kind = ref_cast<Kind>(inner);
  return kind ? Ref<HostObject>(make_ref<Faulty>(desk, kind)) : nullptr;
}

Ref<HostObject> make_wrapper(FaultyHost& desk, const Ref<HostObject>& inner) {
  using Make = Ref<HostObject> (*)(FaultyHost&, const Ref<HostObject>&);
  static constexpr Make makers[] = {wrapped_as<FaultyRange, Range>,
                                    wrapped_as<FaultyName, DefinedName>,
                                    wrapped_as<FaultyWorksheet, Worksheet>,
                                    wrapped_as<FaultyChart, Chart>,
                                    wrapped_as<FaultyWorkbook, Workbook>,
                                    wrapped_as<FaultyWorkbooks, Workbooks>,
                                    wrapped_as<FaultySeries, Series>,
                                    wrapped_as<FaultyChartObject, ChartObject>,
                                    wrapped_as<FaultyPivotTable, PivotTable>,
                                    wrapped_as<FaultyWindow, Window>,
                                    wrapped_as<FaultyPane, Pane>,
                                    wrapped_as<FaultyFunctions, WorksheetFunction>};
  for (const Make make : makers)
    if (const auto made = make(desk, inner)) return made;
  return nullptr;
}

}  // namespace

FaultyHost::FaultyHost(Ref<host::Application> inner)
    : app_(make_ref<FaultyApplication>(*this, std::move(inner))) {}

FaultyHost::~FaultyHost() = default;

void FaultyHost::count(const char* call) {
  ++calls_;
  if (failing_call_ == 0 || calls_ < failing_call_ || (calls_ > failing_call_ && !always_)) return;
  if (failed_.empty()) failed_ = call;
  throw host::HostFailure(host::general_failure, "the host failed", call);
}

Ref<host::HostObject> FaultyHost::wrap_object(const Ref<host::HostObject>& inner) {
  if (!inner) return nullptr;
  if (ref_cast<host::Application>(inner)) return app_;
  if (!ref_cast<host::Workbook>(inner) && !ref_cast<host::Sheet>(inner))
    return make_wrapper(*this, inner);
  auto& kept = kept_[inner.get()];
  if (!kept) kept = make_wrapper(*this, inner);
  return kept;
}

Ref<Object> FaultyHost::wrap_any(const Ref<Object>& inner) {
  return wrap_object(ref_cast<host::HostObject>(inner));
}

}  // namespace qto::test
