#include "qto/hosts/embedded/objects/series_object.hpp"

#include "qto/host/range.hpp"
#include "qto/hosts/embedded/objects/cell_formula.hpp"
#include "qto/hosts/embedded/objects/chart_place.hpp"
#include "qto/hosts/embedded/objects/evaluation.hpp"

namespace qto::embedded {
namespace {

/// One argument of SERIES as people see it.
void append_argument(std::string& out, const std::string& stored, const RenderContext& context,
                     AppendFormula append) {
  if (stored.empty()) return;
  const auto compiled = CompiledFormula::compile(stored, context.at);
  std::string text;
  (compiled.get()->*append)(text, context);
  out.append(text, text.starts_with('=') ? 1 : 0);
}

std::string series_formula(const ChartPlace& chart, const ChartSeries& series,
                           AppendFormula append) {
  const RenderContext context = context_at(chart.open(), chart.sheet(), {});
  std::string out = "=SERIES(";
  for (const std::string* stored :
       {&series.name_formula, &series.category_formula, &series.values_formula}) {
    append_argument(out, *stored, context, append);
    out.push_back(',');
  }
  out += std::to_string(series.order);
  if (!series.sizes_formula.empty()) {
    out.push_back(',');
    append_argument(out, series.sizes_formula, context, append);
  }
  return out.append(")");
}

/// What the cells show that the name is taken from; "" where they cannot tell.
std::string name_in_cells(const ChartPlace& chart, const std::string& stored) {
  constexpr std::int64_t most_cells = 1'000;
  OpenBook& book = chart.open();
  std::string reference;
  append_argument(reference, stored, context_at(book, chart.sheet(), {}),
                  &CompiledFormula::append_formula);
  const Variant result =
      book.application().text_evaluator().evaluate(book, chart.sheet(), {}, reference);
  const auto range = ref_cast<host::Range>(result.object());
  if (!range || range->CellsCount() > most_cells) return "";
  std::string name;
  for (std::int32_t row = 1; row <= range->RowsCount(); ++row)
    for (std::int32_t column = 1; column <= range->ColumnsCount(); ++column) {
      const std::string text = range->Cells(row, column)->Text();
      if (text.starts_with("##")) return "";
      if (!text.empty()) name += (name.empty() ? "" : " ") + text;
    }
  return name;
}

}  // namespace

const ChartSeries& SeriesObject::model() const { return chart_.model()->series[position_]; }

Ref<host::HostObject> SeriesObject::Parent() const { return chart_at(chart_); }

std::string SeriesObject::Name() const {
  const ChartSeries& series = model();
  const std::string& formula = series.name_formula;
  if (formula.empty() || formula.front() == '"') return series.name;
  std::string live = name_in_cells(chart_, formula);
  return live.empty() ? series.name : live;
}

std::string SeriesObject::Formula() const {
  return series_formula(chart_, model(), &CompiledFormula::append_formula);
}

std::string SeriesObject::FormulaLocal() const {
  return series_formula(chart_, model(), &CompiledFormula::append_local);
}

std::string SeriesObject::FormulaR1C1Local() const {
  return series_formula(chart_, model(), &CompiledFormula::append_r1c1);
}

std::int32_t SeriesObject::ChartType() const { return model().chart_type; }

void SeriesObject::Select() { chart_.select(position_); }

}  // namespace qto::embedded
