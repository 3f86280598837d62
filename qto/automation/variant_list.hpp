#pragma once

#include "qto/automation/variant.hpp"

namespace qto {

/// An array of one dimension, numbered from 1, where clients expect no rows: it is kept as the one
/// row at(1, i).
class VariantList final : public VariantArray {
 public:
  explicit VariantList(int count) : VariantArray(1, count) {}
};

}  // namespace qto
