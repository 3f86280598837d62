#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace qto::embedded::conformance {

/// Draws that hang on nothing but the seed; those of the standard library are its maker's.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : engine_(seed) {}
  /// A number from 0 to below `count`.
  std::uint32_t below(std::uint32_t count) { return static_cast<std::uint32_t>(engine_() % count); }
  /// True `of` times out of `outof`.
  bool happens(std::uint32_t of, std::uint32_t outof) { return below(outof) < of; }
  template <class T>
  const T& one_of(std::span<const T> choices) {
    return choices[below(static_cast<std::uint32_t>(choices.size()))];
  }
  template <class T, std::size_t N>
  const T& one_of(const T (&choices)[N]) {
    return choices[below(N)];
  }
  template <class T>
  const T& one_of(const std::vector<T>& choices) {
    return one_of(std::span<const T>(choices));
  }
  template <class T>
  void shuffle(std::vector<T>& items) {
    for (std::size_t i = items.size(); i > 1; --i)
      std::swap(items[i - 1], items[below(static_cast<std::uint32_t>(i))]);
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace qto::embedded::conformance
