#include "qto/hosts/libreoffice/objects/constant_text.hpp"

#include <algorithm>
#include <cmath>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/util/CellProtection.hpp>
#include <com/sun/star/util/XProtectable.hpp>
#include <cstdio>

#include "qto/automation/address.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {

std::string number_text(double number) {
  const double size = std::fabs(number);
  char digits[64];
  if (size != 0 && (size >= 1e20 || size < 1e-9))
    std::snprintf(digits, sizeof digits, "%.15G", number);
  else
    std::snprintf(digits, sizeof digits, "%.*f",
                  std::max(0, 14 - (size > 0 ? static_cast<int>(std::floor(std::log10(size))) : 0)),
                  number);
  std::string text(digits);
  if (text.find('E') == std::string::npos && text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

void append_constant(std::string& out, const Variant& value, double date_origin) {
  if (const auto* number = value.get_if<double>())
    out.append(number_text(*number));
  else if (const auto* date = value.get_if<Date>())
    out.append(number_text(date->serial - date_origin));
  else if (const auto* flag = value.get_if<bool>())
    out.append(*flag ? "TRUE" : "FALSE");
  else if (const auto* error = value.get_if<ErrorValue>())
    out.append(error_text(*error));
  else
    out.append(value.text());
}

void check_formula_shown(const SheetSlot& slot, CellPos pos) {
  namespace util = com::sun::star::util;
  if (!uno::Reference<util::XProtectable>(slot.sheet, uno::UNO_QUERY_THROW)->isProtected()) return;
  util::CellProtection protection;
  uno::Reference<com::sun::star::beans::XPropertySet>(
      slot.sheet->getCellByPosition(pos.column - 1, pos.row - 1), uno::UNO_QUERY_THROW)
      ->getPropertyValue("CellProtection") >>= protection;
  if (protection.IsHidden || protection.IsFormulaHidden)
    fail("The formula of " + address_of(pos) + " on " + slot.name + " is hidden");
}

}  // namespace qto::libreoffice
