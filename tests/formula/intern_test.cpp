#include <gtest/gtest.h>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/formulas/formula_intern.hpp"

namespace qto::embedded {
namespace {

std::string cell_text(std::int32_t row, std::int32_t column) {
  return address_of(CellPos{row, column});
}

TEST(FormulaInternTest, FormulasOfOneShapeShareARecord) {
  Book book;
  FormulaIntern intern(book);
  FormulaId shared = 0;
  for (std::int32_t row = 2; row <= 300; ++row)
    for (std::int32_t column = 2; column <= 40; ++column) {
      const std::string text = cell_text(row - 1, column) + '+' + cell_text(row, column - 1);
      const FormulaId id = intern.intern(text, {row, column});
      if (shared == 0) shared = id;
      ASSERT_EQ(id, shared) << text;
    }
  EXPECT_EQ(book.formula_records(), 1u);
}

TEST(FormulaInternTest, WhatDiffersIsKeptApart) {
  const struct {
    std::string_view text;
    CellPos at;
  } formulas[] = {
      {"A1+B1", {2, 1}},  {"A1+B1", {3, 1}},   {"A1-B1", {2, 1}},  {"A1+B1 ", {2, 1}},
      {"$A1+B1", {2, 1}}, {"A$1+B1", {2, 1}},  {"A1:B1", {2, 1}},  {"A1:$B1", {2, 1}},
      {"A:B", {2, 1}},    {"1:1", {2, 1}},     {"\"A1\"", {2, 1}}, {"A1+B1+A1", {2, 1}},
      {"A1B1", {2, 1}},   {"S!A1+B1", {2, 1}}, {"~A1", {2, 1}},    {"~A2", {2, 1}},
      {"1A1+B1", {2, 1}},
  };
  Book book;
  FormulaIntern intern(book);
  std::size_t expected = 0;
  for (const auto& formula : formulas) {
    const FormulaId id = intern.intern(formula.text, formula.at);
    EXPECT_EQ(book.formula_records(), ++expected) << formula.text;
    EXPECT_EQ(intern.intern(formula.text, formula.at), id);
  }
  for (const auto& formula : formulas) intern.intern(formula.text, formula.at);
  EXPECT_EQ(book.formula_records(), expected);
}

TEST(FormulaInternTest, SharedRecordRendersEveryCellsOwnText) {
  Book book;
  FormulaIntern intern(book);
  const FormulaId id = intern.intern("SUM($A$1:A2)", {2, 2});
  EXPECT_EQ(intern.intern("=SUM($A$1:A7)", {7, 2}), id);
  RenderContext context;
  context.book = &book;
  context.at = {7, 2};
  std::string out;
  book.formula(id).compiled->append_formula(out, context);
  EXPECT_EQ(out, "=SUM($A$1:A7)");
}

TEST(FormulaInternTest, BlocksAreNeverShared) {
  Book book;
  FormulaIntern intern(book);
  const Rect block{{1, 1}, {3, 1}};
  const FormulaId first = intern.add_array("B1:B3*2", block);
  EXPECT_NE(intern.add_array("B1:B3*2", block), first);
  EXPECT_NE(intern.intern("B1:B3*2", {1, 1}), first);
  EXPECT_EQ(book.formula(first).kind, FormulaKind::array);
  EXPECT_EQ(book.formula(first).block, block);
  EXPECT_EQ(book.formula(intern.add_data_table("A1,B1", block)).kind, FormulaKind::data_table);
}

TEST(CompiledFormulaTest, EqualRelativeToTheirCells) {
  const auto a = CompiledFormula::compile("A1+1", {2, 1});
  const auto b = CompiledFormula::compile("C4+1", {5, 3});
  const auto c = CompiledFormula::compile("C4+1", {5, 4});
  EXPECT_TRUE(a->same_as(*b));
  EXPECT_EQ(a->hash(), b->hash());
  EXPECT_FALSE(a->same_as(*c));
}

TEST(CompiledFormulaTest, BrokenTextKeepsItsTextAndSaysWhy) {
  const auto broken = CompiledFormula::compile("SUM(A1", {1, 1});
  EXPECT_TRUE(broken->broken());
  EXPECT_EQ(broken->why_broken(), "the formula ends too early");
  RenderContext context;
  context.at = {2, 2};
  std::string out;
  broken->append_formula(out, context);
  EXPECT_EQ(out, "=SUM(B2");
  EXPECT_FALSE(CompiledFormula::compile("SUM(A1)", {1, 1})->broken());
}

}  // namespace
}  // namespace qto::embedded
