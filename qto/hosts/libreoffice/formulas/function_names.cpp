#include "qto/hosts/libreoffice/formulas/function_names.hpp"

#include "qto/formula/function_name.hpp"

namespace qto::libreoffice {
namespace {

std::string_view found_or(const std::unordered_map<std::string, std::string>& names,
                          std::string_view name) {
  const auto found = names.find(std::string(name));
  return found == names.end() ? name : std::string_view(found->second);
}

}  // namespace

void FunctionNames::add(std::string_view office, std::string_view file) {
  std::string_view shown = formula::without_prefix(file);
  for (const std::string_view vendor : {"ORG.LIBREOFFICE.", "ORG.OPENOFFICE."})
    if (shown.starts_with(vendor)) shown.remove_prefix(vendor.size());
  if (office != shown) shown_.emplace(office, shown);
  if (shown != file) stored_.emplace(shown, file);
}

std::string_view FunctionNames::shown(std::string_view office) const {
  return found_or(shown_, office);
}

std::string_view FunctionNames::stored(std::string_view shown) const {
  return found_or(stored_, shown);
}

}  // namespace qto::libreoffice
