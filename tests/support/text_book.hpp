#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/diagnostics/error_report.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"
#include "qto/hosts/embedded/book/book.hpp"

/// Workbooks written down as text, and results read back as text.
namespace qto::test {

/// The error reports that arise while it lives, as " !1004" each.
class Reports {
 public:
  Reports() {
    token_ = diagnostics::error_reported().add(
        [this](const auto& report) { text_ += " !" + std::to_string(report.number); });
  }
  Reports(const Reports&) = delete;
  Reports& operator=(const Reports&) = delete;
  ~Reports() { diagnostics::error_reported().remove(token_); }
  const std::string& text() const { return text_; }

 private:
  int token_;
  std::string text_;
};

/// Open books over the embedded host. A book is written as "A1=5; Sheet2!B1=text; D1==A1+B1;
/// name Rate=Sheet1!$A$1": what follows the first "=" is entered as typed.
class Books {
 public:
  Books() = default;
  explicit Books(std::string_view text) { add(text); }

  Ref<host::Workbook> add(std::string_view text, std::string name = "Plan.xlsx",
                          std::string path = "") {
    auto book = std::make_unique<embedded::Book>();
    book->name = std::move(name);
    book->path = std::move(path);
    book->add_sheet("Sheet1");
    models.push_back(book.get());
    opened.push_back(app.adopt(std::move(book)));
    enter(text, opened.back());
    return opened.back();
  }

  void enter(std::string_view text) { enter(text, opened.front()); }
  void enter(std::string_view text, const Ref<host::Workbook>& book) {
    while (!text.empty()) {
      const std::size_t end = text.find("; ");
      enter_one(text.substr(0, end), book);
      text = end == std::string_view::npos ? "" : text.substr(end + 2);
    }
  }

  /// "B7" is on Sheet1.
  Ref<host::Range> range(std::string_view address) { return range(address, opened.front()); }
  Ref<host::Range> range(std::string_view address, const Ref<host::Workbook>& book) {
    const std::size_t mark = address.find('!');
    if (mark == std::string_view::npos) return sheet("Sheet1", book)->Range(address);
    return sheet(address.substr(0, mark), book)->Range(address.substr(mark + 1));
  }

  embedded::Application app;
  std::vector<Ref<host::Workbook>> opened;
  std::vector<embedded::Book*> models;  // what is under the books, for charts and the like

 private:
  static Ref<host::Worksheet> sheet(std::string_view name, const Ref<host::Workbook>& book) {
    if (const auto found = book->find_worksheet(name)) return found;
    return book->AddWorksheet(name);
  }
  void enter_one(std::string_view entry, const Ref<host::Workbook>& book) {
    const std::size_t equals = entry.find('=');
    const std::string_view what = entry.substr(equals + 1);
    std::string_view place = entry.substr(0, equals);
    if (!place.starts_with("name ")) {
      range(place, book)->put_Formula(what);
      return;
    }
    place.remove_prefix(5);
    const std::string refers_to = "=" + std::string(what);
    const std::size_t mark = place.find('!');
    if (mark == std::string_view::npos)
      book->AddName(place, refers_to);
    else
      sheet(place.substr(0, mark), book)->AddName(place.substr(mark + 1), refers_to);
  }
};

/// DrillOptions by its fields.
struct Options {
  int ParseIf = 0, ParseLookup = 0, ParseSumif = 0, ParseIndirect = 4, ParseOffset = 4,
      ParseIndex = 0, ParseMatch = 0;
  bool ShowBlanks = true, ShowZeros = true, ShowDates = true;
  int Reading = 0;

  Ref<qto::DrillOptions> make() const {
    auto options = make_ref<qto::DrillOptions>();
    options->put_ParseIf(qtoDrillType(ParseIf));
    options->put_ParseLookup(qtoDrillType(ParseLookup));
    options->put_ParseSumif(qtoDrillType(ParseSumif));
    options->put_ParseIndirect(qtoDrillType(ParseIndirect));
    options->put_ParseOffset(qtoDrillType(ParseOffset));
    options->put_ParseIndex(qtoDrillType(ParseIndex));
    options->put_ParseMatch(qtoDrillType(ParseMatch));
    options->put_ShowBlanks(ShowBlanks);
    options->put_ShowZeros(ShowZeros);
    options->put_ShowDates(ShowDates);
    options->put_Reading(qtoReading(Reading));
    return options;
  }
};

/// The address; with its sheet unless that is Sheet1, with its book unless that is Plan.xlsx, and
/// "?" before an unknown part.
inline std::string label(const ModelPart& part) {
  std::string out = part.IsUnknown() ? "?" : "";
  const std::string book = part.WorkBookName();
  const std::string sheet = part.WorkSheetName();
  if (!book.empty() && book != "Plan.xlsx") out += "[" + book + "]";
  const bool qualified = part.ObjectType() != "Name" || part.IsUnknown();
  if (qualified && !sheet.empty() && sheet != "Sheet1") out += sheet + "!";
  return out + part.AddressShort();
}

/// Labels in order; "none" for no list.
inline std::string listed(const Ref<ModelParts>& parts) {
  if (!parts) return "none";
  std::string out;
  parts->for_each([&](const ModelPart& part) { out += (out.empty() ? "" : " ") + label(part); });
  return out;
}

/// The tree below a part, "A1(B1(C1) C1)": a part's precedents once, where it is first met.
inline std::string tree(const Ref<ModelPart>& part) {
  std::vector<const ModelPart*> shown;
  const std::function<std::string(const ModelPart&)> write = [&](const ModelPart& top) {
    std::string out = label(top);
    if (std::find(shown.begin(), shown.end(), &top) != shown.end()) return out;
    shown.push_back(&top);
    if (const auto& list = top.DirectPrecedents()) {
      std::string inner;
      list->for_each(
          [&](const ModelPart& item) { inner += (inner.empty() ? "" : " ") + write(item); });
      out += "(" + inner + ")";
    }
    return out;
  };
  return write(*part);
}

/// A drill that starts at a cell.
inline Ref<DrillDown> drill_from(Books& books, std::string_view start,
                                 const Options& options = {}) {
  auto drill = make_ref<DrillDown>();
  drill->putref_DrillOptions(options.make());
  drill->putref_StartUnderlyingObject(books.range(start));
  return drill;
}

/// The direct precedents of a cell; error reports that arose stand behind them.
inline std::string precedents(Books& books, std::string_view start, const Options& options = {}) {
  const Reports reports;
  const auto drill = drill_from(books, start, options);
  drill->put_MaximumDepth(1);
  drill->DrillHere();
  return listed(drill->StartModelPart()->DirectPrecedents()) + reports.text();
}

inline std::string inputs(Books& books, std::string_view start, const Options& options = {}) {
  const Reports reports;
  const auto drill = drill_from(books, start, options);
  drill->FindInputs();
  return listed(drill->InputCells()) + reports.text();
}

inline std::string errors(Books& books, std::string_view start, const Options& options = {}) {
  const Reports reports;
  const auto drill = drill_from(books, start, options);
  drill->TraceError();
  return listed(drill->ErrorCells()) + reports.text();
}

/// The number of the AutomationError that a call raises; 0 when it raises none.
inline std::int32_t raised_by(const std::function<void()>& call) {
  try {
    call();
  } catch (const AutomationError& error) {
    return error.number;
  }
  return 0;
}

}  // namespace qto::test
