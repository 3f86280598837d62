#include "qto/automation/variant.hpp"

#include <gtest/gtest.h>

namespace qto {
namespace {

Variant array_of(double a, double b) {
  auto items = make_ref<VariantArray>(1, 2);
  items->at(1, 1) = a;
  items->at(1, 2) = b;
  return Variant(Ref<const VariantArray>(items));
}

TEST(Variant, NamesItsType) {
  const struct {
    Variant value;
    const char* name;
  } rows[] = {{{}, "Empty"},   {Null{}, "Null"},          {true, "Boolean"},
              {1, "Long"},     {1.5, "Double"},           {Date{1}, "Date"},
              {"x", "String"}, {ErrorValue::na, "Error"}, {array_of(1, 2), "Variant()"}};
  for (const auto& row : rows) EXPECT_EQ(row.value.type_name(), row.name);
}

TEST(Variant, EqualValuesHaveTheSameType) {
  EXPECT_EQ(Variant(Null{}), Variant(Null{}));
  EXPECT_EQ(Variant("a"), Variant(std::string("a")));
  EXPECT_EQ(array_of(1, 2), array_of(1, 2));
  EXPECT_FALSE(array_of(1, 2) == array_of(1, 3));
  EXPECT_FALSE(Variant("") == Variant());
  EXPECT_FALSE(Variant(1) == Variant(1.0));
  EXPECT_FALSE(Variant(true) == Variant(-1));
}

}  // namespace
}  // namespace qto
