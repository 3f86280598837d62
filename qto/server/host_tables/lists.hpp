#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qto/host/host.hpp"
#include "qto/server/tables/enumerator.hpp"
#include "qto/server/tables/table.hpp"

/// Collections that clients of the host hold and its interface does not need.
namespace qto::server::host_tables {

/// A collection of a fixed number of items, reached by position from 1 or by name.
class HostList : public Object {
 public:
  std::string_view TypeName() const noexcept final { return type_name_; }
  Ref<host::HostObject> Parent() const { return parent_; }
  Ref<host::Application> Application() const { return parent_->Application(); }
  virtual std::int32_t Count() const = 0;
  /// Throws HostFailure when there is none.
  Ref<Object> Item(const Variant& index) const;

 protected:
  HostList(std::string_view type_name, Ref<host::HostObject> parent)
      : type_name_(type_name), parent_(std::move(parent)) {}
  /// `position` is within 1 and Count().
  virtual Ref<Object> at(std::int32_t position) const = 0;
  virtual Ref<Object> named(std::string_view name) const = 0;

 private:
  std::string_view type_name_;
  Ref<host::HostObject> parent_;
};

/// The sheets of a workbook: all of them or worksheets alone.
class SheetList final : public HostList {
 public:
  SheetList(Ref<host::Workbook> book, bool worksheets)
      : HostList(worksheets ? "Worksheets" : "Sheets", book),
        book_(std::move(book)),
        worksheets_(worksheets) {}
  std::int32_t Count() const override;
  /// A new worksheet at the end, the only place that `before` and `after` may name.
  Ref<host::Worksheet> Add(const Variant& before, const Variant& after) const;

 private:
  Ref<Object> at(std::int32_t position) const override;
  Ref<Object> named(std::string_view name) const override;
  Ref<host::Workbook> book_;
  bool worksheets_;
};

/// The names of a workbook with those of its sheets, or of one sheet.
class NameList final : public HostList {
 public:
  explicit NameList(Ref<host::Workbook> book) : HostList("Names", book), book_(std::move(book)) {}
  explicit NameList(Ref<host::Worksheet> sheet)
      : HostList("Names", sheet), book_(sheet->Workbook()), sheet_(std::move(sheet)) {}
  /// Those of the active workbook, by name as formulas on its active sheet see them.
  explicit NameList(Ref<host::Application> application);
  std::int32_t Count() const override;
  Ref<host::DefinedName> Add(std::string_view name, std::string_view refers_to) const;

 private:
  Ref<Object> at(std::int32_t position) const override;
  Ref<Object> named(std::string_view name) const override;
  std::vector<Ref<host::DefinedName>> all() const;
  Ref<host::Workbook> book_;
  Ref<host::Worksheet> sheet_;
  Ref<host::Application> application_;
};

/// The rows or the columns of a range.
class LineList final : public HostList {
 public:
  LineList(Ref<host::Range> range, bool rows)
      : HostList(rows ? "Rows" : "Columns", range), range_(std::move(range)), rows_(rows) {}
  std::int32_t Count() const override;

 private:
  Ref<Object> at(std::int32_t position) const override;
  Ref<Object> named(std::string_view name) const override;
  Ref<host::Range> range_;
  bool rows_;
};

/// Items that were gathered when the list was asked for.
template <class Element>
class ItemList final : public HostList {
 public:
  ItemList(std::string_view type_name, Ref<host::HostObject> parent,
           std::vector<Ref<Element>> items)
      : HostList(type_name, std::move(parent)), items_(std::move(items)) {}
  std::int32_t Count() const override { return static_cast<std::int32_t>(items_.size()); }

 private:
  Ref<Object> at(std::int32_t position) const override {
    return items_[static_cast<std::size_t>(position) - 1];
  }
  Ref<Object> named(std::string_view name) const override;
  std::vector<Ref<Element>> items_;
};
template <>
Ref<Object> ItemList<host::Range>::named(std::string_view name) const;
extern template class ItemList<host::Range>;
extern template class ItemList<host::Series>;
extern template class ItemList<host::ChartObject>;
extern template class ItemList<host::PivotTable>;

/// The surface of a chart, which stands for the whole chart where something is selected.
class ChartArea final : public Object {
 public:
  explicit ChartArea(Ref<host::Chart> chart) : chart_(std::move(chart)) {}
  std::string_view TypeName() const noexcept override { return "ChartArea"; }
  void Select() { chart_->SelectChartArea(); }
  Ref<host::Chart> Parent() const { return chart_; }
  Ref<host::Application> Application() const { return chart_->Application(); }

 private:
  Ref<host::Chart> chart_;
};

/// The separate blocks of a range, in order.
std::vector<Ref<host::Range>> areas_of(const host::Range& range);

}  // namespace qto::server::host_tables
