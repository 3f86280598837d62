#include "qto/model/part_key.hpp"

#include <mutex>
#include <string>
#include <unordered_map>

#include "qto/automation/text.hpp"

namespace qto {
namespace {

constexpr int row_bits = 20;
constexpr int column_bits = 14;
constexpr std::uint64_t spread = 0x9e3779b97f4a7c15u;

/// One number for a prefix in the whole process: keys of any two parts can be compared.
std::uint32_t folded_prefix_number(std::string folded) {
  static std::mutex at_work;
  static std::unordered_map<std::string, std::uint32_t> table;
  const std::lock_guard guard(at_work);
  return table.try_emplace(std::move(folded), static_cast<std::uint32_t>(table.size() + 1))
      .first->second;
}

}  // namespace

class PartKey::FoldedText : public RefCounted {
 public:
  explicit FoldedText(std::string folded_text)
      : folded(std::move(folded_text)), hash(text::hash_fold(folded) * spread) {}
  const std::string folded;
  const std::uint64_t hash;
};

std::uint32_t PartKey::prefix_number(std::string_view prefix) {
  return folded_prefix_number(text::fold_case(prefix));
}

PartKey PartKey::of_cell(std::uint32_t prefix, CellPos pos) noexcept {
  PartKey key;
  key.bits_ = std::uint64_t{prefix} << (row_bits + column_bits) |
              static_cast<std::uint64_t>(pos.row - 1) << column_bits |
              static_cast<std::uint64_t>(pos.column - 1);
  return key;
}

bool PartKey::is_cell_of(std::uint32_t prefix, CellPos& pos) const noexcept {
  if (is_text() || bits_ >> (row_bits + column_bits) != prefix) return false;
  pos.row = static_cast<std::int32_t>(bits_ >> column_bits & ((1u << row_bits) - 1)) + 1;
  pos.column = static_cast<std::int32_t>(bits_ & ((1u << column_bits) - 1)) + 1;
  return true;
}

PartKey PartKey::of_text(std::string_view unique_key) {
  std::string folded = text::fold_case(unique_key);
  const std::size_t end = folded.rfind("'!");
  if (end != std::string::npos) {
    const auto cell = parse_cell(std::string_view(folded).substr(end + 2));
    if (cell && !cell->row_absolute && !cell->column_absolute) {
      folded.resize(end + 2);
      return of_cell(folded_prefix_number(std::move(folded)), cell->pos);
    }
  }
  PartKey key;
  const auto* kept = new FoldedText(std::move(folded));
  kept->add_ref();
  key.bits_ = reinterpret_cast<std::uint64_t>(kept) | text_flag;
  return key;
}

std::uint64_t PartKey::hash() const noexcept {
  if (is_text()) return text()->hash;
  const std::uint64_t mixed = bits_ * spread;
  return mixed ^ (mixed >> 32);
}

const PartKey::FoldedText* PartKey::text() const noexcept {
  return reinterpret_cast<const FoldedText*>(bits_ & ~text_flag);
}

bool PartKey::same_text(const PartKey& other) const noexcept {
  return text()->hash == other.text()->hash && text()->folded == other.text()->folded;
}

void PartKey::acquire() const noexcept {
  if (is_text()) text()->add_ref();
}

void PartKey::release() const noexcept {
  if (is_text()) text()->release();
}

}  // namespace qto
