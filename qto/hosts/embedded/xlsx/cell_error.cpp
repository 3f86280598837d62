#include "qto/hosts/embedded/xlsx/cell_error.hpp"

namespace qto::embedded {

ErrorValue error_from(std::string_view text) noexcept {
  using enum ErrorValue;
  for (const ErrorValue known : {null, div0, value, ref, name, num, na, getting_data, spill, calc})
    if (text == error_text(known)) return known;
  return value;
}

}  // namespace qto::embedded
