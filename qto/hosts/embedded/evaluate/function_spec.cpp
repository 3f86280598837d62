#include "qto/hosts/embedded/evaluate/function_spec.hpp"

#include <bit>

namespace qto::embedded {

namespace {

std::size_t hash_of(std::string_view name) noexcept {
  std::uint64_t hash = 1469598103934665603u;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  return static_cast<std::size_t>(hash ^ (hash >> 29));
}

}  // namespace

FunctionTable::FunctionTable(std::span<const std::span<const FunctionSpec>> families) {
  std::size_t count = 0;
  for (const auto& family : families) count += family.size();
  slots_.resize(std::bit_ceil(count * 4 + 1));
  mask_ = slots_.size() - 1;
  for (const auto& family : families)
    for (const FunctionSpec& spec : family) {
      std::size_t slot = hash_of(spec.name) & mask_;
      while (slots_[slot]) slot = (slot + 1) & mask_;
      slots_[slot] = &spec;
    }
}

const FunctionSpec* FunctionTable::find(std::string_view name) const noexcept {
  for (std::size_t slot = hash_of(name) & mask_; slots_[slot]; slot = (slot + 1) & mask_)
    if (slots_[slot]->name == name) return slots_[slot];
  return nullptr;
}

}  // namespace qto::embedded
