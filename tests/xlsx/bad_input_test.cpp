#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include "tests/support/encrypting.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using namespace embedded;
using enum OpenFailureKind;

struct Fault {
  const char* name;
  std::function<std::string()> bytes;
  OpenFailureKind kind;
  const char* part;
  long line;
  const char* message;  ///< a piece of it
};
void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

/// A book whose first sheet spans several lines and whose data is stored in its container so that
/// bytes can be changed.
BookFile small() {
  BookFile file;
  file.cells("\n<row r='1'>\n<c r='A1'><v>1</v></c>\n</row>\n");
  return file;
}

std::string sheet(const std::string& xml) { return small().part("xl/sheet1.xml", xml).bytes(); }

std::string changed(std::string bytes, std::size_t at, char to) {
  bytes.at(at) = to;
  return bytes;
}

/// Where the data of an entry begins, by its name in the local header.
std::size_t data_of(const std::string& bytes, const std::string& name) {
  return bytes.find(name) + name.size();
}

std::string doctype(const std::string& declarations) {
  return sheet("<?xml version='1.0'?>\n<!DOCTYPE worksheet [" + declarations +
               "]>\n<worksheet xmlns='" + std::string(main_space) +
               "'><sheetData><row><c t='str'><v>&e;</v></c></row>"
               "</sheetData></worksheet>");
}

std::string repeated(const std::string& text, int times) {
  std::string out;
  out.reserve(text.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) out += text;
  return out;
}

const std::string sheet_name = "xl/sheet1.xml";

const Fault faults[] = {
    {"empty_file", [] { return ""; }, not_a_package, "", 0, "the file is empty"},
    {"text", [] { return "a,b,c"; }, not_a_package, "", 0, "not a workbook"},
    {"web_page", [] { return "<html/>"; }, not_a_package, "", 0, "web page"},
    {"encrypted", [] { return agile_encrypted(small().bytes(), "pw").file(); }, encrypted, "", 0,
     "encrypted"},
    {"encrypted_something_else", [] { return agile_encrypted("no zip", "VelvetSweatshop").file(); },
     damaged, "", 0, "no zip container"},
    {"old_format", [] { return CompoundWriter().stream("Workbook", "").bytes(); }, not_a_workbook,
     "", 0, ".xls"},
    {"encrypted_for_certificates",
     [] {
       auto streams = agile_encrypted("", "");
       streams.info.replace(streams.info.find("encryptedVerifierHashInput"), 1, "f");
       return streams.file();
     },
     unknown_cipher, "", 0, "certificates"},
    {"open_document",
     [] {
       return zip_bytes({{"mimetype", "application/x"}, {"content.xml", "<x/>"}});
     },
     not_a_workbook, "", 0, "OpenDocument"},
    {"binary_workbook",
     [] {
       return zip_bytes({{"xl/workbook.bin", "x"}});
     },
     not_a_workbook, "", 0, ".xlsb"},
    {"text_document",
     [] {
       return zip_bytes({{"word/document.xml", "<x/>"}});
     },
     not_a_workbook, "", 0, "text document"},
    {"other_zip",
     [] {
       return zip_bytes({{"readme", "x"}});
     },
     not_a_workbook, "", 0, "no workbook part"},
    {"workbook_part_is_something_else",
     [] { return small().part("xl/workbook.xml", "<html/>").bytes(); }, not_a_workbook,
     "xl/workbook.xml", 0, "no workbook"},
    {"cut_in_half",
     [] {
       const auto bytes = small().bytes();
       return bytes.substr(0, bytes.size() / 2);
     },
     damaged, "", 0, "cut off"},
    {"end_record_missing",
     [] {
       const auto bytes = small().bytes();
       return bytes.substr(0, bytes.size() - 22);
     },
     damaged, "", 0, "cut off"},
    {"directory_offset_outside",
     [] {
       auto bytes = small().bytes();
       return bytes.replace(bytes.size() - 6, 4, "\xF0\xFF\xFF\x7F");
     },
     damaged, "", 0, "zip"},
    {"checksum",
     [] {
       auto bytes = small().bytes();
       // The checksum in the central directory: 16 bytes into the record, the name 46 bytes in.
       const std::size_t record = bytes.rfind(sheet_name) - 46;
       return changed(bytes, record + 16, static_cast<char>(bytes[record + 16] ^ 1));
     },
     damaged, "xl/sheet1.xml", 0, "damaged"},
    {"compressed_data",
     [] {
       auto bytes = BookFile().cells(repeated("<row><c><v>12</v></c></row>", 500)).bytes();
       return bytes.replace(data_of(bytes, sheet_name) + 20, 8, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF");
     },
     damaged, "xl/sheet1.xml", 0, "damaged"},
    {"size_understated",
     [] {
       auto bytes = small().bytes();
       const std::size_t record = bytes.rfind(sheet_name) - 46;
       return bytes.replace(record + 24, 4, std::string("\x05\0\0\0", 4));
     },
     damaged, "xl/sheet1.xml", 0, ""},
    {"size_overstated",
     [] {
       auto bytes = small().bytes();
       const std::size_t record = bytes.rfind(sheet_name) - 46;
       return bytes.replace(record + 24, 4, std::string("\0\0\1\0", 4));
     },
     damaged, "xl/sheet1.xml", 0, ""},
    {"size_beyond_the_limit",
     [] {
       auto bytes = small().bytes();
       const std::size_t record = bytes.rfind(sheet_name) - 46;
       return bytes.replace(record + 24, 4, std::string("\xFE\xFF\xFF\xFF", 4));
     },
     too_large, "xl/sheet1.xml", 0, "inflate"},
    {"mismatched_tag", [] { return sheet("<worksheet>\n<a>\n</b>\n</worksheet>"); }, damaged,
     "xl/sheet1.xml", 3, "mismatched tag"},
    {"unclosed",
     [] {
       return sheet("<worksheet xmlns='" + std::string(main_space) + "'>\n<sheetData>\n<row><c>");
     },
     damaged, "xl/sheet1.xml", 3, "no element found"},
    {"bytes_that_are_not_utf8", [] { return sheet("<worksheet>\n\n<a>\xC3\x28</a></worksheet>"); },
     damaged, "xl/sheet1.xml", 3, "not well-formed"},
    {"unknown_encoding", [] { return sheet("<?xml version='1.0' encoding='x-klingon'?><a/>"); },
     damaged, "xl/sheet1.xml", 1, "encoding"},
    {"empty_part", [] { return sheet(""); }, damaged, "xl/sheet1.xml", 1, "no element found"},
    {"external_entity", [] { return doctype("<!ENTITY e SYSTEM 'file:///etc/hostname'>"); },
     damaged, "xl/sheet1.xml", 2, "document type"},
    {"entity_bomb", [] { return doctype("<!ENTITY a 'aaaa'><!ENTITY e '&a;&a;&a;&a;'>"); }, damaged,
     "xl/sheet1.xml", 2, "document type"},
    {"deep_nesting", [] { return sheet(repeated("<a>", 100'000)); }, too_large, "xl/sheet1.xml", 1,
     "nested too deeply"},
    {"endless_tag", [] { return sheet("<a b='" + std::string(20'000'000, 'x') + "'/>"); },
     too_large, "xl/sheet1.xml", 1, "too long"},
    {"relationships_are_no_xml", [] { return small().part("_rels/.rels", "\nhello").bytes(); },
     damaged, "_rels/.rels", 2, "syntax error"},
    {"sheet_without_relationship",
     [] { return small().edit("xl/workbook.xml", "r:id=\"r1\"", "r:id=\"r9\"").bytes(); }, damaged,
     "xl/workbook.xml", 0, "sheet \"Sheet1\" has no part: there is no relationship \"r9\""},
    {"sheet_part_missing", [] { return small().remove("xl/sheet1.xml").bytes(); }, damaged,
     "xl/sheet1.xml", 0, "the part of sheet \"Sheet1\" is missing"},
    {"shared_string_missing",
     [] { return small().cells("<row><c/><c t='s'><v>3</v></c></row>").strings("<si/>").bytes(); },
     damaged, "xl/sheet1.xml", 2, "cell B1 names a shared string that is not there"},
    {"table_part_missing",
     [] {
       return small().sheet("<sheetData/><tableParts><tablePart r:id='t'/></tableParts>").bytes();
     },
     damaged, "xl/sheet1.xml", 0, "table"},
    {"table_without_range",
     [] {
       return small()
           .sheet("<sheetData/><tableParts><tablePart r:id='t'/></tableParts>")
           .links("xl/sheet1.xml", {{"t", "table", "table1.xml"}})
           .part("xl/table1.xml", root("table name='T' ref='?'", ""))
           .bytes();
     },
     damaged, "xl/table1.xml", 2, "table \"T\" has no range"},
    {"arrays_over_and_over",
     [] {
       return BookFile()
           .cells("<row>" + repeated("<c r='A1'><f t='array' ref='A1:A65536'>1</f></c>", 130) +
                  "</row>")
           .bytes();
     },
     too_large, "", 0, "cover too many cells"},
};

class FaultTest : public testing::TestWithParam<Fault> {};

TEST_P(FaultTest, IsRefusedWithReason) {
  const Fault& fault = GetParam();
  const TemporaryFile file("bad.xlsx", fault.bytes());
  try {
    open_workbook(file.path());
    FAIL() << "was read";
  } catch (const OpenFailure& failure) {
    EXPECT_EQ(static_cast<int>(failure.kind), static_cast<int>(fault.kind)) << failure.what();
    EXPECT_EQ(failure.file, file.path());
    EXPECT_EQ(failure.part, fault.part) << failure.what();
    EXPECT_EQ(failure.line, fault.line) << failure.what();
    EXPECT_NE(failure.message().find(fault.message), std::string::npos) << failure.what();
    EXPECT_TRUE(std::string(failure.what()).starts_with(failure.message()));
  }
}

INSTANTIATE_TEST_SUITE_P(BadInput, FaultTest, testing::ValuesIn(faults),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(BadInput, FilesThatAreNotThere) {
  for (const auto& [path, kind] :
       {std::pair{"/nonexistent/plan.xlsx", not_found}, {"/", not_readable}}) {
    try {
      open_workbook(path);
      FAIL() << "was read";
    } catch (const OpenFailure& failure) {
      EXPECT_EQ(static_cast<int>(failure.kind), static_cast<int>(kind));
    }
  }
}

TEST(BadInput, CellsAllOverTheGridAreRefusedBeforeMemoryIsGone) {
  std::string rows;
  for (int row = 1; row <= 64'000; row += 64)
    rows += "<row r='" + std::to_string(row) + "'>" + repeated("<c><v>1</v></c>", 20) + "</row>";
  const BookFile file = BookFile().cells(rows);
  EXPECT_EQ(sheet_of(*file.open(), "Sheet1").cells.block_count(), 20'000);
  try {
    file.open({.limits = {.cell_bytes = 10'000'000}});
    FAIL() << "was read";
  } catch (const OpenFailure& failure) {
    EXPECT_EQ(static_cast<int>(failure.kind), static_cast<int>(too_large));
  }
}

TEST(BadInput, MessagesNameFilePartAndLine) {
  const OpenFailure failure(damaged, "plan.xlsx", "xl/worksheets/sheet2.xml", 14, "mismatched tag",
                            "Save it again");
  EXPECT_EQ(failure.message(), "plan.xlsx: xl/worksheets/sheet2.xml, line 14: mismatched tag");
  EXPECT_STREQ(failure.what(),
               "plan.xlsx: xl/worksheets/sheet2.xml, line 14: mismatched tag. Save it again");
  EXPECT_EQ(OpenFailure(not_found, "plan.xlsx", "", 0, "gone").message(), "plan.xlsx: gone");
}

// Every cut of a good file is refused, never read halfway.
TEST(BadInput, TruncatedFiles) {
  const std::string bytes = small().bytes();
  for (std::size_t size = 0; size < bytes.size(); size += 7) {
    const TemporaryFile file("cut.xlsx", bytes.substr(0, size));
    EXPECT_THROW(open_workbook(file.path()), OpenFailure) << size;
  }
}

// Whatever byte is damaged: a book or a clear refusal.
TEST(BadInput, DamagedBytes) {
  const std::string bytes = small().strings("<si><t>a</t></si>").bytes();
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const TemporaryFile file("damaged.xlsx", changed(bytes, at, static_cast<char>(~bytes[at])));
    try {
      open_workbook(file.path());
    } catch (const OpenFailure&) {
    }
  }
}

}  // namespace
}  // namespace qto::test
