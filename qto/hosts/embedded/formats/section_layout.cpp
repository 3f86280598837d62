#include <algorithm>
#include <initializer_list>

#include "qto/hosts/embedded/formats/format_parser.hpp"

namespace qto::embedded::formats {
namespace {

using Tokens = std::vector<Token>;

bool is_date_token(TokenKind kind) {
  return kind >= TokenKind::year && kind <= TokenKind::elapsed_seconds && kind != TokenKind::era;
}

bool is_clock_token(TokenKind kind) {
  return kind >= TokenKind::hour && kind <= TokenKind::elapsed_seconds;
}

bool contains(const Tokens& tokens, TokenKind kind) {
  return std::any_of(tokens.begin(), tokens.end(),
                     [kind](const Token& token) { return token.kind == kind; });
}

void make_literal(Token& token) {
  const bool run = token.kind == TokenKind::era;
  token.text.assign(run ? static_cast<std::size_t>(token.count) : 1, token.symbol);
  token.kind = TokenKind::literal;
}

// Punctuation without a meaning in this kind of section stands for itself.
void make_literals(Tokens& tokens, std::initializer_list<TokenKind> kinds) {
  for (Token& token : tokens) {
    if (std::find(kinds.begin(), kinds.end(), token.kind) != kinds.end()) make_literal(token);
  }
}

// ---- dates ----

void settle_minutes(Tokens& tokens) {
  TokenKind previous = TokenKind::literal;
  for (Token& token : tokens) {
    if (!is_date_token(token.kind) || token.kind == TokenKind::am_pm) continue;
    const bool after_hour = previous == TokenKind::hour || previous == TokenKind::elapsed_hours;
    if (token.kind == TokenKind::month && token.count <= 2 && after_hour) {
      token.kind = TokenKind::minute;
    }
    previous = token.kind;
  }
  TokenKind next = TokenKind::literal;
  for (auto token = tokens.rbegin(); token != tokens.rend(); ++token) {
    if (!is_date_token(token->kind) || token->kind == TokenKind::am_pm) continue;
    const bool before_second = next == TokenKind::second || next == TokenKind::elapsed_seconds;
    if (token->kind == TokenKind::month && token->count <= 2 && before_second) {
      token->kind = TokenKind::minute;
    }
    next = token->kind;
  }
}

// ".000" is a fraction of the second; digits anywhere else have no place in a date.
bool settle_second_fraction(Section& section) {
  Tokens settled;
  const Tokens& tokens = section.tokens;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == TokenKind::digit) return false;
    settled.push_back(tokens[i]);
    if (tokens[i].kind != TokenKind::point) continue;
    int digits = 0;
    while (i + 1 < tokens.size() && tokens[i + 1].kind == TokenKind::digit) {
      if (tokens[++i].symbol != '0') return false;
      ++digits;
    }
    if (digits == 0) continue;
    settled.back().kind = TokenKind::second_fraction;
    settled.back().count = digits;
    section.second_decimals = std::max(section.second_decimals, digits);
  }
  section.tokens = std::move(settled);
  return true;
}

bool lay_out_date(Section& section) {
  section.kind = SectionKind::date;
  Tokens& tokens = section.tokens;
  if (contains(tokens, TokenKind::text) || contains(tokens, TokenKind::general) ||
      contains(tokens, TokenKind::exponent) || contains(tokens, TokenKind::fixed_denominator)) {
    return false;
  }
  if (!settle_second_fraction(section)) return false;
  std::erase_if(tokens, [](const Token& token) { return token.kind == TokenKind::era; });
  make_literals(tokens, {TokenKind::point, TokenKind::comma, TokenKind::slash, TokenKind::percent});
  settle_minutes(tokens);
  section.twelve_hours = contains(tokens, TokenKind::am_pm);
  section.has_time = std::any_of(tokens.begin(), tokens.end(),
                                 [](const Token& token) { return is_clock_token(token.kind); });
  return true;
}

// ---- numbers ----

void settle_percents(Section& section) {
  for (Token& token : section.tokens) {
    if (token.kind != TokenKind::percent) continue;
    section.power += 2;
    make_literal(token);
  }
}

// A comma between digits of the integer part groups them, one behind the last digit divides by a
// thousand, any other shows itself.
void settle_commas(Section& section) {
  Tokens& tokens = section.tokens;
  std::size_t last_integer_digit = tokens.size();
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == TokenKind::integer_digit) last_integer_digit = i;
  }
  bool seen_integer_digit = false;
  bool after_digit = false;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    Token& token = tokens[i];
    seen_integer_digit |= token.kind == TokenKind::integer_digit;
    if (token.kind != TokenKind::comma) {
      after_digit = token.kind == TokenKind::integer_digit ||
                    token.kind == TokenKind::decimal_digit || token.kind == TokenKind::point;
    } else if (seen_integer_digit && i < last_integer_digit) {
      section.grouping = true;
    } else if (after_digit) {
      section.power -= 3;
    } else {
      make_literal(token);
    }
  }
  std::erase_if(tokens, [](const Token& token) { return token.kind == TokenKind::comma; });
}

bool lay_out_plain(Section& section) {
  TokenKind role = TokenKind::integer_digit;
  int* count = &section.integer_digits;
  for (Token& token : section.tokens) {
    if (token.kind == TokenKind::digit) {
      token.kind = role;
      ++*count;
    } else if (token.kind == TokenKind::point) {
      if (role == TokenKind::integer_digit) {
        role = TokenKind::decimal_digit;
        count = &section.decimal_digits;
      } else {
        make_literal(token);
      }
    } else if (token.kind == TokenKind::exponent) {
      const bool has_mantissa = section.integer_digits + section.decimal_digits > 0;
      if (role == TokenKind::exponent_digit || !has_mantissa) return false;
      role = TokenKind::exponent_digit;
      count = &section.exponent_digits;
    }
  }
  return role != TokenKind::exponent_digit || section.exponent_digits > 0;
}

bool is_fraction_slash(const Tokens& tokens, std::size_t i) {
  return tokens[i].kind == TokenKind::slash && i > 0 && i + 1 < tokens.size() &&
         tokens[i - 1].kind == TokenKind::digit &&
         (tokens[i + 1].kind == TokenKind::digit ||
          tokens[i + 1].kind == TokenKind::fixed_denominator);
}

bool lay_out_fraction(Section& section, std::size_t slash) {
  section.kind = SectionKind::fraction;
  Tokens& tokens = section.tokens;
  if (contains(tokens, TokenKind::point) || contains(tokens, TokenKind::exponent)) return false;
  for (std::size_t i = slash; i > 0 && tokens[i - 1].kind == TokenKind::digit; --i) {
    tokens[i - 1].kind = TokenKind::numerator_digit;
    ++section.numerator_digits;
  }
  for (std::size_t i = slash + 1; i < tokens.size() && tokens[i].kind == TokenKind::digit; ++i) {
    tokens[i].kind = TokenKind::denominator_digit;
    ++section.denominator_digits;
  }
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == TokenKind::slash && i != slash) make_literal(tokens[i]);
    if (tokens[i].kind != TokenKind::digit) continue;
    if (i > slash) return false;
    tokens[i].kind = TokenKind::integer_digit;
    ++section.integer_digits;
  }
  return true;
}

bool lay_out_number(Section& section) {
  Tokens& tokens = section.tokens;
  make_literals(tokens, {TokenKind::era});
  std::size_t slash = 0;
  while (slash < tokens.size() && !is_fraction_slash(tokens, slash)) ++slash;
  const bool fraction = slash < tokens.size();
  if (!(fraction ? lay_out_fraction(section, slash) : lay_out_plain(section))) return false;
  if (!fraction) make_literals(tokens, {TokenKind::slash});
  settle_percents(section);
  settle_commas(section);
  return true;
}

// "General" and "@" stand among literals only.
bool lay_out_slot(Section& section, SectionKind kind) {
  section.kind = kind;
  Tokens& tokens = section.tokens;
  make_literals(tokens, {TokenKind::comma, TokenKind::slash, TokenKind::point, TokenKind::percent,
                         TokenKind::era});
  const TokenKind slot = kind == SectionKind::general ? TokenKind::general : TokenKind::text;
  return std::all_of(tokens.begin(), tokens.end(), [slot](const Token& token) {
    return token.kind == slot || token.kind == TokenKind::literal;
  });
}

}  // namespace

bool lay_out(Section& section) {
  const Tokens& tokens = section.tokens;
  const bool date = std::any_of(tokens.begin(), tokens.end(),
                                [](const Token& token) { return is_date_token(token.kind); });
  if (date) return lay_out_date(section);
  if (contains(tokens, TokenKind::general)) return lay_out_slot(section, SectionKind::general);
  if (contains(tokens, TokenKind::text)) return lay_out_slot(section, SectionKind::text);
  return lay_out_number(section);
}

}  // namespace qto::embedded::formats
