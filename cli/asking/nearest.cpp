#include "cli/asking/nearest.hpp"

#include <algorithm>
#include <numeric>

#include "qto/automation/text.hpp"

namespace qto::cli {
namespace {

constexpr std::size_t listed_names = 12;

/// Insertions, deletions, replacements and swaps of neighbours between two short texts.
std::size_t edit_distance(std::u16string_view a, std::u16string_view b) {
  std::vector<std::size_t> before(b.size() + 1), row(b.size() + 1), next(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    next[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      next[j] = std::min({row[j] + 1, next[j - 1] + 1, row[j - 1] + (a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        next[j] = std::min(next[j], before[j - 2] + 1);
    }
    before.swap(row);
    row.swap(next);
  }
  return row.back();
}

}  // namespace

std::string nearest(std::string_view given, const std::vector<std::string>& names) {
  constexpr std::size_t longest = 255;  // of a name; longer texts are not worth the comparison
  if (given.size() > longest) return "";
  const std::u16string wanted = text::to_utf16(text::fold_case(given));
  const std::string* best = nullptr;
  // A third of the letters may differ; more would suggest anything.
  std::size_t best_distance = wanted.size() / 3 + 1;
  for (const std::string& name : names) {
    if (name.size() > longest) continue;
    const std::u16string folded = text::to_utf16(text::fold_case(name));
    const std::size_t distance = edit_distance(wanted, folded);
    if (distance > best_distance || (best && distance == best_distance)) continue;
    best = &name;
    best_distance = distance;
  }
  return best ? *best : "";
}

std::string suggestion(std::string_view given, const std::vector<std::string>& names,
                       std::string_view what) {
  std::string text;
  if (const std::string near = nearest(given, names); !near.empty())
    text = ". Did you mean " + near + "?";
  if (names.empty() || names.size() > listed_names) return text;
  text += (text.empty() ? ". The " : " The ") + std::string(what) + ": ";
  for (std::size_t i = 0; i < names.size(); ++i) text += (i ? ", " : "") + names[i];
  return text;
}

}  // namespace qto::cli
