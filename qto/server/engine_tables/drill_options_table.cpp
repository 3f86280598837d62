#include "qto/server/engine_tables/library.hpp"
#include "qto/server/engine_tables/names.hpp"

namespace qto::server::engine_tables {
namespace {

constexpr Member drill_options_members[] = {
    get<&DrillOptions::ShowBlanks>(1, "ShowBlanks"),
    put<&DrillOptions::put_ShowBlanks>(1, "ShowBlanks"),
    get<&DrillOptions::ShowZeros>(2, "ShowZeros"),
    put<&DrillOptions::put_ShowZeros>(2, "ShowZeros"),
    get<&DrillOptions::ShowDates>(3, "ShowDates"),
    put<&DrillOptions::put_ShowDates>(3, "ShowDates"),
    method<&DrillOptions::ShowNormal>(4, "ShowNormal"),
    method<&DrillOptions::ShowAll>(5, "ShowAll"),
    method<&DrillOptions::ShowMinimal>(6, "ShowMinimal"),
    get<&DrillOptions::ParseIf>(7, "ParseIf"),
    put<&DrillOptions::put_ParseIf>(7, "ParseIf"),
    get<&DrillOptions::ParseLookup>(8, "ParseLookup"),
    put<&DrillOptions::put_ParseLookup>(8, "ParseLookup"),
    get<&DrillOptions::ParseSumif>(9, "ParseSumif"),
    put<&DrillOptions::put_ParseSumif>(9, "ParseSumif"),
    get<&DrillOptions::ParseIndirect>(10, "ParseIndirect"),
    put<&DrillOptions::put_ParseIndirect>(10, "ParseIndirect"),
    get<&DrillOptions::ParseOffset>(11, "ParseOffset"),
    put<&DrillOptions::put_ParseOffset>(11, "ParseOffset"),
    get<&DrillOptions::ParseIndex>(12, "ParseIndex"),
    put<&DrillOptions::put_ParseIndex>(12, "ParseIndex"),
    get<&DrillOptions::ParseMatch>(13, "ParseMatch"),
    put<&DrillOptions::put_ParseMatch>(13, "ParseMatch"),
    get<&DrillOptions::Reading>(14, "Reading"),
    put<&DrillOptions::put_Reading>(14, "Reading"),
};
static_assert(identifiers_fit(drill_options_members));

}  // namespace

constinit const ClassTable drill_options_table{"DrillOptions",
                                               "What to show and how to drill special functions.",
                                               own_guid(0x71),
                                               own_guid(0x72),
                                               {},
                                               drill_options_members,
                                               {},
                                               create_object<DrillOptions>,
                                               is_a<DrillOptions>};

}  // namespace qto::server::engine_tables
