#include <gtest/gtest.h>

#include "qto/automation/variant_list.hpp"
#include "qto/com/com_values.hpp"
#include "qto/com/errors.hpp"
#include "qto/com/memory.hpp"

namespace qto::server::com {
namespace {

/// Passes no objects.
class NoDoor final : public ObjectDoor {
 public:
  Unknown* show(const Ref<Object>&) override { return nullptr; }
  Ref<Object> take(Unknown&) override { return nullptr; }
};

TEST(Arrays, CrossWithTheirShape) {
  NoDoor door;
  const auto block = make_ref<VariantArray>(2, 3);
  for (int row = 1; row <= 2; ++row)
    for (int column = 1; column <= 3; ++column) block->at(row, column) = Variant(10 * row + column);
  block->at(2, 3) = Variant("last");
  const auto list = make_ref<VariantList>(2);
  list->at(1, 1) = Variant("first");
  const Variant values[] = {Variant(Ref<const VariantArray>(block)),
                            Variant(Ref<const VariantArray>(list))};
  for (const Variant& value : values) {
    ComVariant crossed = to_com(value, door);
    EXPECT_EQ(crossed.array->dimensions, value.array().rows());
    const Variant back = from_com(crossed, door);
    EXPECT_EQ(back, value);
    clear(crossed);
  }
  ComVariant crossed = to_com(values[1], door);
  const Variant back = from_com(crossed, door);
  EXPECT_TRUE(dynamic_cast<const VariantList*>(&back.array()));
  clear(crossed);
}

TEST(Arrays, OfOneTypeAreReadAndOthersRefused) {
  NoDoor door;
  double numbers[] = {1.5, 2.5, 3.5, 4.5};
  Array array{2, 0, sizeof(double), 0, numbers, {{2, 0}, {2, 5}}};  // counted from 5 and from 0
  ComVariant value;
  value.type = vt_array | vt_r8;
  value.array = &array;
  const Variant read = from_com(value, door);
  ASSERT_TRUE(read.is_array());
  EXPECT_EQ(read.array().at(2, 1), Variant(2.5));  // a column's elements follow each other
  EXPECT_EQ(read.array().at(1, 2), Variant(3.5));
  array.bounds[0].count = 0;
  EXPECT_TRUE(from_com(value, door).is_empty());
  array.bounds[0].count = 0x80000000u;
  EXPECT_THROW(from_com(value, door), CallFailure);
  array.bounds[0].count = 2;
  array.dimensions = 3;
  EXPECT_THROW(from_com(value, door), CallFailure);
  array.dimensions = 1;
  array.element_size = 4;
  EXPECT_THROW(from_com(value, door), CallFailure);
  value.array = nullptr;
  EXPECT_THROW(from_com(value, door), CallFailure);
}

}  // namespace
}  // namespace qto::server::com
