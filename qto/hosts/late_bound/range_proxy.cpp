#include "qto/hosts/late_bound/range_proxy.hpp"

#include <algorithm>

#include "qto/host/host.hpp"

namespace qto::late_bound {

RangeProxy::RangeProxy(Ref<Session> session, Remote remote)
    : ProxyOf(std::move(session), std::move(remote)) {
  read_place();
}

RangeProxy::RangeProxy(Ref<Session> session, Ref<WorksheetProxy> sheet, const Rect& block)
    : ProxyOf(std::move(session)), sheet_(sheet), reached_from_(std::move(sheet)), block_(block) {}

const Remote& RangeProxy::remote() const {
  if (!remote_) {
    remote_ = reached_from_->reach(block_);
    enter(const_cast<RangeProxy&>(*this), remote_);
  }
  return remote_;
}

Ref<host::Application> RangeProxy::application() const {
  return remote_ ? ProxyOf::application() : sheet_->Application();
}

bool RangeProxy::exists() const noexcept { return remote_ ? ProxyOf::exists() : sheet_->exists(); }

void RangeProxy::read_place() const {
  // Applications cut addresses of many areas short.
  constexpr std::size_t longest_address = 240;
  const std::string address = text(HostMember::Address);
  const auto area = parse_area(std::string_view(address).substr(0, address.find(',')));
  if (!area) fail_type(HostMember::Address);
  block_ = area->rect();
  areas_ = address.size() < longest_address
               ? static_cast<std::int32_t>(std::count(address.begin(), address.end(), ',')) + 1
               : count_of(part(HostMember::Areas, "Areas"));
}

void RangeProxy::refresh_place() const {
  if (remote_) read_place();
}

Ref<host::Worksheet> RangeProxy::Worksheet() const {
  if (!sheet_) sheet_ = need<host::Worksheet>(HostMember::Worksheet, "Worksheet");
  return sheet_;
}

Rect RangeProxy::block() const {
  refresh_place();
  return block_;
}

int RangeProxy::AreasCount() const {
  refresh_place();
  return areas_;
}

std::int64_t RangeProxy::CellsCount() const {
  refresh_place();
  if (areas_ == 1) return block_.cells();
  const auto count = probe(HostMember::Count);
  if (!count) return block_.cells();
  if (const auto* whole = count->get_if<std::int32_t>()) return *whole;
  const auto* number = count->get_if<double>();
  return number && *number < 1e15 ? static_cast<std::int64_t>(*number) : block_.cells();
}

Ref<host::Range> RangeProxy::Cells(std::int32_t row, std::int32_t column) const {
  const CellPos first = block().first;
  const std::int64_t down = std::int64_t{first.row} + row - 1;
  const std::int64_t across = std::int64_t{first.column} + column - 1;
  if (down < 1 || down > max_rows || across < 1 || across > max_columns)
    throw host::HostFailure(host::general_failure, "The cell lies outside of the grid",
                            "Range.Cells");
  return at(Rect::cell({static_cast<std::int32_t>(down), static_cast<std::int32_t>(across)}));
}

Ref<host::Range> RangeProxy::Rows(std::int32_t k) const {
  const Rect all = block();
  const std::int32_t row = all.first.row + k - 1;
  return at({{row, all.first.column}, {row, all.last.column}});
}

Ref<host::Range> RangeProxy::Columns(std::int32_t k) const {
  const Rect all = block();
  const std::int32_t column = all.first.column + k - 1;
  return at({{all.first.row, column}, {all.last.row, column}});
}

std::string RangeProxy::Address(bool row_absolute, bool column_absolute, std::int32_t style,
                                bool external) const {
  if (!remote_ && style == host::xlA1 && !external)
    return address_of(block_, row_absolute, column_absolute);
  return text(HostMember::Address,
              {Variant(row_absolute), Variant(column_absolute), Variant(style), Variant(external)});
}

std::string RangeProxy::AddressLocal(bool row_absolute, bool column_absolute, std::int32_t style,
                                     bool external) const {
  return text(HostMember::AddressLocal,
              {Variant(row_absolute), Variant(column_absolute), Variant(style), Variant(external)});
}

/// Null says that only some cells hold formulas.
bool RangeProxy::HasFormula() const { return get(HostMember::HasFormula) == Variant(true); }

std::string RangeProxy::Text() const {
  const Variant shown = get(HostMember::Text);
  return shown.is_null() ? "" : converted(HostMember::Text, shown, com::Shape::text).text();
}

Ref<host::DefinedName> RangeProxy::find_name() const {
  try {
    return find_object<host::DefinedName>(remote(), HostMember::Name, "Name");
  } catch (const host::HostFailure&) {
    return nullptr;
  }
}

Ref<host::Range> RangeProxy::End(std::int32_t direction) const {
  return need<host::Range>(HostMember::End, "Range", {Variant(direction)});
}

Ref<host::Range> RangeProxy::EntireRow() const {
  return need<host::Range>(HostMember::EntireRow, "Range");
}

Ref<host::Range> RangeProxy::EntireColumn() const {
  return need<host::Range>(HostMember::EntireColumn, "Range");
}

std::optional<bool> RangeProxy::Hidden() const {
  const Variant hidden = get(HostMember::Hidden);
  if (hidden.is_null()) return std::nullopt;
  return *converted(HostMember::Hidden, hidden, com::Shape::boolean).get_if<bool>();
}

}  // namespace qto::late_bound
