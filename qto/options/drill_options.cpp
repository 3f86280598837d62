#include "qto/options/drill_options.hpp"

#include <algorithm>
#include <initializer_list>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto {
namespace {

void store(qtoDrillType& field, qtoDrillType type, std::initializer_list<qtoDrillType> accepted) {
  if (std::find(accepted.begin(), accepted.end(), type) == accepted.end())
    throw AutomationError(ErrorNumber::out_of_range);
  field = type;
}

}  // namespace

DrillOptions::DrillOptions() {
  Procedure proc("DrillOptions", "Class_Initialize");
  ShowNormal();
}

void DrillOptions::ShowNormal() {
  Procedure proc("DrillOptions", "ShowNormal");
  settings_ = {.parse_if = qtoDrillAll,
               .parse_indirect = qtoDrillIndirectApparent,
               .parse_offset = qtoDrillIndirectApparent,
               .parse_lookup = qtoDrillAll,
               .parse_match = qtoDrillAll,
               .parse_index = qtoDrillAll,
               .parse_sumif = qtoDrillAll,
               .show_blanks = true,
               .show_zeros = true,
               .show_dates = true,
               .reading = settings_.reading};
}

void DrillOptions::ShowAll() {
  Procedure proc("DrillOptions", "ShowAll");
  ShowNormal();
  settings_.parse_indirect = settings_.parse_offset = qtodrillindirectboth;
}

void DrillOptions::ShowMinimal() {
  Procedure proc("DrillOptions", "ShowMinimal");
  settings_ = {.parse_if = qtodrillusedsection,
               .parse_indirect = qtoDrillIndirectReal,
               .parse_offset = qtoDrillIndirectReal,
               .parse_lookup = qtodrillusedsection,
               .parse_match = qtoDrillMatchCondition,
               .parse_index = qtodrillusedsection,
               .parse_sumif = qtodrillusedsection,
               .show_blanks = false,
               .show_zeros = false,
               .show_dates = false,
               .reading = settings_.reading};
}

bool DrillOptions::ShowBlanks() const {
  Procedure proc("DrillOptions", "ShowBlanks[Get]");
  return settings_.show_blanks;
}

void DrillOptions::put_ShowBlanks(bool show) {
  Procedure proc("DrillOptions", "ShowBlanks[Let]");
  settings_.show_blanks = show;
}

bool DrillOptions::ShowZeros() const {
  Procedure proc("DrillOptions", "ShowZeros[Get]");
  return settings_.show_zeros;
}

void DrillOptions::put_ShowZeros(bool show) {
  Procedure proc("DrillOptions", "ShowZeros[Let]");
  settings_.show_zeros = show;
}

bool DrillOptions::ShowDates() const {
  Procedure proc("DrillOptions", "ShowDates[Get]");
  return settings_.show_dates;
}

void DrillOptions::put_ShowDates(bool show) {
  Procedure proc("DrillOptions", "ShowDates[Let]");
  settings_.show_dates = show;
}

qtoDrillType DrillOptions::ParseIf() const {
  Procedure proc("DrillOptions", "ParseIf[Get]");
  return settings_.parse_if;
}

void DrillOptions::put_ParseIf(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseIf[Let]");
  store(settings_.parse_if, type, {qtoDrillAll, qtodrillusedsection, qtodrillconditionandused});
}

qtoDrillType DrillOptions::ParseLookup() const {
  Procedure proc("DrillOptions", "ParseLookup[Get]");
  return settings_.parse_lookup;
}

void DrillOptions::put_ParseLookup(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseLookup[Let]");
  store(settings_.parse_lookup, type, {qtoDrillAll, qtodrillusedsection, qtodrillconditionandused});
}

qtoDrillType DrillOptions::ParseSumif() const {
  Procedure proc("DrillOptions", "ParseSumif[Get]");
  return settings_.parse_sumif;
}

void DrillOptions::put_ParseSumif(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseSumif[Let]");
  store(settings_.parse_sumif, type, {qtoDrillAll, qtodrillusedsection, qtodrillconditionandused});
}

qtoDrillType DrillOptions::ParseIndirect() const {
  Procedure proc("DrillOptions", "ParseIndirect[Get]");
  return settings_.parse_indirect;
}

void DrillOptions::put_ParseIndirect(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseIndirect[Let]");
  store(settings_.parse_indirect, type,
        {qtoDrillIndirectReal, qtoDrillIndirectApparent, qtodrillindirectboth});
}

qtoDrillType DrillOptions::ParseOffset() const {
  Procedure proc("DrillOptions", "ParseOffset[Get]");
  return settings_.parse_offset;
}

void DrillOptions::put_ParseOffset(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseOffset[Let]");
  store(settings_.parse_offset, type,
        {qtoDrillIndirectReal, qtoDrillIndirectApparent, qtodrillindirectboth});
}

qtoDrillType DrillOptions::ParseIndex() const {
  Procedure proc("DrillOptions", "ParseIndex[Get]");
  return settings_.parse_index;
}

void DrillOptions::put_ParseIndex(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseIndex[Let]");
  store(settings_.parse_index, type, {qtoDrillAll, qtodrillusedsection});
}

qtoDrillType DrillOptions::ParseMatch() const {
  Procedure proc("DrillOptions", "ParseMatch[Get]");
  return settings_.parse_match;
}

void DrillOptions::put_ParseMatch(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseMatch[Let]");
  store(settings_.parse_match, type, {qtoDrillAll, qtoDrillMatchCondition});
}

qtoReading DrillOptions::Reading() const {
  Procedure proc("DrillOptions", "Reading[Get]");
  return settings_.reading;
}

void DrillOptions::put_Reading(qtoReading reading) {
  Procedure proc("DrillOptions", "Reading[Let]");
  if (reading != qtoReadAsWritten && reading != qtoReadExact)
    throw AutomationError(ErrorNumber::out_of_range);
  settings_.reading = reading;
}

}  // namespace qto
