#include "qto/parser/let_bindings.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "qto/parser/arguments.hpp"

namespace qto {
namespace {

bool is_let(const Token& token) noexcept {
  return token.type == TokenType::function && trim_white_space(token.text) == "LET";
}

/// A parenthesis or brace that is still open, and the commas directly inside it.
struct Open {
  bool let = false;
  std::size_t first = 0;  // the token behind it
  std::vector<std::size_t> commas;
};

/// What encloses a token, outermost first.
std::vector<Open> opened_before(Tokens formula, std::size_t end) {
  std::vector<Open> open;
  for (std::size_t i = 0; i < end; ++i) {
    const std::string_view text = formula[i].text;
    if (text == "(" || text == "{")
      open.push_back({i > 0 && is_let(formula[i - 1]), i + 1, {}});
    else if ((text == ")" || text == "}") && !open.empty())
      open.pop_back();
    else if (text == "," && !open.empty())
      open.back().commas.push_back(i);
  }
  return open;
}

}  // namespace

bool has_bindings(Tokens formula) noexcept { return std::ranges::any_of(formula, is_let); }

std::string with_bindings(Tokens formula, Tokens piece, std::string text) {
  const auto start = static_cast<std::size_t>(piece.data() - formula.data());
  std::string names;
  for (const Open& open : opened_before(formula, start)) {
    if (!open.let) continue;
    // Names and values alternate; those that are complete hold here.
    std::size_t from = open.first;
    for (std::size_t i = 0; i < open.commas.size() / 2 * 2; ++i) {
      names += args_array_to_string(formula.subspan(from, open.commas[i] - from)) + ",";
      from = open.commas[i] + 1;
    }
  }
  return names.empty() ? std::move(text) : "LET(" + names + text + ")";
}

}  // namespace qto
