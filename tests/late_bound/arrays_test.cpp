#include <gtest/gtest.h>

#include "qto/automation/variant_list.hpp"
#include "qto/com/errors.hpp"
#include "qto/com/memory.hpp"
#include "qto/com/values.hpp"

namespace qto::com {
namespace {

/// Passes no objects.
class NoObjectsAtAll final : public ObjectMarshaler {
 public:
  Unknown* marshal(const Ref<Object>&) override { return nullptr; }
  Ref<Object> unmarshal(Unknown&) override { return nullptr; }
};

TEST(Arrays, CrossWithTheirShape) {
  NoObjectsAtAll marshaler;
  const auto block = make_ref<VariantArray>(2, 3);
  for (int row = 1; row <= 2; ++row)
    for (int column = 1; column <= 3; ++column) block->at(row, column) = Variant(10 * row + column);
  block->at(2, 3) = Variant("last");
  const auto list = make_ref<VariantList>(2);
  list->at(1, 1) = Variant("first");
  const Variant values[] = {Variant(Ref<const VariantArray>(block)),
                            Variant(Ref<const VariantArray>(list))};
  for (const Variant& value : values) {
    ComVariant crossed = to_com(value, marshaler);
    EXPECT_EQ(crossed.array->dimensions, value.array().rows());
    const Variant back = from_com(crossed, marshaler);
    EXPECT_EQ(back, value);
    clear(crossed);
  }
  ComVariant crossed = to_com(values[1], marshaler);
  const Variant back = from_com(crossed, marshaler);
  EXPECT_TRUE(dynamic_cast<const VariantList*>(&back.array()));
  clear(crossed);
}

TEST(Arrays, OfOneTypeAreReadAndOthersRefused) {
  NoObjectsAtAll marshaler;
  double numbers[] = {1.5, 2.5, 3.5, 4.5};
  Array array{2, 0, sizeof(double), 0, numbers, {{2, 0}, {2, 5}}};  // counted from 5 and from 0
  ComVariant value;
  value.type = vt_array | vt_r8;
  value.array = &array;
  const Variant read = from_com(value, marshaler);
  ASSERT_TRUE(read.is_array());
  EXPECT_EQ(read.array().at(2, 1), Variant(2.5));  // a column's elements follow each other
  EXPECT_EQ(read.array().at(1, 2), Variant(3.5));
  array.bounds[0].count = 0;
  EXPECT_TRUE(from_com(value, marshaler).is_empty());
  array.bounds[0].count = 0x80000000u;
  EXPECT_THROW(from_com(value, marshaler), CallFailure);
  array.bounds[0].count = 2;
  array.dimensions = 3;
  EXPECT_THROW(from_com(value, marshaler), CallFailure);
  array.dimensions = 1;
  array.element_size = 4;
  EXPECT_THROW(from_com(value, marshaler), CallFailure);
  value.array = nullptr;
  EXPECT_THROW(from_com(value, marshaler), CallFailure);
}

}  // namespace
}  // namespace qto::com
