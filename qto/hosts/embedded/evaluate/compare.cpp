#include "qto/hosts/embedded/evaluate/compare.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/collation.hpp"

namespace qto::embedded {

namespace {

/// Sorting weights of the ASCII characters: the order of the root collation.
constexpr std::array<unsigned char, 128> ascii_weights() {
  constexpr std::string_view order =
      "\t\n\v\f\r _-,;:!?.'\"()[]{}@*/\\&#%`^+<=>|~$0123456789abcdefghijklmnopqrstuvwxyz";
  std::array<unsigned char, 128> weights{};
  for (std::size_t i = 0; i < order.size(); ++i) {
    const char c = order[i];
    const auto weight = static_cast<unsigned char>(i + 1);
    weights[static_cast<unsigned char>(c)] = weight;
    if (c >= 'a' && c <= 'z') weights[static_cast<unsigned char>(c - 'a' + 'A')] = weight;
  }
  return weights;
}
constexpr auto weights = ascii_weights();

int compare_ascii(std::string_view a, std::string_view b) noexcept {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const int difference = ascii_weight(a[i]) - ascii_weight(b[i]);
    if (difference != 0) return difference < 0 ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

int compare_unicode(std::string_view a, std::string_view b) {
  if (text::equal_fold(a, b)) return 0;
  if (const int order = collate(a, b); order != 0) return order;
  return text::fold_case(a) < text::fold_case(b) ? -1 : 1;
}

int rank(const ValueView& value) noexcept {
  switch (value.type()) {
    case CellType::text:
      return 1;
    case CellType::boolean:
      return 2;
    case CellType::error:
      return 3;
    default:
      return 0;
  }
}

/// The empty value as one of another type.
ValueView blank_as(CellType type) noexcept {
  if (type == CellType::text) return std::string_view();
  if (type == CellType::boolean) return false;
  return 0.0;
}

}  // namespace

unsigned char ascii_weight(char c) noexcept { return weights[static_cast<unsigned char>(c)]; }

int compare_texts(std::string_view a, std::string_view b) {
  return text::is_ascii(a) && text::is_ascii(b) ? compare_ascii(a, b) : compare_unicode(a, b);
}

int compare_values(const ValueView& left, const ValueView& right) {
  const ValueView a = left.is_empty() ? blank_as(right.type()) : left;
  const ValueView b = right.is_empty() ? blank_as(a.type()) : right;
  if (rank(a) != rank(b)) return rank(a) < rank(b) ? -1 : 1;
  if (a.is_text()) return compare_texts(a.text(), b.text());
  if (a.is_boolean()) return static_cast<int>(a.boolean()) - static_cast<int>(b.boolean());
  if (a.is_error()) return static_cast<int>(a.error()) - static_cast<int>(b.error());
  return a.number() < b.number() ? -1 : a.number() > b.number() ? 1 : 0;
}

bool equal_values(const ValueView& a, const ValueView& b) {
  if (a.is_text() && b.is_text()) {
    // Texts of different length are equal only where folding changes the number of bytes.
    if (a.text().size() != b.text().size() && text::is_ascii(a.text()) && text::is_ascii(b.text()))
      return false;
    return text::equal_fold(a.text(), b.text());
  }
  return compare_values(a, b) == 0;
}

bool nearly_equal(double a, double b) noexcept {
  if (a == b) return true;
  const double size = std::max(std::fabs(a), std::fabs(b));
  return std::fabs(a - b) < size * 0x1p-49;
}

}  // namespace qto::embedded
