#include "qto/hosts/embedded/xlsx/cell_formulas.hpp"

#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {

void CellFormulas::start(const char* const* attributes) {
  kind_ = Kind::normal;
  text_.clear();
  ref_.clear();
  group_ = -1;
  first_input_.clear();
  second_input_.clear();
  two_inputs_ = row_input_ = false;
  for (; *attributes; attributes += 2) {
    const std::string_view name = attributes[0];
    const char* value = attributes[1];
    if (name == "t") {
      const std::string_view type = value;
      kind_ = type == "shared"      ? Kind::shared
              : type == "array"     ? Kind::array
              : type == "dataTable" ? Kind::data_table
                                    : Kind::normal;
    } else if (name == "si") {
      group_ = whole_number(value).value_or(-1);
    } else if (name == "ref") {
      ref_ = value;
    } else if (name == "r1") {
      first_input_ = value;
    } else if (name == "r2") {
      second_input_ = value;
    } else if (name == "dt2D") {
      two_inputs_ = xml_boolean(value);
    } else if (name == "dtr") {
      row_input_ = xml_boolean(value);
    }
  }
}

void CellFormulas::store(CellPos at, bool has_result) {
  decode_escapes(text_);
  switch (kind_) {
    case Kind::none:
      return;
    case Kind::normal:
      if (!text_.empty()) give(at, context_.formulas.intern(text_, at), has_result);
      return;
    case Kind::shared:
      return store_shared(at, has_result);
    case Kind::array:
    case Kind::data_table:
      return store_block(at, has_result);
  }
}

void CellFormulas::store_shared(CellPos at, bool has_result) {
  if (text_.empty()) {
    if (group_ < 0) return;
    const FormulaId known = master(group_);
    if (known != 0)
      give(at, known, has_result);
    else
      early_children_.push_back({at, group_, has_result});
    return;
  }
  const FormulaId id = context_.formulas.intern(text_, at);
  give(at, id, has_result);
  // A child may repeat its text; only the master states the range.
  if (group_ >= 0 && (!ref_.empty() || master(group_) == 0)) master(group_) = id;
}

void CellFormulas::store_block(CellPos at, bool has_result) {
  if (kind_ == Kind::array && text_.empty()) return;
  const Rect block = block_from(at);
  const FormulaId id = kind_ == Kind::array
                           ? context_.formulas.add_array(text_, block)
                           : context_.formulas.add_data_table(data_table_text(), block);
  const std::size_t large = sheet_.large_blocks().size();
  sheet_.set_block_formula(block, id);
  if (sheet_.large_blocks().size() == large) context_.array_cells += block.cells();
  const auto refuse = [&](std::uint64_t Limits::*limit) {
    context_.package.fail_beyond(
        limit, "", "the array formulas of sheet \"" + sheet_.name + "\" cover too many cells");
  };
  if (static_cast<std::uint64_t>(context_.array_cells) > context_.limits().array_cells)
    refuse(&Limits::array_cells);
  if (large >= context_.limits().large_arrays) refuse(&Limits::large_arrays);
  context_.check_cells(sheet_);
  give(at, id, has_result);
}

void CellFormulas::give(CellPos at, FormulaId id, bool has_result) {
  sheet_.cells.set_formula(at, id);
  if (has_result)
    context_.results.any = true;
  else
    context_.results.missing.push_back({&sheet_, at});
}

FormulaId& CellFormulas::master(std::int64_t group) {
  constexpr std::int64_t usual_groups = 1 << 20;
  if (group >= usual_groups) return odd_masters_[group];
  const auto index = static_cast<std::size_t>(group);
  if (index >= masters_.size()) masters_.resize(index + 1);
  return masters_[index];
}

Rect CellFormulas::block_from(CellPos at) const {
  const auto written = parse_area(ref_);
  // The block hangs on its first cell; anything else is not what an application writes.
  if (!written || written->rect().first != at) return Rect::cell(at);
  return written->rect();
}

std::string CellFormulas::data_table_text() const {
  if (two_inputs_) return "TABLE(" + first_input_ + "," + second_input_ + ")";
  return row_input_ ? "TABLE(" + first_input_ + ",)" : "TABLE(," + first_input_ + ")";
}

void CellFormulas::finish() {
  for (const Child& child : early_children_) {
    const FormulaId id = master(child.group);
    if (id != 0 && sheet_.cells.formula(child.at) == 0) give(child.at, id, child.has_result);
  }
}

}  // namespace qto::embedded
