#pragma once

#include <optional>
#include <random>
#include <string_view>

#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/objects/application_object.hpp"

namespace qto::embedded {

/// Evaluates formula texts from the outside, when all open books are up to date and no calculation
/// is under way.
class TextEvaluator final : private Environment {
 public:
  explicit TextEvaluator(ApplicationObject& application);

  /// The result of a formula text, "=" first or not, as a formula in the cell would see it: a range
  /// of an open book as such, other references as their values, arrays, values, error values. Of a
  /// text that is no formula #NAME?, of an empty one Empty.
  Variant evaluate(OpenBook& book, Sheet& sheet, CellPos at, std::string_view text,
                   EvaluationMode mode = EvaluationMode::reference);

 private:
  bool ready(const Area&) override { return true; }
  Book* find_open_book(std::string_view name) const override;
  double now() const override;
  double random() override;

  ApplicationObject& application_;
  Evaluator evaluator_;
  mutable std::optional<double> moment_;  // of the evaluation under way, once it was asked for
  std::mt19937_64 random_{std::random_device{}()};
};

}  // namespace qto::embedded
