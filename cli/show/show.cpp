#include "cli/show/show.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

#include "cli/asking/complaint.hpp"
#include "cli/output/part_text.hpp"
#include "cli/show/show_json.hpp"
#include "cli/show/show_series.hpp"
#include "cli/terminal/terminal.hpp"
#include "qto/host/host.hpp"

namespace qto::cli {
namespace {

/// What hides an item, in words: "row 7 and column C", "sheet Costs".
std::string what_hides(const host::Range& range) {
  if (range.Worksheet()->Visible() != host::xlSheetVisible)
    return "sheet " + range.Worksheet()->Name() + " is hidden";
  const auto lines = [](const char* what, std::string first, const std::string& last) {
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
