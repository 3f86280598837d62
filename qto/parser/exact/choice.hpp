#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/options/drill_options.hpp"
#include "qto/parser/exact/evaluation.hpp"

namespace qto::exact {

/// Which option rules a function.
enum class Family : std::uint8_t { branch, lookup, match, index, sum, indirect, offset };

/// What the options ask for one family.
enum class Follow : std::uint8_t {
  all,        ///< every reference written
  used,       ///< what the present result uses
  condition,  ///< that, and the arguments that decide
};
Follow asked(const DrillOptions::Settings& options, Family family) noexcept;

/// One call that is to be decided.
struct Call {
  ReadFormula& formula;
  const Evaluation& evaluation;
  const Scope* scope;
  std::vector<formula::NodeIndex> arguments;
  bool over_elements;  ///< operations around it run over all elements

  std::size_t count() const noexcept { return arguments.size(); }
  bool given(std::size_t i) const noexcept {
    return i < count() && formula.at(arguments[i]).kind != formula::NodeKind::missing;
  }
  /// An argument's text; "" for one that is left out.
  std::string text(std::size_t i) const;
};

/// Something that a call delivers: an argument with all its references, or cells.
struct Part {
  formula::NodeIndex node = formula::no_node;
  const Scope* scope = nullptr;
  Areas areas;
};

/// What a call turned out to use; `why` is not empty when that cannot be told, and all of the call
/// is followed then.
struct Outcome {
  std::vector<Part> parts;
  std::string why;
  /// Arguments from this one on were not looked at.
  std::size_t considered = SIZE_MAX;

  static Outcome whole(std::string reason) { return {{}, std::move(reason)}; }
};

/// A function that chooses among its arguments.
struct Choice {
  std::string_view function;
  Family family;
  /// What each argument is: 'c' decides, 'k' is searched by what decides, 'd' delivers. What stands
  /// in parentheses repeats.
  std::string_view arguments;
  /// What one call delivers.
  Outcome (*decide)(const Call& call);

  /// 'c', 'k' or 'd' for an argument counted from 0 of a call with so many.
  char role(std::size_t argument, std::size_t count) const noexcept;
};

/// The row of a function, or null: it uses all its arguments.
const Choice* find_choice(std::string_view function) noexcept;

}  // namespace qto::exact
