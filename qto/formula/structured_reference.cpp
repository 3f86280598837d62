#include "qto/formula/structured_reference.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::formula {
namespace {

bool is_blank(char c) noexcept { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string unescape(std::string_view column) {
  std::string out;
  for (std::size_t i = 0; i < column.size(); ++i) {
    if (column[i] == '\'' && i + 1 < column.size()) ++i;
    out.push_back(column[i]);
  }
  return out;
}

std::uint8_t item_of(std::string_view text) {
  static constexpr struct {
    std::string_view text;
    std::uint8_t item;
  } items[] = {{"#All", StructuredRef::all},
               {"#Data", StructuredRef::data},
               {"#Headers", StructuredRef::headers},
               {"#Totals", StructuredRef::totals},
               {"#This Row", StructuredRef::this_row}};
  for (const auto& entry : items)
    if (text::equal_ascii_nocase(entry.text, text)) return entry.item;
  return 0;
}

/// Reads what stands between the outer brackets.
class InnerReader {
 public:
  InnerReader(std::string_view inner, StructuredRef& ref) : rest_(inner), ref_(ref) {}

  bool read() {
    if (rest_.empty()) return true;
    if (rest_.front() == '#') return add_item(rest_);
    if (rest_.front() == '@') {
      rest_.remove_prefix(1);
      ref_.items = StructuredRef::this_row;
      if (rest_.empty()) return true;
    }
    skip_blanks();
    if (!rest_.empty() && rest_.front() == '[') return read_groups();
    ref_.first_column = unescape(rest_);
    return !rest_.empty();
  }

 private:
  void skip_blanks() {
    while (!rest_.empty() && is_blank(rest_.front())) rest_.remove_prefix(1);
  }

  bool add_item(std::string_view text) {
    const std::uint8_t item = item_of(text);
    ref_.items |= item;
    return item != 0;
  }

  /// Groups in brackets: items and at most one column or span of columns.
  bool read_groups() {
    for (bool span = false;;) {
      const std::optional<std::string_view> group = take_group();
      if (!group || !add_group(*group, span)) return false;
      skip_blanks();
      if (rest_.empty()) return true;
      span = rest_.front() == ':';
      if (!span && rest_.front() != ',') return false;
      rest_.remove_prefix(1);
      skip_blanks();
    }
  }

  bool add_group(std::string_view group, bool span) {
    if (group.starts_with('#')) return !span && add_item(group);
    std::string& column = span ? ref_.last_column : ref_.first_column;
    if (!column.empty() || group.empty() || (span && ref_.first_column.empty())) return false;
    column = unescape(group);
    return true;
  }

  std::optional<std::string_view> take_group() {
    if (rest_.empty() || rest_.front() != '[') return std::nullopt;
    for (std::size_t i = 1; i < rest_.size(); ++i) {
      if (rest_[i] == '\'') {
        ++i;
      } else if (rest_[i] == ']') {
        const std::string_view group = rest_.substr(1, i - 1);
        rest_.remove_prefix(i + 1);
        return group;
      }
    }
    return std::nullopt;
  }

  std::string_view rest_;
  StructuredRef& ref_;
};

}  // namespace

std::optional<StructuredRef> parse_structured(std::string_view token) {
  const std::size_t open = token.find('[');
  if (open == std::string_view::npos || !token.ends_with(']')) return std::nullopt;
  StructuredRef ref;
  ref.table = token.substr(0, open);
  const std::string_view inner = token.substr(open + 1, token.size() - open - 2);
  // Brackets without a table name must say something.
  if (inner.empty() && ref.table.empty()) return std::nullopt;
  if (!InnerReader(inner, ref).read()) return std::nullopt;
  return ref;
}

}  // namespace qto::formula
