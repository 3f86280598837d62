#pragma once

#include <set>
#include <string>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/evaluate/value_view.hpp"

/// What the programs that compare with remembered results share.
namespace qto::embedded::conformance {

/// Surroundings in which every cell holds its value already, and neither clock nor chance move.
class StillWorld : public Environment {
 public:
  explicit StillWorld(double now = 45352.5) : now_(now) {}
  bool ready(const Area&) override { return true; }
  Book* find_open_book(std::string_view) const override { return nullptr; }
  double now() const override { return now_; }
  double random() override { return 0.25; }

 private:
  double now_;
};

/// Numbers agree to a relative 1e-9 or an absolute 1e-12, all else exactly.
bool same_value(const ValueView& got, const ValueView& want);
/// A value for the eye, numbers with all their digits.
std::string shown(const ValueView& value);
/// The names of the functions that a formula calls; "(operators)" when there are none.
std::set<std::string> functions_of(const formula::SyntaxTree& tree);
/// True for a formula whose result changes with time or chance.
bool depends_on_time_or_chance(const std::set<std::string>& functions);

}  // namespace qto::embedded::conformance
