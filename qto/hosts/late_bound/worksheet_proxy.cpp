#include "qto/hosts/late_bound/worksheet_proxy.hpp"

#include "qto/host/host.hpp"
#include "qto/hosts/late_bound/name_proxy.hpp"
#include "qto/hosts/late_bound/range_proxy.hpp"

namespace qto::late_bound {

Ref<host::Workbook> WorksheetProxy::Workbook() const {
  if (!workbook_) workbook_ = need<host::Workbook>(HostMember::Parent, "Workbook");
  return workbook_;
}

/// Books in old formats have fewer rows and columns, and names such as XFD1.
CellPos WorksheetProxy::last_cell() const {
  if (last_cell_.row != 0) return last_cell_;
  try {
    last_cell_ = {count_of(part(HostMember::Rows, "Rows")),
                  count_of(part(HostMember::Columns, "Columns"))};
  } catch (const host::HostFailure&) {
    return {max_rows, max_columns};  // a cell must not be missed for a question that failed
  }
  return last_cell_;
}

bool WorksheetProxy::find_block(std::string_view address, Rect& block) const {
  const auto found = parse_range_text(address);
  if (!found) return false;
  const CellPos last = last_cell();
  if ((!found->whole_columns() && found->last.row > last.row) ||
      (!found->whole_rows() && found->last.column > last.column))
    return false;
  block = *found;
  return true;
}

Ref<host::Range> WorksheetProxy::find_range(std::string_view address) const {
  Rect block;
  return exists() && find_block(address, block) ? Block(block) : nullptr;
}

Ref<host::Range> WorksheetProxy::Range(std::string_view address) const {
  Rect block;
  if (find_block(address, block)) return Block(block);
  throw host::HostFailure(host::general_failure, "No range " + std::string(address),
                          "Worksheet.Range");
}

Ref<host::Range> WorksheetProxy::Block(const Rect& block) const {
  if (!block.first.on_grid() || !block.last.on_grid())
    throw host::HostFailure(host::general_failure, "The block lies outside of the grid",
                            "Worksheet.Range");
  return make_ref<RangeProxy>(shared_session(),
                              Ref<WorksheetProxy>(const_cast<WorksheetProxy*>(this)), block);
}

Ref<host::Range> WorksheetProxy::Cells(std::int32_t row, std::int32_t column) const {
  return Block(Rect::cell({row, column}));
}

Remote WorksheetProxy::reach(const Rect& block) const {
  if (block.is_cell()) return cell(block.first);
  return part(HostMember::Range, "Range", {Variant(address_of(block))});
}

Remote WorksheetProxy::cell(CellPos pos) const {
  return part(HostMember::Cells, "Range", {Variant(pos.row), Variant(pos.column)});
}

Ref<host::Range> WorksheetProxy::UsedRange() const {
  return need<host::Range>(HostMember::UsedRange, "Range");
}

Ref<host::DefinedName> WorksheetProxy::find_name(std::string_view name) const {
  try {
    return existing(
        find_object<host::DefinedName>(names(), HostMember::Item, "Name", {Variant(name)}));
  } catch (const host::HostFailure&) {
    return nullptr;
  }
}

Ref<host::DefinedName> WorksheetProxy::Names(std::string_view name) const {
  const auto found = item<host::DefinedName>(names(), HostMember::Item, "Name", {Variant(name)});
  if (!found) fail_nothing(HostMember::Item);
  return found;
}

Ref<host::DefinedName> WorksheetProxy::AddName(std::string_view name, std::string_view refers_to) {
  const auto added = item<host::DefinedName>(names(), HostMember::Add, "Name",
                                             {Variant(name), Variant(refers_to)});
  if (!added) fail_nothing(HostMember::Add);
  return added;
}

Variant WorksheetProxy::Evaluate(std::string_view piece) const {
  if (piece.empty()) return Variant();
  ClassMarshaler marshaler(session(), "Range");
  return remote().get(HostMember::Evaluate, marshaler, {Variant(piece)});
}

bool WorksheetProxy::is_array_formula(CellPos pos) const {
  const auto answer = cell(pos).probe(HostMember::HasArray, session());
  return answer && *answer == Variant(true);
}

Ref<host::Range> WorksheetProxy::seen_from(CellPos pos, const Ref<host::Range>& range) const {
  if (!range || range->CellsCount() == 1 || is_array_formula(pos)) return range;
  const Rect block = range->block();
  if (range->AreasCount() > 1) return nullptr;
  CellPos seen = block.first;
  if (block.columns() == 1)
    seen.row = pos.row;
  else if (block.rows() == 1)
    seen.column = pos.column;
  else
    return nullptr;
  return block.contains(seen) ? range->Worksheet()->Cells(seen.row, seen.column) : nullptr;
}

/// Applications evaluate a text for a sheet, not for a cell; one that knows more has members for
/// it.
Variant WorksheetProxy::value_in_cell(CellPos pos, std::string_view piece) const {
  if (remote().has(HostMember::ValueInCell))
    return get(HostMember::ValueInCell, {Variant(piece), Variant(pos.row), Variant(pos.column)});
  const Variant result = Evaluate(piece);
  const auto range = ref_cast<host::Range>(result.object());
  if (!range) return result;
  const auto seen = seen_from(pos, range);
  return seen ? seen->value() : Variant(ErrorValue::value);
}

Ref<host::Range> WorksheetProxy::range_in_cell(CellPos pos, std::string_view piece) const {
  if (remote().has(HostMember::RangeInCell))
    return object<host::Range>(HostMember::RangeInCell, "Range",
                               {Variant(piece), Variant(pos.row), Variant(pos.column)});
  return ref_cast<host::Range>(Evaluate(piece).object());
}

Ref<host::Range> WorksheetProxy::CircularReference() const {
  return object<host::Range>(HostMember::CircularReference, "Range");
}

std::vector<Ref<host::PivotTable>> WorksheetProxy::PivotTables() const {
  return items<host::PivotTable>(part(HostMember::PivotTables, "PivotTables"), "PivotTable");
}

std::vector<Ref<host::ChartObject>> WorksheetProxy::ChartObjects() const {
  return items<host::ChartObject>(part(HostMember::ChartObjects, "ChartObjects"), "ChartObject");
}

Ref<host::ChartObject> WorksheetProxy::ChartObjects(std::string_view name) const {
  const auto found = item<host::ChartObject>(part(HostMember::ChartObjects, "ChartObjects"),
                                             HostMember::Item, "ChartObject", {Variant(name)});
  if (!found) fail_nothing(HostMember::ChartObjects);
  return found;
}

std::uint64_t WorksheetProxy::IdentityStamp() const noexcept {
  try {
    return session().stamp_of(serial(), Workbook()->FullName() + "\n" + Name());
  } catch (...) {
    return 0;
  }
}

void WorksheetProxy::append_cell_formula(CellPos pos, std::string& out) const {
  const Variant formula = cell(pos).get(HostMember::Formula, session());
  out += converted(HostMember::Formula, formula, com::Shape::text).text();
}

Variant WorksheetProxy::cell_value(CellPos pos) const {
  return cell(pos).get(HostMember::Value, session());
}

bool WorksheetProxy::cell_has_formula(CellPos pos) const {
  const Variant answer = cell(pos).get(HostMember::HasFormula, session());
  return answer == Variant(true);
}

}  // namespace qto::late_bound
