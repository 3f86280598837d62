#pragma once

#include <string_view>

#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/objects/application_object.hpp"

namespace qto::embedded {

/// The surroundings of an evaluation that starts from the outside, when all open books are up to
/// date and no calculation is under way.
class OutsideEnvironment final : public Environment {
 public:
  explicit OutsideEnvironment(ApplicationObject& application);

  bool ready(const Area&) override { return true; }
  Book* find_open_book(std::string_view name) const override;
  double now() const override { return now_; }
  double random() override;

 private:
  ApplicationObject& application_;
  double now_;
};

/// The result of a formula text, "=" first or not, as a formula in the cell would see it: a range
/// of an open book as such, other references as their values, arrays, values, error values. Of a
/// text that is no formula #NAME?.
Variant evaluate_text(OpenBook& book, Sheet& sheet, CellPos at, std::string_view text);

}  // namespace qto::embedded
