#include "qto/server/engine_tables/library.hpp"
#include "qto/server/engine_tables/names.hpp"

namespace qto::server::engine_tables {
namespace {

// The third argument may be left out; the others have no standing values at the boundary.
void create(ModelPart& part, Ref<Object>& object, const std::string& likely_type,
            const std::string& unknown_name) {
  part.Create(object, likely_type, unknown_name);
}

constexpr Member model_part_members[] = {
    get<&ModelPart::IsConstant>(1, "IsConstant"),
    put<&ModelPart::put_IsConstant>(1, "IsConstant"),
    get<&ModelPart::HasConstant>(2, "HasConstant"),
    get<&ModelPart::HasError>(3, "HasError"),
    get<&ModelPart::UnderlyingObject>(4, "UnderlyingObject"),
    get<&ModelPart::LocalFile>(5, "LocalFile"),
    get<&ModelPart::WorkBookPath>(6, "WorkBookPath"),
    put<&ModelPart::put_WorkBookPath>(6, "WorkBookPath"),
    get<&ModelPart::WorkBookFullName>(7, "WorkBookFullName"),
    method<&create>(8, "Create", "&Obj, LikelyType, UnknownName?"),
    method<&ModelPart::SetResultsValues>(9, "SetResultsValues"),
    get<&ModelPart::ResultsSet>(10, "ResultsSet"),
    method<&ModelPart::ForceResultsRecalc>(11, "ForceResultsRecalc"),
    get<&ModelPart::CheckedForPrecedents>(12, "CheckedForPrecedents"),
    put<&ModelPart::put_CheckedForPrecedents>(12, "CheckedForPrecedents"),
    get<&ModelPart::Title>(13, "Title"),
    put<&ModelPart::put_Title>(13, "Title"),
    get<&ModelPart::IsUnknown>(14, "IsUnknown"),
    put<&ModelPart::put_IsUnknown>(14, "IsUnknown"),
    get<&ModelPart::AddressShortLocal>(15, "AddressShortLocal"),
    get<&ModelPart::AddressLong>(16, "AddressLong", "Qualifier"),
    get<&ModelPart::AddressLongLocal>(17, "AddressLongLocal", "Qualifier"),
    get<&ModelPart::value>(18, "value"),
    get<&ModelPart::Text>(19, "Text"),
    get<&ModelPart::WorkBookName>(20, "WorkBookName"),
    put<&ModelPart::put_WorkBookName>(20, "WorkBookName"),
    get<&ModelPart::WorkSheetName>(21, "WorkSheetName"),
    put<&ModelPart::put_WorkSheetName>(21, "WorkSheetName"),
    get<&ModelPart::Formula>(22, "Formula"),
    get<&ModelPart::FormulaLocal>(23, "FormulaLocal"),
    get<&ModelPart::AddressShort>(24, "AddressShort"),
    put<&ModelPart::put_AddressShort>(24, "AddressShort"),
    get<&ModelPart::ObjectType>(25, "ObjectType"),
    get<&ModelPart::UniqueKey>(26, "UniqueKey"),
    method<&ModelPart::SelectItem>(27, "SelectItem"),
    get<&ModelPart::EmbeddedChartName>(28, "EmbeddedChartName"),
    get<&ModelPart::FormulaContainsConstant>(29, "FormulaContainsConstant"),
    put<&ModelPart::put_FormulaContainsConstant>(29, "FormulaContainsConstant"),
    method<&ModelPart::CheckForChanges>(30, "CheckForChanges"),
    put_ref<&ModelPart::putref_AllPrecedents>(31, "AllPrecedents"),
    get<&ModelPart::AllPrecedents>(31, "AllPrecedents"),
    get<&ModelPart::ExcelApplication>(32, "ExcelApplication"),
    get<&ModelPart::Workbook>(33, "Workbook"),
    put_ref<&ModelPart::putref_ParentRange>(34, "ParentRange"),
    get<&ModelPart::DirectPrecedents>(35, "DirectPrecedents"),
    put_ref<&ModelPart::putref_DirectPrecedents>(35, "DirectPrecedents"),
    get<&ModelPart::Exists>(36, "Exists"),
    put<&ModelPart::put_Exists>(36, "Exists"),
    get<&ModelPart::IntelligentDrillingUsed>(37, "IntelligentDrillingUsed"),
    put<&ModelPart::put_IntelligentDrillingUsed>(37, "IntelligentDrillingUsed"),
    get<&ModelPart::Sheet>(38, "Sheet"),
    get<&ModelPart::FormulaHidden>(39, "FormulaHidden"),
    get<&ModelPart::DrillRemark>(40, "DrillRemark"),
};
static_assert(identifiers_fit(model_part_members));

constexpr EventMember model_part_events[] = {
    event<&ModelPart::TitleChanged>("TitleChanged", "OldTitle, &NewTitle"),
    event<&ModelPart::AskToUnhide>(
        "AskToUnhide", "&HiddenObject, LocalAddress, &ContainerSheet, &Unhide, &SheetPassword"),
    event<&ModelPart::AfterSetResults>("AfterSetResults"),
    event<&ModelPart::FormulaChanged>("FormulaChanged", "OldFormula, NewFormula"),
    event<&ModelPart::ValueChanged>("ValueChanged", "OldValue, NewValue"),
};

}  // namespace

constinit const ClassTable model_part_table{
    "ModelPart",       "One item of a workbook model: a cell or range, a name, a series, a link.",
    own_guid(0x51),    own_guid(0x52),
    own_guid(0x53),    model_part_members,
    model_part_events, create_object<ModelPart>,
    is_a<ModelPart>};

namespace {

constexpr Member model_parts_members[] = {
    method<&ModelParts::AddExisting>(1, "AddExisting", "&mpart"),
    get<&ModelParts::Count>(2, "Count"),
    get<&ModelParts::Item>(3, "Item", "vitem"),
    method<&ModelParts::Remove>(4, "Remove", "vitem"),
    new_enum<ModelParts>(),
};
static_assert(identifiers_fit(model_parts_members));

constexpr EventMember model_parts_events[] = {
    event<&ModelParts::BeforeItemAdded>("BeforeItemAdded", "&NewItem"),
};

}  // namespace

constinit const ClassTable model_parts_table{
    "ModelParts",       "Parts in order, each under its UniqueKey.",
    own_guid(0x61),     own_guid(0x62),
    own_guid(0x63),     model_parts_members,
    model_parts_events, create_object<ModelParts>,
    is_a<ModelParts>};

}  // namespace qto::server::engine_tables
