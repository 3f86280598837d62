#include "qto/server/engine_tables/library.hpp"
#include "qto/server/engine_tables/names.hpp"

namespace qto::server::engine_tables {
namespace {

constexpr Member linked_book_members[] = {
    get<&LinkedBook::Opened>(1, "Opened"),
    get<&LinkedBook::WhyNotOpened>(2, "WhyNotOpened"),
    put<&LinkedBook::put_WhyNotOpened>(2, "WhyNotOpened"),
    get<&LinkedBook::FullNameWithPath>(3, "FullNameWithPath"),
    method<&LinkedBook::OpenIt>(4, "OpenIt", "&InApp"),
    put<&LinkedBook::put_Path>(5, "Path"),
    get<&LinkedBook::Path>(5, "Path"),
    get<&LinkedBook::IsLocalFile>(6, "IsLocalFile"),
    get<&LinkedBook::Name>(7, "Name"),
    put<&LinkedBook::put_Name>(7, "Name", "new_Name"),
    get<&LinkedBook::Password>(8, "Password"),
    put<&LinkedBook::put_Password>(8, "Password", "new_Password"),
    method<&LinkedBook::CloseBook>(9, "CloseBook"),
};
static_assert(identifiers_fit(linked_book_members));

constexpr Member linked_books_members[] = {
    method<&LinkedBooks::AddExisting>(1, "AddExisting", "&new_lb"),
    get<&LinkedBooks::Count>(2, "Count"),
    get<&LinkedBooks::Item>(3, "Item", "vitem"),
    method<&LinkedBooks::Remove>(4, "Remove", "vitem"),
    new_enum<LinkedBooks>(),
    method<&LinkedBooks::CloseBooks>(5, "CloseBooks"),
};
static_assert(identifiers_fit(linked_books_members));

constexpr Member link_list_members[] = {
    put_ref<&LinkList::putref_Workbook>(1, "Workbook", "&Value"),
    get<&LinkList::Workbook>(1, "Workbook"),
    get<&LinkList::CountLinks>(2, "CountLinks"),
    get<&LinkList::Links>(3, "Links", "Index"),
};
static_assert(identifiers_fit(link_list_members));

}  // namespace

constinit const ClassTable linked_book_table{"LinkedBook",
                                             "One external workbook met during drilling.",
                                             own_guid(0x21),
                                             own_guid(0x22),
                                             {},
                                             linked_book_members,
                                             {},
                                             create_object<LinkedBook>,
                                             is_a<LinkedBook>};
constinit const ClassTable linked_books_table{
    "LinkedBooks",
    "Linked workbooks in order, each under its full name.",
    own_guid(0x31),
    own_guid(0x32),
    {},
    linked_books_members,
    {},
    create_object<LinkedBooks>,
    is_a<LinkedBooks>};
constinit const ClassTable link_list_table{"LinkList",
                                           "The link sources of one workbook.",
                                           own_guid(0x41),
                                           own_guid(0x42),
                                           {},
                                           link_list_members,
                                           {},
                                           create_object<LinkList>,
                                           is_a<LinkList>};

}  // namespace qto::server::engine_tables
