#pragma once

#include <cstdint>
#include <string_view>

#include "qto/host/host_object.hpp"

namespace qto::host {

class Range;

class Pane : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "Pane"; }
  virtual Ref<Range> VisibleRange() const = 0;
  virtual void SmallScroll(std::int32_t up, std::int32_t to_left) = 0;
};

class Window : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "Window"; }
  virtual Ref<Pane> ActivePane() const = 0;
  virtual std::int32_t ScrollRow() const = 0;
  virtual std::int32_t ScrollColumn() const = 0;
  virtual void put_ScrollRow(std::int32_t row) = 0;
  virtual void put_ScrollColumn(std::int32_t column) = 0;
};

}  // namespace qto::host
