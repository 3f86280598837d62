#include <cstdlib>
#include <cstring>
#include <new>

#include "qto/com/memory.hpp"

namespace qto::com {
namespace {

constexpr std::size_t header = 8;  // keeps the text aligned; the count takes the last four bytes

void* checked(void* memory) {
  if (!memory) throw std::bad_alloc();
  return memory;
}

void free_array(Array* array) noexcept {
  if (!array) return;
  std::size_t count = 1;
  for (int i = 0; i < array->dimensions; ++i) count *= array->bounds[i].count;
  auto* elements = static_cast<ComVariant*>(array->data);
  for (std::size_t i = 0; i < count; ++i) clear(elements[i]);
  std::free(elements);
  std::free(array);
}

}  // namespace

Text allocate_text(std::u16string_view text) {
  const auto bytes = static_cast<std::uint32_t>(text.size() * sizeof(char16_t));
  auto* memory = static_cast<char*>(checked(std::calloc(1, header + bytes + sizeof(char16_t))));
  std::memcpy(memory + header - 4, &bytes, sizeof bytes);
  if (bytes) std::memcpy(memory + header, text.data(), bytes);
  return reinterpret_cast<Text>(memory + header);
}

std::size_t text_length(const char16_t* text) noexcept {
  std::uint32_t bytes = 0;
  if (text) std::memcpy(&bytes, reinterpret_cast<const char*>(text) - 4, sizeof bytes);
  return bytes / sizeof(char16_t);
}

void free_text(Text text) noexcept {
  if (text) std::free(reinterpret_cast<char*>(text) - header);
}

Array* allocate_array(std::uint32_t rows, std::uint32_t columns) {
  constexpr std::uint16_t of_variants = 0x800 | 0x80;
  void* elements = checked(std::calloc(std::size_t{rows} * columns + 1, sizeof(ComVariant)));
  auto* array = static_cast<Array*>(std::calloc(1, sizeof(Array)));
  if (!array) std::free(elements);
  *static_cast<Array*>(checked(array)) = {2, of_variants, sizeof(ComVariant),
                                          0, elements,    {{columns, 1}, {rows, 1}}};
  return array;
}

Array* allocate_list(std::uint32_t count) {
  Array* array = allocate_array(1, count);
  array->dimensions = 1;
  return array;
}

void clear(ComVariant& variant) noexcept {
  if (variant.type == vt_text) free_text(variant.text);
  if (variant.type == (vt_array | vt_variant)) free_array(variant.array);
  if ((variant.type == vt_dispatch || variant.type == vt_unknown) && variant.unknown)
    variant.unknown->Release();
  variant = ComVariant();
}

}  // namespace qto::com
