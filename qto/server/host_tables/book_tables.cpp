#include "qto/automation/collection_error.hpp"
#include "qto/automation/variant_list.hpp"
#include "qto/com/conversion.hpp"
#include "qto/server/host_tables/library.hpp"
#include "qto/server/host_tables/names.hpp"

namespace qto::server::host_tables {
namespace {

using host::DefinedName, host::Workbook, host::Workbooks;

Ref<Workbook> find_book(Workbooks& books, const Variant& index) {
  if (index.is_text()) return books.Item(index.text());
  const auto position = position_of(index);
  if (!position) throw_no_such_item();
  return books.Item(static_cast<int>(*position));
}
Ref<Enumerator> walk_books(Workbooks& books) {
  return walk_positions(
      Ref<Object>(&books), [&books] { return books.Count(); },
      [&books](std::int64_t k) { return Ref<Object>(books.Item(static_cast<int>(k))); });
}
/// A file is opened by what it holds, so its Format is not asked for.
Ref<Workbook> open_book(Workbooks& books, const std::string& file_name, const Variant& update_links,
                        const std::optional<bool>& read_only, const Variant&,
                        const std::string& password) {
  std::optional<bool> update;
  if (Variant wanted = update_links; !wanted.is_empty()) {
    if (convert(wanted, {Shape::boolean, ""}) != Conversion::done)
      throw CallFailure(CallError::type_mismatch, 1);
    update = *wanted.get_if<bool>();
  }
  return books.Open(file_name, update, read_only.value_or(false), password);
}

constexpr Member books_members[] = {
    get<&find_book>(default_id, "Item", "Index"),
    get<&Workbooks::Count>(1, "Count"),
    method<&open_book>(2, "Open", "Filename, UpdateLinks?, ReadOnly?, Format?, Password?"),
    method<&Workbooks::Add>(3, "Add"),
    enumerator<&walk_books>(enumerator_id, "NewEnum"),
    get<&application_of>(4, "Application"),
    get<&parent_of>(5, "Parent"),
};
static_assert(identifiers_fit(books_members));

Ref<Object> worksheets_of(Workbook& book) { return make_ref<SheetList>(&book, true); }
Ref<Object> sheets_of(Workbook& book) { return make_ref<SheetList>(&book, false); }
Ref<NameList> names_of_book(Workbook& book) { return make_ref<NameList>(Ref<Workbook>(&book)); }
void close_book(Workbook& book, const std::optional<bool>& save) {
  book.Close(save.value_or(false));
}
/// An array from 1, or Empty when the book has no links of the type.
Variant link_sources(Workbook& book, const std::optional<std::int32_t>& type) {
  const auto sources = book.LinkSources(type.value_or(host::link_type_workbooks));
  if (sources.empty()) return Variant();
  auto list = make_ref<VariantList>(static_cast<int>(sources.size()));
  for (std::size_t i = 0; i < sources.size(); ++i)
    list->at(1, static_cast<int>(i) + 1) = Variant(sources[i]);
  return Variant(Ref<const VariantArray>(list));
}

constexpr Member book_members[] = {
    get<&Workbook::Name>(1, "Name"),
    get<&Workbook::Path>(2, "Path"),
    get<&Workbook::FullName>(3, "FullName"),
    get<&worksheets_of>(4, "Worksheets"),
    get<&sheets_of>(5, "Sheets"),
    get<&names_of_book>(6, "Names"),
    method<&Workbook::Activate>(7, "Activate"),
    method<&close_book>(8, "Close", "SaveChanges?"),
    get<&application_of>(9, "Application"),
    get<&parent_of>(10, "Parent"),
    get<&Workbook::AcceptLabelsInFormulas>(11, "AcceptLabelsInFormulas"),
    put<&Workbook::put_AcceptLabelsInFormulas>(11, "AcceptLabelsInFormulas"),
    method<&link_sources>(12, "LinkSources", "Type?"),
    method<&Workbook::FollowHyperlink>(13, "FollowHyperlink", "Address"),
    method<&Workbook::Unprotect>(14, "Unprotect", "Password?"),
};
static_assert(identifiers_fit(book_members));

constexpr Member sheet_list_members[] = {
    list_members[0], list_members[1], list_members[2],
    list_members[3], list_members[4], method<&SheetList::Add>(4, "Add", "Before?, After?"),
};
static_assert(identifiers_fit(sheet_list_members));

constexpr Member name_list_members[] = {
    list_members[0], list_members[1], list_members[2],
    list_members[3], list_members[4], method<&NameList::Add>(4, "Add", "Name, RefersTo"),
};
static_assert(identifiers_fit(name_list_members));

constexpr Member name_members[] = {
    get<&DefinedName::Name>(1, "Name"),
    get<&DefinedName::RefersTo>(2, "RefersTo"),
    get<&DefinedName::Index>(3, "Index"),
    get<&DefinedName::Visible>(4, "Visible"),
    get<&application_of>(5, "Application"),
    get<&parent_of>(6, "Parent"),
    get<&DefinedName::NameLocal>(7, "NameLocal"),
    get<&DefinedName::RefersToLocal>(8, "RefersToLocal"),
    get<&DefinedName::RefersToR1C1Local>(9, "RefersToR1C1Local"),
};
static_assert(identifiers_fit(name_members));

}  // namespace

constinit const ClassTable workbooks_table =
    host_class<host::Workbooks>("Workbooks", "The open workbooks.", 0x1020, books_members);
constinit const ClassTable workbook_table =
    host_class<host::Workbook>("Workbook", "One open workbook.", 0x1030, book_members);
constinit const ClassTable worksheets_table = host_class<SheetList>(
    "Worksheets", "The worksheets of a workbook.", 0x1040, sheet_list_members);
constinit const ClassTable sheets_table = host_class<SheetList>(
    "Sheets", "The sheets of every kind of a workbook.", 0x1050, sheet_list_members);
constinit const ClassTable names_table = host_class<NameList>(
    "Names", "The names of a workbook or of a sheet.", 0x1060, name_list_members);
constinit const ClassTable name_table =
    host_class<host::DefinedName>("Name", "A defined name.", 0x1090, name_members);

}  // namespace qto::server::host_tables
