#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/encryption/bytes.hpp"

namespace qto::embedded {

/// A compound file ([MS-CFB]) in memory: the container of encrypted workbooks and of older
/// formats. Whatever the file says about itself is checked against its size before it is believed.
class CompoundFile {
 public:
  /// How such a file begins.
  static bool is_one(ByteView head) noexcept;

  /// Throws EncryptionFault (damaged) when the structure cannot be.
  explicit CompoundFile(Bytes content);

  struct Entry {
    std::string name;
    bool is_stream = false;
    std::uint32_t start = 0;
    std::uint64_t size = 0;
  };
  /// The stream or storage of that name in the root, letter case ignored; null when there is none.
  const Entry* find(std::string_view name) const noexcept;
  const std::vector<Entry>& entries() const noexcept { return entries_; }

  /// The bytes of a stream. Throws EncryptionFault (damaged) when it leaves the file or loops.
  Bytes read(const Entry& stream) const;

 private:
  using Chain = std::vector<std::uint32_t>;

  void read_header();
  void read_sector_table();
  void read_directory();
  Entry entry_at(ByteView directory, std::uint32_t number) const;
  /// The bytes of a sector; fewer when the file ends inside it.
  ByteView sector(std::uint32_t number) const;
  void append_table(Chain& table, ByteView bytes) const;
  Bytes read_chain(std::uint32_t start) const;
  Bytes read_sectors(const Entry& stream) const;
  Bytes read_small_sectors(const Entry& stream) const;

  Bytes content_;
  std::size_t sector_size_ = 0;
  std::uint32_t sector_count_ = 0;
  Chain next_;        ///< the sector after each sector
  Chain small_next_;  ///< the same for the small sectors that the root's own stream holds
  Bytes small_sectors_;
  std::uint64_t small_limit_ = 0;
  std::vector<Entry> entries_;
};

}  // namespace qto::embedded
