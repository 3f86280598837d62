#include "qto/engine/options/drill_options.hpp"

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
  parse_if_ = parse_lookup_ = parse_match_ = parse_index_ = parse_sumif_ = qtoDrillAll;
  parse_indirect_ = parse_offset_ = qtoDrillIndirectApparent;
  show_blanks_ = show_zeros_ = show_dates_ = true;
}

void DrillOptions::ShowAll() {
  Procedure proc("DrillOptions", "ShowAll");
  ShowNormal();
  parse_indirect_ = parse_offset_ = qtodrillindirectboth;
}

void DrillOptions::ShowMinimal() {
  Procedure proc("DrillOptions", "ShowMinimal");
  parse_if_ = parse_lookup_ = parse_index_ = parse_sumif_ = qtodrillusedsection;
  parse_match_ = qtoDrillMatchCondition;
  parse_indirect_ = parse_offset_ = qtoDrillIndirectReal;
  show_blanks_ = show_zeros_ = show_dates_ = false;
}

bool DrillOptions::ShowBlanks() const {
  Procedure proc("DrillOptions", "ShowBlanks[Get]");
  return show_blanks_;
}

void DrillOptions::put_ShowBlanks(bool show) {
  Procedure proc("DrillOptions", "ShowBlanks[Let]");
  show_blanks_ = show;
}

bool DrillOptions::ShowZeros() const {
  Procedure proc("DrillOptions", "ShowZeros[Get]");
  return show_zeros_;
}

void DrillOptions::put_ShowZeros(bool show) {
  Procedure proc("DrillOptions", "ShowZeros[Let]");
  show_zeros_ = show;
}

bool DrillOptions::ShowDates() const {
  Procedure proc("DrillOptions", "ShowDates[Get]");
  return show_dates_;
}

void DrillOptions::put_ShowDates(bool show) {
  Procedure proc("DrillOptions", "ShowDates[Let]");
  show_dates_ = show;
}

qtoDrillType DrillOptions::ParseIf() const {
  Procedure proc("DrillOptions", "ParseIf[Get]");
  return parse_if_;
}

void DrillOptions::put_ParseIf(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseIf[Let]");
  store(parse_if_, type, {qtoDrillAll, qtodrillusedsection, qtodrillconditionandused});
}

qtoDrillType DrillOptions::ParseLookup() const {
  Procedure proc("DrillOptions", "ParseLookup[Get]");
  return parse_lookup_;
}

void DrillOptions::put_ParseLookup(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseLookup[Let]");
  store(parse_lookup_, type, {qtoDrillAll, qtodrillusedsection, qtodrillconditionandused});
}

qtoDrillType DrillOptions::ParseSumif() const {
  Procedure proc("DrillOptions", "ParseSumif[Get]");
  return parse_sumif_;
}

void DrillOptions::put_ParseSumif(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseSumif[Let]");
  store(parse_sumif_, type, {qtoDrillAll, qtodrillusedsection, qtodrillconditionandused});
}

qtoDrillType DrillOptions::ParseIndirect() const {
  Procedure proc("DrillOptions", "ParseIndirect[Get]");
  return parse_indirect_;
}

void DrillOptions::put_ParseIndirect(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseIndirect[Let]");
  store(parse_indirect_, type,
        {qtoDrillIndirectReal, qtoDrillIndirectApparent, qtodrillindirectboth});
}

qtoDrillType DrillOptions::ParseOffset() const {
  Procedure proc("DrillOptions", "ParseOffset[Get]");
  return parse_offset_;
}

void DrillOptions::put_ParseOffset(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseOffset[Let]");
  store(parse_offset_, type,
        {qtoDrillIndirectReal, qtoDrillIndirectApparent, qtodrillindirectboth});
}

qtoDrillType DrillOptions::ParseIndex() const {
  Procedure proc("DrillOptions", "ParseIndex[Get]");
  return parse_index_;
}

void DrillOptions::put_ParseIndex(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseIndex[Let]");
  store(parse_index_, type, {qtoDrillAll, qtodrillusedsection});
}

qtoDrillType DrillOptions::ParseMatch() const {
  Procedure proc("DrillOptions", "ParseMatch[Get]");
  return parse_match_;
}

void DrillOptions::put_ParseMatch(qtoDrillType type) {
  Procedure proc("DrillOptions", "ParseMatch[Let]");
  store(parse_match_, type, {qtoDrillAll, qtoDrillMatchCondition});
}

}  // namespace qto
