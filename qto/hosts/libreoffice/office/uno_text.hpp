#pragma once

#include <rtl/string.hxx>
#include <rtl/ustring.hxx>
#include <string>
#include <string_view>

/// Texts from and to those of the office suite.
namespace qto::libreoffice {

using rtl::OUString;

inline std::string utf8(const OUString& text) {
  const rtl::OString bytes = rtl::OUStringToOString(text, RTL_TEXTENCODING_UTF8);
  return {bytes.getStr(), static_cast<std::size_t>(bytes.getLength())};
}

inline OUString wide(std::string_view text) {
  return {text.data(), static_cast<sal_Int32>(text.size()), RTL_TEXTENCODING_UTF8};
}

}  // namespace qto::libreoffice
