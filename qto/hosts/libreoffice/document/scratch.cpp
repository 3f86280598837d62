#include "qto/hosts/libreoffice/document/scratch.hpp"

#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/ComplexReference.hpp>
#include <com/sun/star/sheet/FormulaLanguage.hpp>
#include <com/sun/star/sheet/FormulaMapGroup.hpp>
#include <com/sun/star/sheet/FormulaMapGroupSpecialOffset.hpp>
#include <com/sun/star/sheet/FormulaResult.hpp>
#include <com/sun/star/sheet/SingleReference.hpp>
#include <com/sun/star/sheet/XFormulaOpCodeMapper.hpp>
#include <com/sun/star/sheet/XFormulaTokens.hpp>
#include <com/sun/star/text/XTextRange.hpp>

#include "qto/hosts/libreoffice/document/cell_error.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

using Tokens = uno::Sequence<sheet::FormulaToken>;

struct OpCodes {
  std::int32_t spaces = -1;
  std::int32_t intersection = -1;
};

/// The parser takes a space between references for a space: the operator's code is put in its
/// place.
const OpCodes& op_codes(const Document& document) {
  static const OpCodes codes = [&] {
    const uno::Reference<com::sun::star::lang::XMultiServiceFactory> factory(document.model(),
                                                                             uno::UNO_QUERY_THROW);
    const uno::Reference<sheet::XFormulaOpCodeMapper> mapper(
        factory->createInstance("com.sun.star.sheet.FormulaOpCodeMapper"), uno::UNO_QUERY_THROW);
    OpCodes found;
    const auto special =
        mapper->getAvailableMappings(sheet::FormulaLanguage::API, sheet::FormulaMapGroup::SPECIAL);
    if (special.getLength() > sheet::FormulaMapGroupSpecialOffset::SPACES)
      found.spaces = special[sheet::FormulaMapGroupSpecialOffset::SPACES].Token.OpCode;
    for (const auto& entry : mapper->getAvailableMappings(sheet::FormulaLanguage::API,
                                                          sheet::FormulaMapGroup::BINARY_OPERATORS))
      if (entry.Name == "!") found.intersection = entry.Token.OpCode;
    return found;
  }();
  return codes;
}

bool is_reference(const sheet::FormulaToken& token) {
  return token.Data.has<sheet::SingleReference>() || token.Data.has<sheet::ComplexReference>();
}

void restore_intersections(Tokens& tokens, const OpCodes& codes) {
  if (codes.spaces < 0 || codes.intersection < 0) return;
  auto* list = tokens.getArray();
  for (std::int32_t i = 1; i + 1 < tokens.getLength(); ++i)
    if (list[i].OpCode == codes.spaces && is_reference(list[i - 1]) && is_reference(list[i + 1]))
      list[i] = sheet::FormulaToken(codes.intersection, uno::Any());
}

}  // namespace

Scratch::Scratch(Document& document, const SheetSlot& sheet, CellPos pos)
    : document_(document),
      address_(sheet.position, pos.column - 1, pos.row - 1),
      cell_(sheet.sheet->getCellByPosition(pos.column - 1, pos.row - 1)) {
  document_.evaluating = true;
}

Scratch::~Scratch() {
  try {
    uno::Reference<sheet::XFormulaTokens>(cell_, uno::UNO_QUERY_THROW)->setTokens({});
    if (document_.is_new()) cell_->setFormula("");
  } catch (const uno::Exception&) {
    // The document is going; so is the cell.
  }
  document_.evaluating = false;
}

void Scratch::calculate(const std::string& text) {
  Tokens tokens = document_.parser()->parseFormula(wide(text), address_);
  restore_intersections(tokens, op_codes(document_));
  uno::Reference<sheet::XFormulaTokens>(cell_, uno::UNO_QUERY_THROW)->setTokens(tokens);
}

Variant Scratch::result() const {
  if (const std::int32_t error = cell_->getError()) return error_of(error);
  std::int32_t type = 0;
  uno::Reference<com::sun::star::beans::XPropertySet>(cell_, uno::UNO_QUERY_THROW)
      ->getPropertyValue("FormulaResultType2") >>= type;
  if (type != sheet::FormulaResult::STRING) return cell_->getValue();
  return utf8(
      uno::Reference<com::sun::star::text::XTextRange>(cell_, uno::UNO_QUERY_THROW)->getString());
}

double Scratch::number(const std::string& text, double otherwise) {
  const Variant value = (*this)(text);
  const double* found = value.get_if<double>();
  return found ? *found : otherwise;
}

}  // namespace qto::libreoffice
