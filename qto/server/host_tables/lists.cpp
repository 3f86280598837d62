#include "qto/server/host_tables/lists.hpp"

#include "qto/automation/text.hpp"
#include "qto/com/conversion.hpp"
#include "qto/com/errors.hpp"
#include "qto/server/host_tables/names.hpp"

namespace qto::server::host_tables {
namespace {

[[noreturn]] void no_item(std::string_view list, const std::string& index) {
  throw host::HostFailure(host::no_such_member,
                          "No item " + index + " among the " + std::string(list));
}

}  // namespace

Ref<Object> HostList::Item(const Variant& index) const {
  if (index.is_text()) {
    if (auto found = named(index.text())) return found;
    no_item(type_name_, index.text());
  }
  Variant position = index;
  if (convert(position, {Shape::number, ""}) != Conversion::done)
    throw CallFailure(CallError::type_mismatch, 0);
  const std::int32_t at_position = *position.get_if<std::int32_t>();
  if (at_position < 1 || at_position > Count()) no_item(type_name_, std::to_string(at_position));
  return at(at_position);
}

std::int32_t SheetList::Count() const {
  return worksheets_ ? book_->WorksheetsCount() : book_->SheetsCount();
}

Ref<Object> SheetList::at(std::int32_t position) const {
  if (worksheets_) return book_->Worksheets(position);
  return book_->Sheets(position);
}

Ref<Object> SheetList::named(std::string_view name) const {
  if (worksheets_) return book_->Worksheets(name);
  return book_->Sheets(name);
}

Ref<host::Worksheet> SheetList::Add(const Variant& before, const Variant& after) const {
  const auto neighbour = ref_cast<host::Sheet>(after.object());
  const bool at_end =
      before.is_empty() &&
      (after.is_empty() || (neighbour && neighbour->Index() == book_->SheetsCount()));
  if (!at_end) throw host::HostFailure(host::general_failure, "New worksheets come last");
  return book_->AddWorksheet();
}

NameList::NameList(Ref<host::Application> application)
    : HostList("Names", application),
      book_(application->ActiveWorkbook()),
      application_(std::move(application)) {
  if (!book_) throw host::HostFailure(host::general_failure, "No workbook is active");
}

std::vector<Ref<host::DefinedName>> NameList::all() const {
  auto names = book_->AllNames();
  if (sheet_) {
    const int own = sheet_->Index();
    std::erase_if(names, [&](const Ref<host::DefinedName>& name) {
      const auto sheet = ref_cast<host::Sheet>(name->Parent());
      return !sheet || sheet->Index() != own;
    });
  }
  return names;
}

std::int32_t NameList::Count() const { return static_cast<std::int32_t>(all().size()); }

Ref<Object> NameList::at(std::int32_t position) const {
  return all()[static_cast<std::size_t>(position) - 1];
}

Ref<Object> NameList::named(std::string_view name) const {
  if (application_) return application_->Names(name);
  if (sheet_) return sheet_->Names(name);
  return book_->Names(name);
}

Ref<host::DefinedName> NameList::Add(std::string_view name, std::string_view refers_to) const {
  return sheet_ ? sheet_->AddName(name, refers_to) : book_->AddName(name, refers_to);
}

std::int32_t LineList::Count() const {
  return rows_ ? range_->RowsCount() : range_->ColumnsCount();
}

Ref<Object> LineList::at(std::int32_t position) const {
  return rows_ ? range_->Rows(position) : range_->Columns(position);
}

/// Columns are also called by their letters, counted from the first one of the range.
Ref<Object> LineList::named(std::string_view name) const {
  const std::int32_t column = rows_ ? 0 : take_column(name);
  if (column < 1 || column > Count() || !name.empty()) return nullptr;
  return at(column);
}

template <class Element>
Ref<Object> ItemList<Element>::named(std::string_view name) const {
  for (const Ref<Element>& item : items_)
    if (text::equal_fold(item->Name(), name)) return item;
  return nullptr;
}
template <>
Ref<Object> ItemList<host::Range>::named(std::string_view) const {
  return nullptr;
}
template class ItemList<host::Range>;
template class ItemList<host::Series>;
template class ItemList<host::ChartObject>;
template class ItemList<host::PivotTable>;

std::vector<Ref<host::Range>> areas_of(const host::Range& range) {
  std::vector<Ref<host::Range>> areas;
  const std::string all = range.Address();
  std::string_view rest = all;
  for (std::size_t comma = 0; comma != std::string_view::npos; rest.remove_prefix(comma + 1)) {
    comma = rest.find(',');
    areas.push_back(range.Worksheet()->Range(rest.substr(0, comma)));
    if (comma == std::string_view::npos) break;
  }
  return areas;
}

namespace {

class PositionWalk final : public Enumerator {
 public:
  PositionWalk(Ref<Object> list, std::function<std::int64_t()> count,
               std::function<Ref<Object>(std::int64_t)> item, std::int64_t done)
      : list_(std::move(list)), count_(std::move(count)), item_(std::move(item)), done_(done) {}
  bool next(Variant& item) override {
    if (done_ >= count_()) return false;
    item = Variant(item_(++done_));
    return true;
  }
  void reset() override { done_ = 0; }
  Ref<Enumerator> clone() const override {
    return make_ref<PositionWalk>(list_, count_, item_, done_);
  }

 private:
  Ref<Object> list_;
  std::function<std::int64_t()> count_;
  std::function<Ref<Object>(std::int64_t)> item_;
  std::int64_t done_;
};

}  // namespace

Ref<Enumerator> walk_positions(Ref<Object> list, std::function<std::int64_t()> count,
                               std::function<Ref<Object>(std::int64_t)> item) {
  return make_ref<PositionWalk>(std::move(list), std::move(count), std::move(item), 0);
}

}  // namespace qto::server::host_tables
