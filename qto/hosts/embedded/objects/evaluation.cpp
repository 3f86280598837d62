#include "qto/hosts/embedded/objects/evaluation.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"
#include "qto/hosts/embedded/objects/cells/cell_values.hpp"
#include "qto/hosts/embedded/objects/link_formula.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"
#include "qto/hosts/embedded/objects/references/rewrite_tokens.hpp"

namespace qto::embedded {
namespace {

OpenBook* open_book_of(const ApplicationObject& application, const Book& book) {
  for (const auto& open : application.books())
    if (&open->book() == &book) return open.get();
  return nullptr;
}

/// Blocks on one sheet of an open book are a range. Remembered cells of closed books have values
/// only; blocks on several sheets have neither.
Variant variant_of(const ApplicationObject& application, std::span<const Area> areas) {
  Sheet* sheet = areas.front().sheet;
  const bool one_sheet = std::all_of(areas.begin(), areas.end(),
                                     [&](const Area& area) { return area.sheet == sheet; });
  if (!one_sheet) return ErrorValue::value;
  OpenBook* open = open_book_of(application, sheet->book());
  if (!open) return values_of_block(sheet->book(), *sheet, areas.front().rect);
  std::vector<Rect> blocks;
  for (const Area& area : areas) blocks.push_back(area.rect);
  return Variant(make_ref<RangeObject>(open->worksheet(*sheet), blocks));
}

}  // namespace

TextEvaluator::TextEvaluator(ApplicationObject& application)
    : application_(application), evaluator_(*this, functions::registry()) {}

Book* TextEvaluator::find_open_book(std::string_view name) const {
  OpenBook* found = application_.find_book(name);
  return found ? &found->book() : nullptr;
}

double TextEvaluator::now() const {
  if (!moment_) moment_ = application_.now();
  return *moment_;
}

double TextEvaluator::random() { return std::uniform_real_distribution<double>(0, 1)(random_); }

Variant TextEvaluator::evaluate(OpenBook& book, Sheet& sheet, CellPos at, std::string_view text,
                                EvaluationMode mode) {
  const std::string_view body = text::trim(without_equals(text::trim(text)));
  if (body.empty()) return {};
  const auto formula = CompiledFormula::compile(number_known_links(body, book), at);
  application_.ensure_calculated();
  moment_.reset();
  const Operand result = evaluator_.evaluate(*formula, sheet, at, mode);
  if (result.is_reference()) return variant_of(application_, result.areas());
  return result.value() ? *result.value() : Variant{};
}

}  // namespace qto::embedded
