#include "qto/hosts/embedded/encryption/compound_file.hpp"

#include <gtest/gtest.h>

#include <random>

#include "qto/hosts/embedded/encryption/encrypted_package.hpp"
#include "tests/support/compound_writer.hpp"

namespace qto::embedded {
namespace {

using test::CompoundWriter;
using test::put_le;

std::string text(std::size_t size, unsigned seed) {
  std::string out;
  for (std::size_t i = 0; i < size; ++i)
    out.push_back(static_cast<char>(i * (seed + 3) + i / 251 + seed));
  return out;
}

CompoundFile open(const std::string& bytes) {
  return CompoundFile(Bytes(bytes.begin(), bytes.end()));
}

std::string read(const CompoundFile& file, std::string_view name) {
  const auto* entry = file.find(name);
  if (!entry) return "no stream";
  const Bytes bytes = file.read(*entry);
  return {bytes.begin(), bytes.end()};
}

/// All streams, or why not.
std::string outcome(const std::string& bytes) {
  try {
    const CompoundFile file = open(bytes);
    std::string all;
    for (const auto& entry : file.entries()) all += entry.name + "=" + read(file, entry.name) + ";";
    return all;
  } catch (const EncryptionFault& fault) {
    EXPECT_EQ(fault.kind, EncryptionFault::Kind::damaged);
    EXPECT_NE(std::string(fault.what()), "");
    return "damaged";
  }
}

TEST(CompoundFile, GivesItsStreams) {
  for (const int shift : {9, 12}) {
    const std::size_t sizes[] = {0, 1, 64, 65, 4095, 4096, 4097, 100'000};
    CompoundWriter writer(shift);
    for (const std::size_t size : sizes)
      writer.stream("S" + std::to_string(size), text(size, static_cast<unsigned>(size)));
    const CompoundFile file = open(writer.bytes());
    for (const std::size_t size : sizes)
      EXPECT_EQ(read(file, "s" + std::to_string(size)), text(size, static_cast<unsigned>(size)));
    EXPECT_FALSE(file.find("S2"));
    EXPECT_TRUE(file.find("S1")->is_stream);
  }
}

TEST(CompoundFile, FindsTablesBeyondThoseOfItsHeader) {
  // 109 tables of 128 sectors are 7 MB.
  const std::string large = text(9'000'000, 1);
  const CompoundFile file =
      open(CompoundWriter().stream("Big", large).stream("Small", "x").bytes());
  EXPECT_TRUE(read(file, "Big") == large);
  EXPECT_EQ(read(file, "Small"), "x");
}

TEST(CompoundFile, OfNothing) {
  EXPECT_EQ(outcome(CompoundWriter().bytes()), "");
  EXPECT_EQ(outcome(""), "damaged");
  EXPECT_EQ(outcome(std::string(600, 'x')), "damaged");
}

/// Two large streams and a small one; their sectors follow each other from sector 0.
std::string sample() {
  return CompoundWriter()
      .stream("Big", text(5000, 1))    // sectors 0 to 9
      .stream("Other", text(6000, 2))  // sectors 10 to 21
      .stream("Small", text(100, 3))   // small sectors in sector 22; their table is 23
      .bytes();                        // directory 24, table of sectors 25
}

constexpr std::size_t place(std::size_t sector) { return (sector + 1) * 512; }
constexpr std::size_t table_entry(std::size_t sector) { return place(25) + 4 * sector; }
constexpr std::size_t directory_field(std::size_t entry, std::size_t at) {
  return place(24) + 128 * entry + at;
}

TEST(CompoundFile, ThatCannotBeIsDamaged) {
  const struct {
    const char* what;
    std::size_t at;
    std::uint64_t value;
    int size;
  } rows[] = {
      {"sector size", 0x1E, 20, 2},
      {"sector size of another version", 0x1E, 12, 2},
      {"small sector size", 0x20, 9, 2},
      {"directory outside", 0x30, 5000, 4},
      {"no directory", 0x30, 0xFFFFFFFE, 4},
      {"small table outside", 0x3C, 5000, 4},
      {"table outside", 0x4C, 5000, 4},
      {"list of tables outside", 0x44, 5000, 4},
      {"chain in a circle", table_entry(4), 2, 4},
      {"chain to itself", table_entry(4), 4, 4},
      {"chain that ends early", table_entry(4), 0xFFFFFFFE, 4},
      {"chain outside", table_entry(4), 26, 4},
      {"stream longer than the file", directory_field(1, 120), 0x7FFFFFFF, 4},
      {"stream longer than its chain", directory_field(1, 120), 5700, 4},
      {"small stream longer than its chain", directory_field(3, 120), 200, 4},
      {"small stream that starts outside", directory_field(3, 116), 8, 4},
      {"directory that leads back", directory_field(3, 72), 1, 4},
      {"directory that leads to itself", directory_field(1, 68), 1, 4},
      {"directory that leads outside", directory_field(0, 76), 77, 4},
      {"directory in a circle", table_entry(24), 24, 4},
      {"small sectors beyond the root", directory_field(0, 120), 64, 4},
  };
  const std::string good = sample();
  ASSERT_NE(outcome(good), "damaged");
  for (const auto& row : rows) {
    std::string bytes = good;
    put_le(bytes, row.at, row.value, row.size);
    EXPECT_EQ(outcome(bytes), "damaged") << row.what;
  }
  std::string circle = good;  // a list of tables whose last entry names itself
  put_le(circle, 0x44, 25, 4);
  put_le(circle, place(26) - 4, 25, 4);
  EXPECT_EQ(outcome(circle), "damaged");
}

TEST(CompoundFile, CutOffAnywhereIsDamagedOrWhole) {
  const std::string good = sample();
  const std::string whole = outcome(good);
  for (std::size_t size = 0; size < good.size(); size += 13) {
    const std::string cut = outcome(good.substr(0, size));
    EXPECT_TRUE(cut == "damaged" || cut == whole) << size;
  }
  EXPECT_EQ(outcome(good.substr(0, place(24))), "damaged");
}

TEST(CompoundFile, WithAnyBytesEndsInOrder) {
  const std::string good = sample();
  std::mt19937 random(7);
  for (int round = 0; round < 3000; ++round) {
    std::string bytes = good;
    for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
      // Mostly where the structure is.
      const std::size_t from = random() % 4 == 0 ? 0 : random() % 2 ? place(22) : place(24);
      bytes[from + random() % (bytes.size() - from)] = static_cast<char>(random());
    }
    outcome(bytes);
  }
}

}  // namespace
}  // namespace qto::embedded
