#include "qto/hosts/embedded/formulas/formula_intern.hpp"

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {

FormulaId FormulaIntern::intern(std::string_view text, CellPos at) {
  key_.clear();
  CompiledFormula::append_key(key_, text, at);
  if (last_ != 0 && book_.formula(last_).compiled->has_key(key_)) return last_;
  const std::uint64_t hash = CompiledFormula::hash_key(key_);
  const auto [begin, end] = by_hash_.equal_range(hash);
  for (auto it = begin; it != end; ++it)
    if (book_.formula(it->second).compiled->has_key(key_)) return last_ = it->second;
  last_ =
      book_.add_formula({FormulaKind::normal, Rect::cell(at), CompiledFormula::compile(text, at)});
  by_hash_.emplace(hash, last_);
  return last_;
}

FormulaId FormulaIntern::add_array(std::string_view text, const Rect& block) {
  return add_block(FormulaKind::array, text, block);
}

FormulaId FormulaIntern::add_data_table(std::string_view text, const Rect& block) {
  return add_block(FormulaKind::data_table, text, block);
}

FormulaId FormulaIntern::add_block(FormulaKind kind, std::string_view text, const Rect& block) {
  return book_.add_formula({kind, block, CompiledFormula::compile(text, block.first)});
}

}  // namespace qto::embedded
