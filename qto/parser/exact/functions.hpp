#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "qto/parser/exact/evaluation.hpp"

namespace qto::exact {

/// True for functions that run what stands in their arguments over all elements, also in a formula
/// that is no array formula.
bool runs_over_elements(std::string_view function) noexcept;
/// True for functions that read what no argument shows: of cubes, servers, the web.
bool reads_elsewhere(std::string_view function) noexcept;

/// Which functions the host knows; each is asked for once.
class KnownFunctions {
 public:
  bool knows(const std::string& function, const Evaluation& evaluation);
  void forget() noexcept { known_.clear(); }

 private:
  std::unordered_map<std::string, bool> known_;
};

}  // namespace qto::exact
