#include <cstring>

#include "qto/formula/formula_pieces.hpp"
#include "qto/formula/lexer.hpp"
#include "qto/formula/reference_text.hpp"

namespace qto::formula {
namespace {

/// One reference of a key, in front of it the length of the text since the one before.
struct KeyedArea {
  std::uint32_t literal_length;
  std::uint32_t form;  // shape and dollars
  std::int32_t axes[4];
};

std::uint32_t form_of(const AreaRef& area) noexcept {
  return static_cast<std::uint32_t>(area.shape) | (area.first_row.absolute ? 16u : 0u) |
         (area.first_column.absolute ? 32u : 0u) | (area.last_row.absolute ? 64u : 0u) |
         (area.last_column.absolute ? 128u : 0u);
}

}  // namespace

void append_formula_key(std::string& key, std::string_view text, CellPos base) {
  Lexer lexer(text);
  std::uint32_t literal_begin = 0;
  for (Token token = lexer.next_area(); token.kind == TokenKind::area; token = lexer.next_area()) {
    const AreaRef area = relative_area(lexer.area(), base);
    const KeyedArea keyed{token.begin - literal_begin,
                          form_of(area),
                          {area.first_row.value, area.first_column.value, area.last_row.value,
                           area.last_column.value}};
    char bytes[sizeof keyed];
    std::memcpy(bytes, &keyed, sizeof keyed);
    key.append(bytes, area.shape == AreaShape::cell ? sizeof keyed - 8 : sizeof keyed);
    key.append(text.substr(literal_begin, keyed.literal_length));
    literal_begin = token.end;
  }
  const auto rest = static_cast<std::uint32_t>(text.size()) - literal_begin;
  char bytes[sizeof rest];
  std::memcpy(bytes, &rest, sizeof rest);
  key.append(bytes, sizeof rest);
  key.append(text.substr(literal_begin));
}

}  // namespace qto::formula
