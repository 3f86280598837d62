#include "cli/show/show.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

#include "cli/answer/answer_json.hpp"
#include "cli/asking/complaint.hpp"
#include "cli/output/part_json.hpp"
#include "cli/output/part_text.hpp"
#include "cli/show/show_series.hpp"
#include "cli/terminal/terminal.hpp"
#include "qto/host/host.hpp"

namespace qto::cli {
namespace {

template <class List, class Write>
void write_all(JsonWriter& json, std::string_view name, const List& list, Write&& write) {
  json.key(name);
  json.begin_array();
  for (const auto& entry : list) write(entry);
  json.end_array();
}

void begin(JsonWriter& json, ModelPart& part) {
  json.begin_object();
  json.member("operation", name_of(Operation::show));
  json.key("start");
  write_part(json, part);
}

void finish(JsonWriter& json, const Reports& reports) {
  write_reports(json, reports);
  json.end_object();
  json.finish();
}

void write_picture(ModelPart& part, const Picture& picture, const Reports& reports) {
  JsonWriter json(stdout);
  begin(json, part);
  const auto address = [&](const Rect& block) { json.text(address_of(block)); };
  write_all(json, "Rows", picture.rows,
            [&](const Picture::Line& row) { json.number(std::int64_t{row.number}); });
  write_all(json, "Columns", picture.columns, [&](const Picture::Line& column) {
    std::string letters;
    append_column(letters, column.number);
    json.text(letters);
  });
  write_all(json, "Texts", picture.cells, [&](const auto& row) {
    json.begin_array();
    for (const Picture::Shown& cell : row) json.text(cell.text);
    json.end_array();
  });
  write_all(json, "HiddenRows", picture.hidden_rows, address);
  write_all(json, "HiddenColumns", picture.hidden_columns, address);
  finish(json, reports);
}

void write_series_view(ModelPart& part, const SeriesView& view, const Reports& reports) {
  JsonWriter json(stdout);
  begin(json, part);
  write_all(json, "Series", view.series, [&](const SeriesView::Series& series) {
    json.begin_object();
    json.member("Name", series.name);
    json.member("ChartType", std::int64_t{series.chart_type});
    json.member("Formula", series.formula);
    json.member("Selected", series.selected);
    json.end_object();
  });
  write_all(json, "Points", view.points, [&](const SeriesView::Point& point) {
    json.begin_object();
    json.member("Category", point.category);
    json.member("Text", point.value);
    json.end_object();
  });
  json.member("PointCount", static_cast<std::int64_t>(view.point_count));
  finish(json, reports);
}

/// What hides an item, in words: "row 7 and column C", "sheet Costs".
std::string what_hides(const host::Range& range) {
  if (range.Worksheet()->Visible() != host::xlSheetVisible)
    return "sheet " + range.Worksheet()->Name() + " is hidden";
  const auto lines = [](const char* what, const std::string& first, const std::string& last) {
    return first == last ? std::string(what) + " " + first
                         : std::string(what) + "s " + first + " to " + last;
  };
  const Rect block = range.block();
  std::string first;
  std::string last;
  append_column(first, block.first.column);
  append_column(last, block.last.column);
  std::string text;
  if (range.EntireRow()->Hidden().value_or(false))
    text = lines("row", std::to_string(block.first.row), std::to_string(block.last.row));
  if (range.EntireColumn()->Hidden().value_or(false))
    text += (text.empty() ? "" : " and ") + lines("column", first, last);
  return text + (text.find("s ") != std::string::npos || text.find(" and ") != std::string::npos
                     ? " are hidden"
                     : " is hidden");
}

class Showing {
 public:
  Showing(const Arguments& arguments, const Item& item) : arguments_(arguments) {
    if (item.seen_from) part_->putref_ParentRange(item.seen_from);
    part_->Create(item.object, item.type);
    part_->SetResultsValues();
    part_->AskToUnhide.add([this](Ref<Object>& hidden, const std::string&, Ref<Object>& sheet,
                                  bool& unhide, std::string& password) {
      const auto range = ref_cast<host::Range>(hidden);
      hidden_ = range ? what_hides(*range)
                      : "sheet " + ref_cast<host::Sheet>(sheet)->Name() + " is hidden";
      unhide = arguments_.unhide;
      password = password_for(arguments_, part_->WorkBookName());
    });
  }

  const Ref<ModelPart>& part() const noexcept { return part_; }
  const std::string& hidden() const noexcept { return hidden_; }

  /// Throws Complaint unless the item is in view then.
  void select() {
    const std::string address = readable_address(*part_, part_->WorkBookName());
    switch (part_->SelectItem()) {
      case qtoSelectOK:
        return;
      case qtoItemHidden:
        throw Complaint(refused, fmt::format("{}: {}. --unhide shows it; the file stays as it is",
                                             address, hidden_));
      case qtoCouldNotUnhide:
        throw Complaint(refused, fmt::format("{}: {}, and {}", address, hidden_, why_protected()));
      case qtoBookNotOpen:
      case qtoNotSelectableObject:
        break;
    }
    throw Complaint(refused, address + " is nothing that can be shown");
  }

 private:
  std::string why_protected() const {
    if (hidden_.starts_with("sheet "))
      return "the structure of " + part_->WorkBookName() + " is protected";
    const bool given = !password_for(arguments_, part_->WorkBookName()).empty();
    return given ? "the password is not that of the sheet's protection"
                 : "the sheet is protected. Give its password with --password TEXT";
  }

  const Arguments& arguments_;
  Ref<ModelPart> part_ = make_ref<ModelPart>();
  std::string hidden_;
};

}  // namespace

PictureSize picture_size() {
  PictureSize size;
  size.colour = is_terminal(Stream::output) && !std::getenv("NO_COLOR");
  const auto window = terminal_size();
  if (!window) return size;
  size.width = std::clamp<std::size_t>(window->columns, 40, 400);
  size.rows = std::clamp(static_cast<int>(window->rows) - 9, 10, 100);
  return size;
}

void show_item(const Arguments& arguments, const Item& item, const PictureSize& size,
               const Reports& reports) {
  Showing showing(arguments, item);
  showing.select();
  ModelPart& part = *showing.part();
  if (part.ObjectType() == "Series") {
    const SeriesView view = view_of(part);
    if (arguments.json) return write_series_view(part, view, reports);
    fmt::print("{}", drawn(part, view, size));
  } else {
    const Picture picture = take_picture(ref_cast<host::Range>(part.UnderlyingObject()));
    if (arguments.json) return write_picture(part, picture, reports);
    const PartText text = describe(part, part.WorkBookName(), arguments.full);
    fmt::print("{}{}{}\n", text.address, text.title.empty() ? "" : "  ", text.title);
    if (!text.formula.empty() || !text.value.empty())
      fmt::print("{}{}{}\n", text.formula, text.formula.empty() ? "" : " → ", text.value);
    fmt::print("\n{}", drawn(picture, size));
  }
  if (!showing.hidden().empty()) fmt::print("\nIn the book {}.\n", showing.hidden());
}

}  // namespace qto::cli
