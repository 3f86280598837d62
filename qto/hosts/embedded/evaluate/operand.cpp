#include "qto/hosts/embedded/evaluate/operand.hpp"

namespace qto::embedded {

Operand Operand::of_areas(std::vector<Area> areas, bool over_sheets) {
  if (areas.empty()) return ErrorValue::ref;
  if (areas.size() == 1) return areas.front();
  Operand result;
  result.data_ = Ref<const AreaList>(new AreaList(std::move(areas), over_sheets));
  return result;
}

std::span<const Area> Operand::areas() const noexcept {
  if (const Area* one = area()) return {one, 1};
  if (const auto* list = std::get_if<Ref<const AreaList>>(&data_)) return (*list)->areas;
  return {};
}

bool Operand::is_span() const noexcept {
  const auto* list = std::get_if<Ref<const AreaList>>(&data_);
  return list && (*list)->span;
}

}  // namespace qto::embedded
