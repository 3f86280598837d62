#pragma once

#include <optional>
#include <string>
#include <vector>

#include "qto/host/range.hpp"
#include "qto/parser/exact/read_formula.hpp"
#include "qto/parser/exact/scope.hpp"

namespace qto::exact {

/// Cells that a part of a formula denotes: on a sheet, or of a workbook that is not open.
struct Area {
  Ref<SheetRecord> sheet;
  const ClosedPlace* closed = nullptr;
  Rect rect;
  bool same_sheet(const Area& other) const noexcept {
    if (!sheet || !other.sheet) return sheet == other.sheet && closed == other.closed;
    return sheet == other.sheet || sheet->sheet == other.sheet->sheet;
  }
};
using Areas = std::vector<Area>;

/// Has the host evaluate parts of a formula as its own cell sees them. What the host cannot
/// evaluate is nothing; nothing is thrown but what the client is to get.
class Evaluation {
 public:
  Evaluation(ReadFormula& formula, const Site& site, Surroundings& surroundings)
      : formula_(formula), site_(site), surroundings_(surroundings) {}

  /// The part as a text that stands by itself: with the names that LET and LAMBDA give to it.
  /// Nothing when it rests on a parameter whose value nobody knows.
  std::optional<std::string> text_of(formula::NodeIndex index, const Scope* scope) const;

  /// The value where one is wanted: of several cells the one that meets the formula's own. An array
  /// keeps its elements, for a function runs over them.
  std::optional<Variant> value(const std::string& text) const;
  /// The value with all its elements.
  std::optional<Variant> elements(const std::string& text) const;
  /// The cells that a text denotes; none when it denotes none.
  std::optional<Areas> areas(const std::string& text) const;

  /// The cells that a part of the formula denotes: by its structure where that tells it, else the
  /// host is asked. None when it denotes none.
  std::optional<Areas> areas(formula::NodeIndex index, const Scope* scope) const;

 private:
  const host::Worksheet* sheet() const;
  void names_needed(formula::NodeIndex index, const Scope* scope,
                    std::vector<const Scope*>& needed) const;
  std::optional<Areas> written_area(const formula::Node& node) const;
  std::optional<Areas> single_areas(formula::NodeIndex index, const Scope* scope) const;

  ReadFormula& formula_;
  const Site& site_;
  Surroundings& surroundings_;
};

}  // namespace qto::exact
