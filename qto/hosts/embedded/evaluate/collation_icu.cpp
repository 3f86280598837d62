#include <unicode/ucol.h>

#include <memory>

#include "qto/hosts/embedded/evaluate/collation.hpp"

namespace qto::embedded {
namespace {

struct CloseCollator {
  void operator()(UCollator* collator) const { ucol_close(collator); }
};

/// The root collator with letter case ignored, made once; null when the library has no data.
UCollator* root_collator() {
  static const std::unique_ptr<UCollator, CloseCollator> collator([] {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* opened = ucol_open("", &status);
    if (U_FAILURE(status)) return static_cast<UCollator*>(nullptr);
    ucol_setStrength(opened, UCOL_SECONDARY);
    return opened;
  }());
  return collator.get();
}

}  // namespace

int collate(std::string_view a, std::string_view b) {
  UCollator* const collator = root_collator();
  if (!collator) return 0;
  UErrorCode status = U_ZERO_ERROR;
  const UCollationResult result =
      ucol_strcollUTF8(collator, a.data(), static_cast<int32_t>(a.size()), b.data(),
                       static_cast<int32_t>(b.size()), &status);
  if (U_FAILURE(status) || result == UCOL_EQUAL) return 0;
  return result == UCOL_LESS ? -1 : 1;
}

}  // namespace qto::embedded
