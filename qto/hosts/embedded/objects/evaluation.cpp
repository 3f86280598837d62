#include "qto/hosts/embedded/objects/evaluation.hpp"

#include <algorithm>
#include <random>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"
#include "qto/hosts/embedded/objects/block_values.hpp"
#include "qto/hosts/embedded/objects/link_formula.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"
#include "qto/hosts/embedded/objects/rewrite_tokens.hpp"

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

OutsideEnvironment::OutsideEnvironment(ApplicationObject& application)
    : application_(application), now_(application.now()) {}

Book* OutsideEnvironment::find_open_book(std::string_view name) const {
  OpenBook* found = application_.find_book(name);
  return found ? &found->book() : nullptr;
}

double OutsideEnvironment::random() {
  static std::mt19937_64 generator{std::random_device{}()};
  return std::uniform_real_distribution<double>(0, 1)(generator);
}

Variant evaluate_text(OpenBook& book, Sheet& sheet, CellPos at, std::string_view text) {
  const std::string_view body = text::trim(without_equals(text::trim(text)));
  if (body.empty()) return {};
  const auto formula = CompiledFormula::compile(number_known_links(body, book), at);
  book.application().ensure_calculated();
  OutsideEnvironment environment(book.application());
  Evaluator evaluator(environment, functions::registry());
  const Operand result = evaluator.evaluate(*formula, sheet, at, EvaluationMode::reference);
  if (result.is_reference()) return variant_of(book.application(), result.areas());
  return result.value() ? *result.value() : Variant{};
}

}  // namespace qto::embedded
