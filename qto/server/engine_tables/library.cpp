#include "qto/server/engine_tables/library.hpp"

#include "qto/automation/enumerations.hpp"
#include "qto/automation/text.hpp"

namespace qto::server {
namespace {

using namespace engine_tables;

#define ITEM(name) \
  { #name, name }

constexpr EnumerationItem drill_types[] = {
    ITEM(qtoDrillAll),           ITEM(qtodrillusedsection),      ITEM(qtodrillconditionandused),
    ITEM(qtoDrillIndirectReal),  ITEM(qtoDrillIndirectApparent), ITEM(qtodrillindirectboth),
    ITEM(qtoDrillMatchCondition)};
constexpr EnumerationItem reasons_not_opened[] = {
    ITEM(qtoWNOOK),       ITEM(qtownoUserDecision),  ITEM(qtoWNOCircularReference),
    ITEM(qtownoNotFound), ITEM(qtownoDuplicateName), ITEM(qtownoOther)};
constexpr EnumerationItem address_types[] = {ITEM(qtoaddressSheet), ITEM(qtoaddressBook),
                                             ITEM(qtoaddressPath), ITEM(qtoAddressChart)};
constexpr EnumerationItem reasons_not_select[] = {ITEM(qtoSelectOK), ITEM(qtoBookNotOpen),
                                                  ITEM(qtoItemHidden), ITEM(qtoCouldNotUnhide),
                                                  ITEM(qtoNotSelectableObject)};
constexpr EnumerationItem contains_constant[] = {ITEM(qtoNoConstantInFormula),
                                                 ITEM(qtoFormulaContainsConstant),
                                                 ITEM(qtoFormulaContainsConstZeroOrOne)};
constexpr EnumerationItem readings[] = {ITEM(qtoReadAsWritten), ITEM(qtoReadExact)};
#undef ITEM

constexpr EnumerationTable enumerations[] = {
    {"qtoDrillType", "How a special worksheet function is drilled.", own_guid(0x81), drill_types},
    {"qtoReasonNotOpened", "Outcome of an attempt to open a linked workbook.", own_guid(0x82),
     reasons_not_opened},
    {"qtoAddressType", "Qualifier of a long address.", own_guid(0x83), address_types},
    {"qtoReasonNotSelect", "Outcome of selecting a part in the host.", own_guid(0x84),
     reasons_not_select},
    {"qtoContainsConstant", "Whether a formula holds a literal constant.", own_guid(0x85),
     contains_constant},
    {"qtoReading", "How formulas are read.", own_guid(0x86), readings},
};
constexpr const EnumerationTable* enumeration_list[] = {
    &enumerations[0], &enumerations[1], &enumerations[2],
    &enumerations[3], &enumerations[4], &enumerations[5]};
constexpr const ClassTable* class_list[] = {
    &drill_down_table, &linked_book_table, &linked_books_table, &link_list_table,
    &model_part_table, &model_parts_table, &drill_options_table};

}  // namespace

const LibraryTable& engine_library() {
  static constexpr LibraryTable library{"QTOEngine", "Underlying drilling functionality.",
                                        own_guid(0x01), class_list, enumeration_list};
  return library;
}

const ClassTable* find_class(const LibraryTable& library, std::string_view name) {
  for (const ClassTable* table : library.classes)
    if (text::equal_ascii_nocase(table->name, name)) return table;
  return nullptr;
}

}  // namespace qto::server
