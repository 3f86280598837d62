#include "qto/hosts/embedded/functions/documentation.hpp"

#include "qto/hosts/embedded/functions/registry.hpp"

namespace qto::embedded::functions {

namespace {

/// A cell of a Markdown table: bars would end it.
std::string cell(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '|') result += '\\';
    result += c;
  }
  return result;
}

void append_row(std::string& out, const FunctionSpec& spec) {
  out += "| `" + std::string(spec.name) + "(" + std::string(spec.syntax) + ")` | " +
         cell(spec.summary) + " | `" + cell(spec.example) + "` | " + cell(spec.result) + " |\n";
}

}  // namespace

std::string documentation() {
  std::size_t count = 0;
  for (const Family& family : families()) count += family.rows.size();
  std::string out = "# Functions\n\nThe " + std::to_string(count) +
                    " functions that formulas are evaluated with. Anything else gives `#NAME?`. "
                    "This page is made from the tables in `qto/hosts/embedded/functions`; every "
                    "example is a test.\n";
  for (const Family& family : families()) {
    out += "\n## " + std::string(family.title) +
           "\n\n| function | gives | example | result |\n| --- | --- | --- | --- |\n";
    for (const FunctionSpec& spec : family.rows) append_row(out, spec);
  }
  return out;
}

}  // namespace qto::embedded::functions
