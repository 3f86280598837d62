#include "qto/automation/collection_error.hpp"
#include "qto/automation/server/host_names.hpp"
#include "qto/automation/server/host_tables.hpp"

namespace qto::server {
namespace {

using host::Application, host::Workbook, host::Workbooks;

Ref<Workbook> find_book(Workbooks& books, const Variant& index) {
  if (index.is_text()) return books.Item(index.text());
  const auto position = position_of(index);
  if (!position) throw_no_such_item();
  return books.Item(static_cast<int>(*position));
}
struct BookItems {
  Workbooks& books;
  std::int32_t Count() const { return books.Count(); }
  Ref<Object> Item(const Variant& index) const { return find_book(books, index); }
};
Ref<Enumerator> walk_books(Workbooks& books) {
  BookItems items{books};
  return walk_items(items);
}
Ref<Workbook> open_book(Workbooks& books, const std::string& file_name,
                        const std::optional<bool>& update_links,
                        const std::optional<bool>& read_only, const std::string& password) {
  return books.Open(file_name, update_links, read_only.value_or(false), password);
}
Ref<Object> application_of(host::HostObject& object) { return object.Application(); }
Ref<Object> parent_of(host::HostObject& object) { return object.Parent(); }

constexpr Member application_members[] = {
    get<&Application::Workbooks>(1, "Workbooks"),
    get<&Application::ActiveWorkbook>(2, "ActiveWorkbook"),
    get<&Application::ActiveSheet>(3, "ActiveSheet"),
    get<&Application::Selection>(4, "Selection"),
    get<&Application::Caption>(5, "Caption"),
    get<&Application::ReferenceStyle>(6, "ReferenceStyle"),
    get<&Application::ScreenUpdating>(7, "ScreenUpdating"),
    put<&Application::put_ScreenUpdating>(7, "ScreenUpdating"),
    get<&Application::EnableEvents>(8, "EnableEvents"),
    put<&Application::put_EnableEvents>(8, "EnableEvents"),
    get<&Application::DisplayAlerts>(9, "DisplayAlerts"),
    put<&Application::put_DisplayAlerts>(9, "DisplayAlerts"),
    method<&Application::Intersect>(10, "Intersect", "Arg1, Arg2"),
    get<&application_of>(11, "Application"),
    get<&parent_of>(12, "Parent"),
};
static_assert(identifiers_fit(application_members));

constexpr Member books_members[] = {
    get<&find_book>(default_id, "Item", "Index"),
    get<&Workbooks::Count>(1, "Count"),
    method<&open_book>(2, "Open", "Filename, UpdateLinks?, ReadOnly?, Password?"),
    method<&Workbooks::Add>(3, "Add"),
    entry<Kind::enumerator, &walk_books>(enumerator_id, "NewEnum", ""),
    get<&application_of>(4, "Application"),
    get<&parent_of>(5, "Parent"),
};
static_assert(identifiers_fit(books_members));

Ref<SheetList> worksheets_of(Workbook& book) { return make_ref<SheetList>(&book, true); }
Ref<SheetList> sheets_of(Workbook& book) { return make_ref<SheetList>(&book, false); }
Ref<NameList> names_of(Workbook& book) { return make_ref<NameList>(&book); }
void close_book(Workbook& book, const std::optional<bool>& save) {
  book.Close(save.value_or(false));
}

constexpr Member book_members[] = {
    get<&Workbook::Name>(1, "Name"),
    get<&Workbook::Path>(2, "Path"),
    get<&Workbook::FullName>(3, "FullName"),
    get<&worksheets_of>(4, "Worksheets"),
    get<&sheets_of>(5, "Sheets"),
    get<&names_of>(6, "Names"),
    method<&Workbook::Activate>(7, "Activate"),
    method<&close_book>(8, "Close", "SaveChanges?"),
    get<&application_of>(9, "Application"),
    get<&parent_of>(10, "Parent"),
};
static_assert(identifiers_fit(book_members));

constexpr Member sheet_list_members[] = {
    get<&SheetList::Item>(default_id, "Item", "Index"),
    get<&SheetList::Count>(1, "Count"),
    method<&SheetList::Add>(2, "Add"),
    get<&SheetList::Parent>(3, "Parent"),
    new_list_enum<SheetList>(),
};
static_assert(identifiers_fit(sheet_list_members));

constexpr Member name_list_members[] = {
    get<&NameList::Item>(default_id, "Item", "Index"),
    get<&NameList::Count>(1, "Count"),
    method<&NameList::Add>(2, "Add", "Name, RefersTo"),
    new_list_enum<NameList>(),
};
static_assert(identifiers_fit(name_list_members));

}  // namespace

constinit const ClassTable application_table{"Application",
                                             "The spreadsheet application.",
                                             own_guid(0x1011),
                                             own_guid(0x1012),
                                             {},
                                             application_members,
                                             {},
                                             nullptr};
constinit const ClassTable workbooks_table{
    "Workbooks", "The open workbooks.", own_guid(0x1021), own_guid(0x1022), {}, books_members, {},
    nullptr};
constinit const ClassTable workbook_table{
    "Workbook", "One open workbook.", own_guid(0x1031), own_guid(0x1032), {}, book_members, {},
    nullptr};
constinit const ClassTable worksheets_table{"Worksheets",
                                            "The worksheets of a workbook.",
                                            own_guid(0x1041),
                                            own_guid(0x1042),
                                            {},
                                            sheet_list_members,
                                            {},
                                            nullptr};
constinit const ClassTable sheets_table{"Sheets",
                                        "The sheets of every kind of a workbook.",
                                        own_guid(0x1051),
                                        own_guid(0x1052),
                                        {},
                                        sheet_list_members,
                                        {},
                                        nullptr};
constinit const ClassTable names_table{"Names",
                                       "The names of a workbook.",
                                       own_guid(0x1061),
                                       own_guid(0x1062),
                                       {},
                                       name_list_members,
                                       {},
                                       nullptr};

}  // namespace qto::server
