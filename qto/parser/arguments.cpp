#include "qto/parser/arguments.hpp"

#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto {

Tokens take_argument(Tokens tokens, std::size_t& position, bool& is_last) {
  Procedure proc("Parser", "is_last_arg");
  const std::size_t start = position;
  for (int depth = 0; position <= tokens.size(); ++position) {
    const std::string_view text = tokens[position - 1].text;
    if (text == "(") ++depth;
    if (text == ")" && --depth < 0) break;
    if (text == "," && depth == 0) break;
  }
  proc.need([&] {
    if (position > tokens.size())
      throw NumberedFailure(9, "a function call without its closing parenthesis");
  });
  is_last = tokens[position - 1].text == ")";
  return tokens.subspan(start - 1, position - start);
}

std::vector<Tokens> get_args(Tokens tokens, std::size_t& position) {
  Procedure proc("Parser", "get_args");
  std::vector<Tokens> arguments;
  bool is_last = false;
  for (;;) {
    arguments.push_back(take_argument(tokens, position, is_last));
    if (is_last) return arguments;
    proc.need([&] {
      if (arguments.size() == most_arguments)
        throw NumberedFailure(static_cast<std::int32_t>(ErrorNumber::out_of_range),
                              "more than five arguments in a special function");
    });
    ++position;
  }
}

namespace {

/// White space in front of a sheet's name is part of its token, but not of the name.
void append_opened(std::string_view sheet, std::string& out) {
  const std::string_view name = trim_white_space(sheet);
  const std::size_t before = static_cast<std::size_t>(name.data() - sheet.data());
  out.append(sheet.substr(0, before)).append("'").append(sheet.substr(before));
}

}  // namespace

std::string args_array_to_string(Tokens argument) {
  Procedure proc("Parser", "args_array_to_string");
  std::string out;
  std::string_view path;
  bool quoted = false;
  for (const Token& token : argument) {
    switch (token.type) {
      case TokenType::path_name:
        path = token.text;
        break;
      case TokenType::workbook: {
        const bool bracketed = out.ends_with('[');
        if (bracketed) out.pop_back();
        // 'D:\Data\Book2.xls'!Rate has no bracket: the separator stands before the book.
        const char mark = out.empty() ? '\\' : out.back();
        if (!path.empty() && !bracketed && !out.empty()) out.pop_back();
        out.append("'").append(path);
        if (bracketed)
          out.push_back('[');
        else if (!path.empty())
          out.push_back(mark);
        out.append(token.text);
        path = {};
        quoted = true;
        break;
      }
      case TokenType::worksheet:
        if (quoted)
          out.append(token.text);
        else
          append_opened(token.text, out);
        quoted = true;
        break;
      default:
        if (quoted && token.text != "]") {
          out.push_back('\'');
          quoted = false;
        }
        out.append(token.text);
    }
  }
  return out;
}

}  // namespace qto
