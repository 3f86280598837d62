#include <cstdlib>
#include <string>

#include "qto/formula/formula_pieces.hpp"
#include "qto/formula/parser.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/formulas/formula_text.hpp"

/// Any text as a formula: it is parsed and cut, and its key and pieces are those of the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace qto;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const CellPos base : {CellPos{1, 1}, CellPos{max_rows, max_columns}}) {
    formula::parse_formula(text, base);
    formula::cut_formula(text, base);
    std::string key;
    std::string again;
    formula::append_formula_key(key, text, base);
    formula::append_formula_key(again, text, base);
    if (key != again) std::abort();
    embedded::CompiledFormula::compile(std::string(text), base);
  }
  return 0;
}
