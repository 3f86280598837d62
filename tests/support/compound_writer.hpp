#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qto::test {

inline void put_le(std::string& out, std::size_t at, std::uint64_t value, int size) {
  if (out.size() < at + static_cast<std::size_t>(size)) out.resize(at + size, '\0');
  for (int i = 0; i < size; ++i) out[at + i] = static_cast<char>(value >> (8 * i));
}

/// Writes compound files ([MS-CFB]): streams in the root, sectors of 512 or 4,096 bytes.
class CompoundWriter {
 public:
  explicit CompoundWriter(int sector_shift = 9) : shift_(sector_shift), size_(1u << sector_shift) {}

  CompoundWriter& stream(std::string name, std::string content) {
    streams_.push_back({std::move(name), std::move(content)});
    return *this;
  }

  std::string bytes() {
    std::vector<std::pair<std::uint32_t, std::size_t>> places;
    for (const auto& [name, content] : streams_) {
      if (content.size() >= small_limit)
        places.emplace_back(add(content, size_), content.size());
      else
        places.emplace_back(add_small(content), content.size());
    }
    const std::uint32_t small_root = small_.empty() ? chain_end : add(small_, size_);
    const std::uint32_t small_table =
        small_next_.empty() ? chain_end : add(table_of(small_next_), size_);
    const std::uint32_t directory = add(directory_of(places, small_root), size_);
    return with_header(directory, small_table);
  }

 private:
  static constexpr std::uint32_t chain_end = 0xFFFFFFFE, free_mark = 0xFFFFFFFF,
                                 table_mark = 0xFFFFFFFD, list_mark = 0xFFFFFFFC;
  static constexpr std::size_t small_limit = 4096;

  static std::string table_of(const std::vector<std::uint32_t>& numbers) {
    std::string out;
    for (const std::uint32_t number : numbers) put_le(out, out.size(), number, 4);
    return out;
  }
  static std::uint32_t append(std::string& to, std::vector<std::uint32_t>& next,
                              const std::string& content, std::size_t unit) {
    const auto first = static_cast<std::uint32_t>(next.size());
    const std::size_t count = std::max<std::size_t>(1, (content.size() + unit - 1) / unit);
    for (std::size_t i = 1; i < count; ++i) next.push_back(static_cast<std::uint32_t>(first + i));
    next.push_back(chain_end);
    to += content;
    to.resize(next.size() * unit, '\0');
    return first;
  }
  std::uint32_t add(const std::string& content, std::size_t unit) {
    return append(sectors_, next_, content, unit);
  }
  std::uint32_t add_small(const std::string& content) {
    return append(small_, small_next_, content, 64);
  }

  static std::string entry(const std::string& name, int type, std::uint32_t start,
                           std::uint64_t size, std::uint32_t right, std::uint32_t child) {
    std::string out(128, '\0');
    for (std::size_t i = 0; i < name.size(); ++i) out[2 * i] = name[i];
    put_le(out, 64, 2 * (name.size() + 1), 2);
    out[66] = static_cast<char>(type);
    out[67] = 1;
    put_le(out, 68, free_mark, 4);
    put_le(out, 72, right, 4);
    put_le(out, 76, child, 4);
    put_le(out, 116, start, 4);
    put_le(out, 120, size, 8);
    return out;
  }
  std::string directory_of(const std::vector<std::pair<std::uint32_t, std::size_t>>& places,
                           std::uint32_t small_root) const {
    std::string out = entry("Root Entry", 5, small_root, small_.size(), free_mark,
                            streams_.empty() ? free_mark : 1);
    for (std::size_t i = 0; i < streams_.size(); ++i)
      out +=
          entry(streams_[i].first, 2, places[i].first, places[i].second,
                i + 1 < streams_.size() ? static_cast<std::uint32_t>(i + 2) : free_mark, free_mark);
    return out;
  }

  std::string with_header(std::uint32_t directory, std::uint32_t small_table) {
    const std::size_t per_table = size_ / 4;
    const std::size_t content = next_.size();
    std::size_t tables = 0;
    std::size_t lists = 0;
    for (bool changed = true; changed;) {
      const std::size_t need = (content + tables + lists + per_table - 1) / per_table;
      const std::size_t more = need > 109 ? (need - 109 + per_table - 2) / (per_table - 1) : 0;
      changed = need != tables || more != lists;
      tables = need;
      lists = more;
    }
    std::vector<std::uint32_t> where;
    for (std::size_t i = 0; i < tables; ++i) {
      where.push_back(static_cast<std::uint32_t>(next_.size()));
      next_.push_back(table_mark);
    }
    const auto first_list = static_cast<std::uint32_t>(next_.size());
    next_.insert(next_.end(), lists, list_mark);
    next_.resize(tables * per_table, free_mark);
    sectors_ += table_of(next_);
    std::string header("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    header.resize(size_, '\0');
    put_le(header, 0x18, 0x3E, 2);
    put_le(header, 0x1A, shift_ == 9 ? 3 : 4, 2);
    put_le(header, 0x1C, 0xFFFE, 2);
    put_le(header, 0x1E, static_cast<std::uint64_t>(shift_), 2);
    put_le(header, 0x20, 6, 2);
    put_le(header, 0x2C, tables, 4);
    put_le(header, 0x30, directory, 4);
    put_le(header, 0x38, small_limit, 4);
    put_le(header, 0x3C, small_table, 4);
    put_le(header, 0x44, lists > 0 ? first_list : chain_end, 4);
    put_le(header, 0x48, lists, 4);
    for (std::size_t i = 0; i < 109; ++i)
      put_le(header, 0x4C + 4 * i, i < tables ? where[i] : free_mark, 4);
    for (std::size_t list = 0, i = 109; list < lists; ++list) {
      std::string sector;
      for (std::size_t k = 1; k < per_table; ++k, ++i)
        put_le(sector, sector.size(), i < tables ? where[i] : free_mark, 4);
      put_le(sector, sector.size(), list + 1 < lists ? first_list + list + 1 : chain_end, 4);
      sectors_ += sector;
    }
    return header + sectors_;
  }

  int shift_;
  std::size_t size_;
  std::vector<std::pair<std::string, std::string>> streams_;
  std::string sectors_;
  std::vector<std::uint32_t> next_;
  std::string small_;
  std::vector<std::uint32_t> small_next_;
};

}  // namespace qto::test
