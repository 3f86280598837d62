#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "qto/host/worksheet.hpp"
#include "qto/options/drill_options.hpp"
#include "qto/parser/exact/functions.hpp"
#include "qto/parser/exact/read_formula.hpp"

namespace qto::exact {

/// Reads formulas as structure. What it learns of a formula serves all copies of it until forget().
class Reader {
 public:
  /// A formula that is read: how it is, and whether it calls functions that the options ask to be
  /// followed where they choose.
  struct Answer {
    std::string why_broken;  ///< not empty when the text is no formula; nothing was followed then
    bool chooses = false;
  };

  /// Hands every precedent of the formula to the surroundings. `text` begins with "=".
  Answer follow_all(std::string_view text, const host::FormulaPattern& pattern, const Site& site,
                    const DrillOptions::Settings& options, Surroundings& surroundings);
  /// Only those that the options ask for.
  void follow_chosen(std::string_view text, const host::FormulaPattern& pattern, const Site& site,
                     const DrillOptions::Settings& options, Surroundings& surroundings);
  void forget() noexcept {
    formulas_.clear();
    functions_.forget();
  }

 private:
  using Shared = std::shared_ptr<ReadFormula>;
  Shared find(std::string_view text, const host::FormulaPattern& pattern, const Site& site);

  struct Key {
    std::uint64_t sheet;
    std::uint32_t pattern;
    bool operator==(const Key&) const = default;
  };
  struct Hash {
    std::size_t operator()(const Key& key) const noexcept {
      return (key.sheet * 0x9e3779b97f4a7c15u + key.pattern) * 0x9e3779b97f4a7c15u;
    }
  };
  std::unordered_map<Key, Shared, Hash> formulas_;
  KnownFunctions functions_;
};

}  // namespace qto::exact
