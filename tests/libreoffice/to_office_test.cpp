#include "qto/hosts/libreoffice/formulas/to_office.hpp"

#include <gtest/gtest.h>

namespace qto::libreoffice {
namespace {

class TestPieces final : public PieceSurroundings {
 public:
  TestPieces() { names_.add("IFNA", "_xlfn.IFNA"); }
  const FunctionNames& functions() const override { return names_; }
  std::optional<std::string> name(std::string_view name) const override {
    if (name == "Left") return "B7";
    if (name == "Prices") return "Data!$A$1:$A$9";
    if (name == "Twice") return "A1+A2";
    return std::nullopt;
  }
  std::string full_name(std::string_view book) const override {
    return book == "sales.xlsx" ? "/books/sales.xlsx" : "";
  }

 private:
  FunctionNames names_;
};

std::string written(std::string_view text) { return to_office(text, {7, 3}, TestPieces()).text; }

TEST(ToOffice, WritesWhatTheParserKnows) {
  EXPECT_EQ(written("ifna(A1,0)"), "_xlfn.IFNA(A1,0)");
  EXPECT_EQ(written("ROW()+COLUMN( )*ROW(A1)"), "7+3*ROW(A1)");
  EXPECT_EQ(written("Left*Rate"), "B7*Rate");
  EXPECT_EQ(written("Twice*2"), "(A1+A2)*2");
  EXPECT_EQ(written("[sales.xlsx]North!B5"), "'/books/[sales.xlsx]North'!B5");
  EXPECT_EQ(written("'/x/[y.xlsx]North'!B5"), "'/x/[y.xlsx]North'!B5");
  EXPECT_EQ(written("IF(A1=#N/A,\"#N/A\",1)"), "IF(A1=NA(),\"#N/A\",1)");
  EXPECT_EQ(written("TRUE"), "TRUE");
}

TEST(ToOffice, TellsWhichLinesAPieceMeets) {
  const auto shape = [](std::string_view text) {
    const OfficePiece piece = to_office(text, {7, 3}, TestPieces());
    return std::string(piece.needs_row ? "row " : "") + (piece.needs_column ? "column" : "");
  };
  EXPECT_EQ(shape("A1:A9*2"), "row ");
  EXPECT_EQ(shape("Prices*2"), "row ");
  EXPECT_EQ(shape("A1:C1*2"), "column");
  EXPECT_EQ(shape("A1*B2:C3"), "");
}

}  // namespace
}  // namespace qto::libreoffice
