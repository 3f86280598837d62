#include <windows.h>

#include <oleauto.h>

#include <new>

#include "qto/com/memory.hpp"

namespace qto::com {

static_assert(sizeof(ComVariant) == sizeof(VARIANT) && sizeof(Array) == sizeof(SAFEARRAY) + 8);

Text allocate_text(std::u16string_view text) {
  const BSTR made = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()),
                                      static_cast<UINT>(text.size()));
  if (!made) throw std::bad_alloc();
  return reinterpret_cast<Text>(made);
}

std::size_t text_length(const char16_t* text) noexcept {
  return SysStringLen(reinterpret_cast<BSTR>(const_cast<char16_t*>(text)));
}

void free_text(Text text) noexcept { SysFreeString(reinterpret_cast<BSTR>(text)); }

Array* allocate_array(std::uint32_t rows, std::uint32_t columns) {
  SAFEARRAYBOUND bounds[] = {{rows, 1}, {columns, 1}};
  SAFEARRAY* made = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (!made) throw std::bad_alloc();
  return reinterpret_cast<Array*>(made);
}

Array* allocate_list(std::uint32_t count) {
  SAFEARRAY* made = SafeArrayCreateVector(VT_VARIANT, 1, count);
  if (!made) throw std::bad_alloc();
  return reinterpret_cast<Array*>(made);
}

void clear(ComVariant& variant) noexcept {
  // What cannot be cleared is a type that owns nothing.
  if (FAILED(VariantClear(reinterpret_cast<VARIANT*>(&variant)))) variant = ComVariant();
}

}  // namespace qto::com
