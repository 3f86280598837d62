#include "tests/conformance/perturbation/generated_book.hpp"

#include <algorithm>

#include "qto/host/host.hpp"

namespace qto::embedded::conformance {
namespace {

constexpr int data_rows = 12;
constexpr CellPos table_corner{14, 1};
const std::vector<std::string> table_columns{"Item",     "Amount",  "Unit Price",
                                             "Tax #[2]", "North's", "Sum"};

constexpr const char* odd_names[] = {
    "Data", "My sheet", "it's",      "2026", "a.b",  "A1",  "R1C1", "Grö ße", "x(y)", "a,b",
    "a;b",  "n+1",      "{x}",       "a=b",  "TRUE", "50%", "#REF", "x&y",    "<>",   "Sheet-2",
    "C",    "名前",     "say \"x\"", "e1!",  "1E+5", "_x",  "$A$1", "a b c",  "IF",   "SUM"};

std::string written(const std::string& name) {
  std::string out;
  append_sheet_name(out, name);
  return out;
}

std::string in_book(const std::string& book, const std::string& sheet) {
  std::string quoted;
  for (const char c : sheet) quoted += c == '\'' ? "''" : std::string(1, c);
  return "'[" + book + "]" + quoted + "'";
}

std::string text_of(const Variant& value) {
  if (const double* number = value.get_if<double>()) {
    std::string out = std::to_string(*number);
    out.erase(out.find_last_not_of('0') + 1);
    return out.back() == '.' ? out + "0" : out;
  }
  if (const bool* truth = value.get_if<bool>()) return *truth ? "TRUE" : "FALSE";
  if (const ErrorValue* error = value.get_if<ErrorValue>()) return std::string(error_text(*error));
  return value.is_text() ? "\"" + value.text() + "\"" : "";
}

}  // namespace

GeneratedBook::GeneratedBook(std::uint64_t seed, int formulas) : chance_(seed) {
  application_.set_now(45352.5);
  fill_other_book();
  make_sheets();
  for (Sheet* sheet : data_) fill_data(*book_, *sheet);
  add_table();
  add_names();
  for (CellPos at{1, 4}; at.row <= 14; ++at.row)
    for (at.column = 4; at.column <= 9; ++at.column)
      if (chance_.happens(4, 5)) put(*own_, at, static_cast<double>(chance_.below(9)));
  add_spill();
  add_formulas(formulas);
  workbook_->Activate();
}

void GeneratedBook::make_sheets() {
  auto book = std::make_unique<Book>();
  book_ = book.get();
  book->name = "Plan.xlsx";
  while (data_.size() < 3) {
    const std::string name = chance_.one_of(odd_names);
    if (book->find_sheet(name)) continue;
    data_.push_back(&book->add_sheet(name));
    names_.data_sheets.push_back(written(name));
    names_.qualifiers.push_back(written(name));
    script_ += "sheet " + name + "\n";
    if (data_.size() == 1 && chance_.happens(1, 3)) {
      book->add_sheet("Chart9", SheetKind::chart);
      script_ += "chart sheet Chart9\n";
    }
  }
  const std::string own = chance_.happens(1, 2) ? "Calc" : "Calc 2";
  own_ = &book->add_sheet(own);
  script_ += "sheet " + own + "\n";
  names_.own_sheet = written(own);
  workbook_ = application_.adopt(std::move(book));
}

/// The open book that others link to.
void GeneratedBook::fill_other_book() {
  auto book = std::make_unique<Book>();
  other_ = book.get();
  book->name = chance_.happens(1, 2) ? "Other.xlsx" : "other book.xlsx";
  Sheet& sheet = book->add_sheet(chance_.happens(1, 2) ? "Data" : "Far away");
  names_.qualifiers.push_back(in_book(book->name, sheet.name));
  script_ += "book " + book->name + " sheet " + sheet.name + "\n";
  other_workbook_ = application_.adopt(std::move(book));
  fill_data(*other_, sheet);
}

void GeneratedBook::fill_data(Book& book, Sheet& sheet) {
  constexpr const char* texts[] = {"a", "b", "c", "d", "e1", "ab", ""};
  double rising = chance_.below(3);
  for (int row = 1; row <= data_rows; ++row) {
    if (!chance_.happens(1, 15)) put(sheet, {row, 1}, rising);
    rising += chance_.below(3);
    if (!chance_.happens(1, 15)) put(sheet, {row, 2}, Variant(chance_.one_of(texts)));
    for (int column = 3; column <= 5; ++column) {
      const CellPos at{row, column};
      switch (chance_.below(16)) {
        case 0:
          break;
        case 1:
          put(sheet, at, Variant(chance_.one_of(texts)));
          break;
        case 2:
          put(sheet, at, chance_.happens(1, 2));
          break;
        case 3:
          if (chance_.happens(1, 3)) put(sheet, at, ErrorValue::na);
          break;
        default:
          put(sheet, at, static_cast<double>(chance_.below(12)));
      }
    }
  }
  const std::string on = &book == other_ ? in_book(book.name, sheet.name) : written(sheet.name);
  for (int row = 1; row <= 6; ++row) {
    const std::string references[] = {on + "!C" + std::to_string(1 + chance_.below(9)),
                                      "E" + std::to_string(1 + chance_.below(9)),
                                      on + "!C2:D4",
                                      "E2:F3",
                                      "Rate",
                                      "Block",
                                      "Sales[Amount]",
                                      "no reference",
                                      "Sales[[#All],[Item]:[Unit Price]]"};
    put(sheet, {row, 6}, Variant(chance_.one_of(references)));
  }
}

void GeneratedBook::add_table() {
  Sheet& sheet = *data_.front();
  Table table;
  table.name = "Sales";
  table.sheet = &sheet;
  table.range = {table_corner, {table_corner.row + 5, 6}};
  table.totals_rows = 1;
  table.columns = table_columns;
  for (int i = 0; i < 6; ++i)
    put(sheet, {table_corner.row, 1 + i}, Variant(std::string(table_columns[i])));
  for (CellPos at{table_corner.row + 1, 1}; at.row <= table_corner.row + 5; ++at.row)
    for (at.column = 1; at.column <= 5; ++at.column)
      put(sheet, at, static_cast<double>(chance_.below(20)));
  book_->add_table(std::move(table));
  book_->everything_changed();
  script_ += "table Sales on " + sheet.name + " at A14:F19 with a row of totals\n";
  names_.tables = {"Sales",
                   "Sales[Amount]",
                   "Sales[[Item]:[Unit Price]]",
                   "Sales[[#All],[Item]:[Amount]]",
                   "Sales[[#Totals],[Amount]]",
                   "Sales[[#Headers],[#Data],[Unit Price]]",
                   "Sales[#Headers]",
                   "Sales[Tax '#'[2']]",
                   "Sales[North''s]",
                   "Sales[Item]:Sales[Unit Price]",
                   "Sales[#All]"};
  constexpr const char* in_rows[] = {"[@Amount]*2",
                                     "SUM(Sales[@[Amount]:[Unit Price]])",
                                     "[@Item]&[@[Tax '#'[2']]]",
                                     "Sales[@Amount]/SUM([Amount])",
                                     "COUNTA(Sales[[#Headers],[Amount]:[Unit Price]])",
                                     "IF([@Amount]>9,[@[Unit Price]],[@Item])",
                                     "SUM(Sales[[#This Row],[Item]:[North''s]])",
                                     "SUM([Item]:[Amount])"};
  for (int row = 1; row <= 4; ++row) {
    const GeneratedFormula formula{chance_.one_of(in_rows), {}};
    formulas_.push_back({&sheet, {table_corner.row + row, 6}, formula, false});
  }
}

void GeneratedBook::name(const std::string& name, const std::string& refers_to,
                         const std::string& sheet) {
  script_ += "name " + (sheet.empty() ? "" : sheet + "!") + name + "=" + refers_to + "\n";
  if (sheet.empty())
    workbook_->AddName(name, refers_to);
  else
    workbook_->Worksheets(sheet)->AddName(name, refers_to);
}

std::string GeneratedBook::anywhere(const std::string& address) {
  return chance_.one_of(names_.data_sheets) + "!" + address;
}

void GeneratedBook::add_names() {
  const auto cell = [&] {
    return anywhere("$" + std::string(1, static_cast<char>('C' + chance_.below(3))) + "$" +
                    std::to_string(1 + chance_.below(9)));
  };
  const std::string first = chance_.one_of(names_.data_sheets);
  name("First_", "=" + first + "!$C$2");
  name("Last_", "=" + first + "!$D$6");
  for (int step = 1; step <= 3; ++step) name("Step" + std::to_string(step), "=" + cell());
  name("Rate", "=" + cell());
  name("what?", "=" + cell());
  name("\\back", "=" + cell());
  name("Größe.2", "=" + cell());
  name("Rate", "=" + cell(), own_->name);
  name("Local_1", "=" + cell(), own_->name);
  name("Chain", "=Rate");
  names_.cell_names = {"Rate",  "what?", "\\back", "Größe.2", names_.own_sheet + "!Rate",
                       "Chain", "Step1", "Local_1"};
  name("Block", "=" + anywhere("$C$2:$D$5"));
  name("Both", "=(" + anywhere("$C$1:$C$3") + "," + anywhere("$E$1:$E$3") + ")");
  name("Moved", "=OFFSET(" + anywhere("$C$1") + ",1,0,Step1,2)");
  name("Picked", "=INDEX(" + anywhere("$C$1:$E$9") + ",Step2,0)");
  name("Column_", "=Sales[Amount]");
  name("Ends", "=First_:Last_");
  name("Chosen", "=IF(Step1>2,Block," + anywhere("$E$4:$E$6") + ")");
  name("Right", "=" + names_.own_sheet + "!E1");  // moves with the formula
  name("Reached", "=INDIRECT(" + anywhere("$F$1") + ")");
  names_.range_names = {"Block", "Both",   "Moved",   "Picked", "Column_",
                        "Ends",  "Chosen", "Reached", "Right"};
  name("Half", "=0.5");
  name("Twice_", "=2*Rate+SUM(Block)");
  name("Missing_", "=Nowhere+1");
  names_.value_names = {"Half", "Twice_", "Missing_"};
  name("Plus", "=LAMBDA(x,x+" + cell() + ")");
  name("Choose_", "=LAMBDA(x,IF(x>3," + cell() + ",SUM(Block)))");
  names_.function_names = {"Plus", "Choose_"};
}

void GeneratedBook::add_spill() {
  const std::string source = anywhere("A1:A4") + "*2";
  workbook_->Worksheets(own_->name)->Range("K1:K4")->put_FormulaArray("=" + source);
  script_ += "array " + own_->name + "!K1:K4=" + source + "\n";
  names_.spilled = {"K1#", names_.own_sheet + "!K1#", "K1#:L2"};
}

void GeneratedBook::add_formulas(int count) {
  for (int i = 0; i < count; ++i) {
    const CellPos at{1 + i % data_rows, 1 + i / data_rows};
    formulas_.push_back(
        {own_, at, generate_formula(names_, chance_, 1 + chance_.below(3)), chance_.happens(1, 8)});
  }
  for (const FormulaCell& cell : formulas_) enter(cell, cell.formula);
}

void GeneratedBook::enter(const FormulaCell& cell, const GeneratedFormula& formula) {
  put_formula(*cell.sheet, cell.at, formula.text(), cell.array);
}

void GeneratedBook::put(Sheet& sheet, CellPos at, const Variant& value) {
  script_ += written(sheet.name) + "!" + address_of(at) + "=" + text_of(value) + "\n";
  sheet.book().store(sheet.cells.touch(at), value);
}

void GeneratedBook::put_formula(Sheet& sheet, CellPos at, const std::string& text, bool array) {
  script_ +=
      (array ? "array " : "") + written(sheet.name) + "!" + address_of(at) + "==" + text + "\n";
  const Ref<host::Range> cell = workbook_->Worksheets(sheet.name)->Cells(at.row, at.column);
  if (array)
    cell->put_FormulaArray("=" + text);
  else
    cell->put_Formula("=" + text);
}

}  // namespace qto::embedded::conformance
