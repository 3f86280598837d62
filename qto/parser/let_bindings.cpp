#include "qto/parser/let_bindings.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "qto/automation/text.hpp"
#include "qto/parser/arguments.hpp"

namespace qto {
namespace {

bool is_let(const Token& token) noexcept {
  return token.type == TokenType::function && trim_white_space(token.text) == "LET";
}

bool is_lambda(const Token& token) noexcept {
  return token.type == TokenType::function && trim_white_space(token.text) == "LAMBDA";
}

/// A parenthesis or brace that is still open, and the commas directly inside it.
struct Open {
  bool let = false;
  bool lambda = false;
  std::size_t first = 0;  // the token behind it
  std::vector<std::size_t> commas;
};

/// What encloses a token, outermost first.
std::vector<Open> opened_before(Tokens formula, std::size_t end) {
  std::vector<Open> open;
  for (std::size_t i = 0; i < end; ++i) {
    const std::string_view text = formula[i].text;
    if (text == "(" || text == "{")
      open.push_back(
          {i > 0 && is_let(formula[i - 1]), i > 0 && is_lambda(formula[i - 1]), i + 1, {}});
    else if ((text == ")" || text == "}") && !open.empty())
      open.pop_back();
    else if (text == "," && !open.empty())
      open.back().commas.push_back(i);
  }
  return open;
}

/// True when the token stands where LET and LAMBDA have their names: alone, with more to come.
bool gives_a_name(Tokens formula, std::size_t at) {
  if (at == 0 || at + 1 >= formula.size() || formula[at + 1].text != ",") return false;
  const std::vector<Open> open = opened_before(formula, at);
  if (open.empty()) return false;
  const Open& call = open.back();
  const std::size_t first = call.commas.empty() ? call.first : call.commas.back() + 1;
  return at == first && (call.lambda || (call.let && call.commas.size() % 2 == 0));
}

}  // namespace

bool has_bindings(Tokens formula) noexcept {
  return std::ranges::any_of(formula,
                             [](const Token& token) { return is_let(token) || is_lambda(token); });
}

bool binds(Tokens formula, std::string_view name) {
  if (!has_bindings(formula)) return false;
  for (std::size_t i = 0; i < formula.size(); ++i)
    if (text::equal_fold(trim_white_space(formula[i].text), name) && gives_a_name(formula, i))
      return true;
  return false;
}

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
