#include "tests/conformance/perturbation/key_notes.hpp"

#include <array>
#include <stdexcept>
#include <string>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"

namespace qto::embedded::conformance {
namespace {

enum class Keys : std::uint8_t { first_column, first_row, longer_side, all };

/// Which arguments of a function hold keys: the first, and every `step`th from there if not 0.
struct KeyRow {
  const char* function;
  int first, step;
  Keys keys;
};

constexpr KeyRow key_rows[] = {
    {"AVERAGEIF", 0, 0, Keys::all},     {"AVERAGEIFS", 1, 2, Keys::all},
    {"COUNTIF", 0, 0, Keys::all},       {"COUNTIFS", 0, 2, Keys::all},
    {"HLOOKUP", 1, 0, Keys::first_row}, {"LOOKUP", 1, 0, Keys::longer_side},
    {"MATCH", 1, 0, Keys::all},         {"MAXIFS", 1, 2, Keys::all},
    {"MINIFS", 1, 2, Keys::all},        {"SUMIF", 0, 0, Keys::all},
    {"SUMIFS", 1, 2, Keys::all},        {"VLOOKUP", 1, 0, Keys::first_column},
    {"XLOOKUP", 1, 0, Keys::all},       {"XMATCH", 1, 0, Keys::all},
};
constexpr std::size_t row_count = std::size(key_rows);

KeyNotes* taking = nullptr;
Run runs[row_count];
RunLazy lazy_runs[row_count];

Rect keys_of(const Rect& table, Keys keys) {
  if (keys == Keys::longer_side)
    keys = table.columns() > table.rows() ? Keys::first_row : Keys::first_column;
  Rect out = table;
  if (keys == Keys::first_row) out.last.row = out.first.row;
  if (keys == Keys::first_column) out.last.column = out.first.column;
  return out;
}

void note(const Operand& operand, Keys keys) {
  if (operand.is_array()) taking->from_values = true;
  for (const Area& area : operand.areas())
    taking->areas.push_back({area.sheet, keys_of(area.rect, keys)});
}

template <class Argument>
void note_all(const KeyRow& row, int count, Argument&& argument) {
  if (!taking) return;
  for (int i = row.first; i < count; i += row.step) {
    note(argument(i), row.keys);
    if (row.step == 0) return;
  }
}

template <std::size_t I>
Operand noting(Call& call) {
  note_all(key_rows[I], call.count(), [&](int i) -> const Operand& { return call[i]; });
  return runs[I](call);
}

template <std::size_t I>
Operand noting_lazily(LazyCall& call) {
  note_all(key_rows[I], call.count(), [&](int i) { return call.evaluate(i); });
  return lazy_runs[I](call);
}

template <std::size_t... I>
std::vector<FunctionSpec> noting_rows(std::index_sequence<I...>) {
  std::vector<FunctionSpec> rows;
  const auto add = [&]<std::size_t Row>() {
    const FunctionSpec* spec = functions::registry().find(key_rows[Row].function);
    if (!spec) throw std::logic_error(std::string("no function ") + key_rows[Row].function);
    runs[Row] = spec->body.run;
    lazy_runs[Row] = spec->body.lazy;
    rows.push_back(*spec);
    rows.back().body =
        spec->body.run ? FunctionBody(&noting<Row>) : FunctionBody(&noting_lazily<Row>);
  };
  (add.template operator()<I>(), ...);
  return rows;
}

}  // namespace

const FunctionTable& functions_noting_keys() {
  static const std::vector<FunctionSpec> noting =
      noting_rows(std::make_index_sequence<row_count>());
  static const FunctionTable table([] {
    static std::vector<FunctionSpec> others;
    const auto notes = [](const FunctionSpec& spec) {
      return std::ranges::find(noting, spec.name, &FunctionSpec::name) != noting.end();
    };
    for (const functions::Family& family : functions::families())
      std::ranges::remove_copy_if(family.rows, std::back_inserter(others), notes);
    return FunctionTable(std::array<std::span<const FunctionSpec>, 2>{noting, others});
  }());
  return table;
}

NoteTaking::NoteTaking(KeyNotes& notes) { taking = &notes; }
NoteTaking::~NoteTaking() { taking = nullptr; }

}  // namespace qto::embedded::conformance
