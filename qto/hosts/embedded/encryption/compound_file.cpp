#include "qto/hosts/embedded/encryption/compound_file.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/encryption/encrypted_package.hpp"

namespace qto::embedded {
namespace {

constexpr std::string_view magic = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::size_t header_size = 512;
constexpr std::size_t entry_size = 128;
constexpr std::size_t small_sector_size = 64;
constexpr std::size_t table_sectors_in_header = 109;
/// Numbers from here on mark free sectors, ends of chains and the tables themselves.
constexpr std::uint32_t first_mark = 0xFFFFFFFA;
constexpr std::uint32_t no_entry = 0xFFFFFFFF;

// Positions in the header.
constexpr std::size_t version_at = 0x1A;
constexpr std::size_t sector_shift_at = 0x1E;
constexpr std::size_t small_shift_at = 0x20;
constexpr std::size_t directory_at = 0x30;
constexpr std::size_t small_limit_at = 0x38;
constexpr std::size_t small_table_at = 0x3C;
constexpr std::size_t more_tables_at = 0x44;
constexpr std::size_t tables_at = 0x4C;

[[noreturn]] void damaged_compound(const std::string& what) {
  throw EncryptionFault(EncryptionFault::Kind::damaged, "the compound file is damaged: " + what);
}

/// Passes over a chain of numbers at most once; `visit` sees each.
template <class Visit>
void follow(std::uint32_t start, const std::vector<std::uint32_t>& next, std::string_view what,
            Visit&& visit) {
  std::vector<bool> seen(next.size());
  for (std::uint32_t at = start; at < first_mark; at = next[at]) {
    if (at >= next.size()) damaged_compound(std::string(what) + " leads outside the file");
    if (seen[at]) damaged_compound(std::string(what) + " leads back to itself");
    seen[at] = true;
    if (!visit(at)) return;
  }
}

}  // namespace

bool CompoundFile::is_one(ByteView head) noexcept {
  return head.size() >= magic.size() &&
         std::equal(magic.begin(), magic.end(), head.begin(),
                    [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; });
}

CompoundFile::CompoundFile(Bytes content) : content_(std::move(content)) {
  read_header();
  read_sector_table();
  read_directory();
}

void CompoundFile::read_header() {
  if (!is_one(content_)) damaged_compound("it does not begin like one");
  if (content_.size() < header_size) damaged_compound("it is cut off in its header");
  const auto version = read_le<std::uint16_t>(content_, version_at);
  const auto shift = read_le<std::uint16_t>(content_, sector_shift_at);
  if (!(version == 3 && shift == 9) && !(version == 4 && shift == 12))
    damaged_compound("its sectors have no size that version " + std::to_string(version) + " knows");
  if (read_le<std::uint16_t>(content_, small_shift_at) != 6)
    damaged_compound("its small sectors have another size than 64 bytes");
  sector_size_ = std::size_t{1} << shift;
  const std::size_t behind_header =
      content_.size() > sector_size_ ? content_.size() - sector_size_ : 0;
  const std::size_t count = (behind_header + sector_size_ - 1) / sector_size_;
  sector_count_ = static_cast<std::uint32_t>(std::min<std::size_t>(count, first_mark));
  small_limit_ = read_le<std::uint32_t>(content_, small_limit_at);
}

ByteView CompoundFile::sector(std::uint32_t number) const {
  if (number >= sector_count_) damaged_compound("a sector lies outside the file (cut off?)");
  const std::size_t at = (std::size_t{number} + 1) * sector_size_;
  return ByteView(content_).subspan(at, std::min(sector_size_, content_.size() - at));
}

void CompoundFile::append_table(Chain& table, ByteView bytes) const {
  for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4)
    table.push_back(read_le<std::uint32_t>(bytes, at));
}

void CompoundFile::read_sector_table() {
  Chain tables;  // the sectors that hold the table of sectors
  append_table(tables, ByteView(content_).subspan(tables_at, table_sectors_in_header * 4));
  std::uint32_t more = read_le<std::uint32_t>(content_, more_tables_at);
  for (std::uint32_t passed = 0; more < first_mark; ++passed) {
    if (passed > sector_count_)
      damaged_compound("the list of its sector tables leads back to itself");
    const ByteView list = sector(more);
    if (list.size() < sector_size_) damaged_compound("the list of its sector tables is cut off");
    append_table(tables, list.first(sector_size_ - 4));
    more = read_le<std::uint32_t>(list, sector_size_ - 4);
  }
  for (const std::uint32_t table : tables) {
    if (table >= first_mark) continue;
    // More entries than sectors cannot be meant; the rest may be anything.
    if (next_.size() >= sector_count_) break;
    append_table(next_, sector(table));
  }
  next_.resize(std::min<std::size_t>(next_.size(), sector_count_));
}

Bytes CompoundFile::read_chain(std::uint32_t start) const {
  Bytes out;
  follow(start, next_, "a chain of sectors", [&](std::uint32_t number) {
    const ByteView bytes = sector(number);
    out.insert(out.end(), bytes.begin(), bytes.end());
    return true;
  });
  return out;
}

CompoundFile::Entry CompoundFile::entry_at(ByteView directory, std::uint32_t number) const {
  const ByteView bytes = directory.subspan(std::size_t{number} * entry_size, entry_size);
  Entry entry;
  const std::size_t letters =
      std::min<std::size_t>(read_le<std::uint16_t>(bytes, 64), 64) / 2;  // with the closing zero
  std::u16string name;
  for (std::size_t i = 0; i + 1 < letters; ++i)
    name.push_back(static_cast<char16_t>(read_le<std::uint16_t>(bytes, 2 * i)));
  entry.name = text::from_utf16(name);
  entry.is_stream = bytes[66] == 2;
  entry.start = read_le<std::uint32_t>(bytes, 116);
  // The upper half means nothing in files with small sectors.
  entry.size = sector_size_ == header_size ? read_le<std::uint32_t>(bytes, 120)
                                           : read_le<std::uint64_t>(bytes, 120);
  return entry;
}

void CompoundFile::read_directory() {
  const Bytes directory = read_chain(read_le<std::uint32_t>(content_, directory_at));
  const std::size_t count = directory.size() / entry_size;
  if (count == 0) damaged_compound("it has no directory");
  const auto link = [&](std::uint32_t number, std::size_t at) {
    return read_le<std::uint32_t>(directory, number * entry_size + at);
  };
  std::vector<bool> seen(count);
  std::vector<std::uint32_t> waiting{link(0, 76)};  // the tree of the root's entries
  while (!waiting.empty()) {
    const std::uint32_t number = waiting.back();
    waiting.pop_back();
    if (number == no_entry) continue;
    if (number >= count || seen[number]) damaged_compound("its directory is no tree");
    seen[number] = true;
    entries_.push_back(entry_at(directory, number));
    waiting.push_back(link(number, 72));
    waiting.push_back(link(number, 68));
  }
  Bytes small_table = read_chain(read_le<std::uint32_t>(content_, small_table_at));
  append_table(small_next_, small_table);
  const Entry root = entry_at(directory, 0);
  if (!small_next_.empty()) small_sectors_ = read_sectors(root);
  small_next_.resize(std::min(small_next_.size(), small_sectors_.size() / small_sector_size));
}

const CompoundFile::Entry* CompoundFile::find(std::string_view name) const noexcept {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return text::equal_ascii_nocase(entry.name, name);
  });
  return found == entries_.end() ? nullptr : &*found;
}

Bytes CompoundFile::read(const Entry& stream) const {
  return stream.size < small_limit_ ? read_small_sectors(stream) : read_sectors(stream);
}

Bytes CompoundFile::read_sectors(const Entry& stream) const {
  const std::string what = "\"" + stream.name + "\"";
  if (stream.size > content_.size()) damaged_compound(what + " is longer than the file (cut off?)");
  Bytes out;
  out.reserve(static_cast<std::size_t>(stream.size));
  if (stream.size > 0)
    follow(stream.start, next_, what, [&](std::uint32_t number) {
      const ByteView bytes = sector(number);
      const std::size_t left = static_cast<std::size_t>(stream.size) - out.size();
      out.insert(out.end(), bytes.begin(),
                 bytes.begin() + static_cast<std::ptrdiff_t>(std::min(left, bytes.size())));
      return out.size() < stream.size;
    });
  if (out.size() < stream.size) damaged_compound(what + " ends too early");
  return out;
}

Bytes CompoundFile::read_small_sectors(const Entry& stream) const {
  const std::string what = "\"" + stream.name + "\"";
  Bytes out;
  if (stream.size > 0)
    follow(stream.start, small_next_, what, [&](std::uint32_t number) {
      const auto from = small_sectors_.begin() +
                        static_cast<std::ptrdiff_t>(std::size_t{number} * small_sector_size);
      const std::size_t left = static_cast<std::size_t>(stream.size) - out.size();
      out.insert(out.end(), from,
                 from + static_cast<std::ptrdiff_t>(std::min(left, small_sector_size)));
      return out.size() < stream.size;
    });
  if (out.size() < stream.size) damaged_compound(what + " ends too early");
  return out;
}

}  // namespace qto::embedded
