#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/automation/enumerations.hpp"
#include "qto/parser/token.hpp"

namespace qto {

/// What the walk of a formula found, such that it can be told of every cell whose formula reads the
/// same relative to it: most formulas of a model are copies. Only formulas without names, other
/// sheets and functions to drill intelligently are remembered.
struct RememberedFormula {
  CellPos at;                           // the cell whose formula was walked
  std::vector<WrittenArea> references;  // in the formula's order
  qtoContainsConstant constants = qtoNoConstantInFormula;
  bool error_constant = false;

  /// What a reference denotes in another cell; nothing when it falls off the grid there.
  std::optional<Rect> reference_in(CellPos cell, std::size_t index) const noexcept;
};

/// The references of a formula in tokens, or nothing when it cannot be remembered. A host that says
/// how many references move with the cell must have meant all that stand in the tokens.
std::optional<RememberedFormula> remembered(Tokens tokens, CellPos at, std::int32_t references);

/// The formulas that a drill has met, by the stamp of their sheet and the host's number of their
/// pattern.
class FormulaMemory {
 public:
  /// Forgets all unless this is the signature of the drill options that all of it was learnt under.
  void hold_for(std::uint32_t signature);
  void forget() noexcept { formulas_.clear(); }
  /// Null when the pattern was never met; an entry without content when it cannot be remembered.
  const std::optional<RememberedFormula>* find(std::uint64_t sheet, std::uint32_t pattern) const;
  void keep(std::uint64_t sheet, std::uint32_t pattern, std::optional<RememberedFormula> formula);

 private:
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
  std::unordered_map<Key, std::optional<RememberedFormula>, Hash> formulas_;
  std::uint32_t signature_ = 0;
};

}  // namespace qto
