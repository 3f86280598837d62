#include "qto/parser/formula_memory.hpp"

#include <utility>

namespace qto {

std::optional<Rect> RememberedFormula::reference_in(CellPos cell,
                                                    std::size_t index) const noexcept {
  const WrittenArea& written = references[index];
  WrittenArea area = written;
  const std::int32_t down = written.shape == AreaShape::columns ? 0 : cell.row - at.row;
  const std::int32_t right = written.shape == AreaShape::rows ? 0 : cell.column - at.column;
  for (WrittenCell* corner : {&area.first, &area.last}) {
    if (!corner->row_absolute) corner->pos.row += down;
    if (!corner->column_absolute) corner->pos.column += right;
    if (!corner->pos.on_grid()) return std::nullopt;
  }
  return area.rect();
}

std::optional<RememberedFormula> remembered(Tokens tokens, CellPos at, std::int32_t references) {
  RememberedFormula formula;
  formula.at = at;
  for (const Token& token : tokens) {
    switch (token.type) {
      case TokenType::path_name:
      case TokenType::workbook:
      case TokenType::worksheet:
      case TokenType::workbook_name:
      case TokenType::worksheet_name:
      case TokenType::possible_name:
      case TokenType::pipe:
      case TokenType::application:
      case TokenType::document:
      case TokenType::link:
      case TokenType::none:
      case TokenType::own_text:
        return std::nullopt;
      case TokenType::range: {
        const auto area = parse_area(trim_white_space(token.text));
        if (!area) return std::nullopt;
        formula.references.push_back(*area);
        break;
      }
      case TokenType::error_constant:
        formula.error_constant = true;
        break;
      default:
        break;
    }
  }
  if (std::cmp_not_equal(formula.references.size(), references)) return std::nullopt;
  return formula;
}

void FormulaMemory::hold_for(std::uint32_t signature) {
  if (std::exchange(signature_, signature) != signature) formulas_.clear();
}

const std::optional<RememberedFormula>* FormulaMemory::find(std::uint64_t sheet,
                                                            std::uint32_t pattern) const {
  const auto found = formulas_.find({sheet, pattern});
  return found == formulas_.end() ? nullptr : &found->second;
}

void FormulaMemory::keep(std::uint64_t sheet, std::uint32_t pattern,
                         std::optional<RememberedFormula> formula) {
  formulas_.insert_or_assign({sheet, pattern}, std::move(formula));
}

}  // namespace qto
