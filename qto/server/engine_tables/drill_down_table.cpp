#include "qto/server/engine_tables/library.hpp"
#include "qto/server/engine_tables/names.hpp"

namespace qto::server::engine_tables {
namespace {

constexpr Member drill_down_members[] = {
    get<&DrillDown::InputCells>(1, "InputCells"),
    get<&DrillDown::ErrorCells>(2, "ErrorCells"),
    get<&DrillDown::StartModelPart>(3, "StartModelPart"),
    get<&DrillDown::StartUnderlyingObject>(4, "StartUnderlyingObject"),
    put_ref<&DrillDown::putref_StartUnderlyingObject>(4, "StartUnderlyingObject", "strt"),
    get<&DrillDown::BooksNotOpened>(5, "BooksNotOpened"),
    get<&DrillDown::MaximumDepth>(6, "MaximumDepth"),
    put<&DrillDown::put_MaximumDepth>(6, "MaximumDepth", "dpth"),
    get<&DrillDown::PartsAnalysed>(7, "PartsAnalysed"),
    method<&DrillDown::DrillHere>(8, "DrillHere"),
    method<&DrillDown::FindInputs>(9, "FindInputs"),
    method<&DrillDown::TraceError>(10, "TraceError"),
    get<&DrillDown::BooksOpened>(11, "BooksOpened"),
    put<&DrillDown::put_MaxItems>(12, "MaxItems", "mite"),
    get<&DrillDown::MaxItems>(12, "MaxItems"),
    get<&DrillDown::DrillOptions>(13, "DrillOptions"),
    put_ref<&DrillDown::putref_DrillOptions>(13, "DrillOptions", "&dr_op"),
    get<&DrillDown::IgnoreConstantIfZeroOrOne>(14, "IgnoreConstantIfZeroOrOne"),
    put<&DrillDown::put_IgnoreConstantIfZeroOrOne>(14, "IgnoreConstantIfZeroOrOne",
                                                   "new_IgnoreConstantIfZeroOrOne"),
    get<&DrillDown::ExceededMaxItems>(15, "ExceededMaxItems"),
    get<&DrillDown::OpaqueCells>(16, "OpaqueCells"),
    get<&DrillDown::Circles>(17, "Circles"),
};
static_assert(identifiers_fit(drill_down_members));

constexpr EventMember drill_down_events[] = {
    event<&DrillDown::AfterOpenBookAttempt>("AfterOpenBookAttempt",
                                            "BookPath, BookFullName, SuccessCode"),
    event<&DrillDown::BeforeInternetAccess>("BeforeInternetAccess", "url, BookName, &Cancel"),
    event<&DrillDown::BeforeGetPrecedents>("BeforeGetPrecedents", "&Parent, &Cancel"),
    event<&DrillDown::DuplicateBookName>("DuplicateBookName",
                                         "&ExistingBook, NewBookPath, NewBookName, &Proceed"),
    event<&DrillDown::AskToOpenBook>("AskToOpenBook", "&CurrentItem, &UserChoice"),
    event<&DrillDown::AskForPassword>("AskForPassword", "&CurrentItem, &Password"),
    event<&DrillDown::RemoveRowAndColumnLabels>("RemoveRowAndColumnLabels", "wbook"),
    event<&DrillDown::MaxItemsExceeded>("MaxItemsExceeded",
                                        "MaxItems, CurrentItems, &StopNow, MemoryUsed"),
    event<&DrillDown::DDEOLELink>("DDEOLELink", "AppName, DocName, Location, &QTOPart"),
};

}  // namespace

constinit const ClassTable drill_down_table{
    "DrillDown",       "A drill: start object, limits, options, results.",
    own_guid(0x11),    own_guid(0x12),
    own_guid(0x13),    drill_down_members,
    drill_down_events, create_object<DrillDown>,
    is_a<DrillDown>};

}  // namespace qto::server::engine_tables
