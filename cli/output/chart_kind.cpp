#include "cli/output/chart_kind.hpp"

#include <algorithm>
#include <array>

namespace qto::cli {
namespace {

struct Row {
  std::int32_t first, last;
  std::string_view name;
};

constexpr std::array<Row, 48> rows{{{-4169, -4169, "XY scatter"},
                                    {-4151, -4151, "radar"},
                                    {-4120, -4120, "doughnut"},
                                    {-4102, -4102, "3-D pie"},
                                    {-4101, -4101, "3-D line"},
                                    {-4100, -4100, "3-D column"},
                                    {-4098, -4098, "3-D area"},
                                    {1, 1, "area"},
                                    {4, 4, "line"},
                                    {5, 5, "pie"},
                                    {15, 15, "bubble"},
                                    {51, 51, "column"},
                                    {52, 52, "stacked column"},
                                    {53, 53, "100% column"},
                                    {54, 54, "3-D column"},
                                    {55, 55, "stacked 3-D column"},
                                    {56, 56, "100% 3-D column"},
                                    {57, 57, "bar"},
                                    {58, 58, "stacked bar"},
                                    {59, 59, "100% bar"},
                                    {60, 60, "3-D bar"},
                                    {61, 61, "stacked 3-D bar"},
                                    {62, 62, "100% 3-D bar"},
                                    {63, 63, "stacked line"},
                                    {64, 64, "100% line"},
                                    {65, 65, "line"},
                                    {66, 66, "stacked line"},
                                    {67, 67, "100% line"},
                                    {68, 68, "pie of pie"},
                                    {69, 69, "pie"},
                                    {70, 70, "3-D pie"},
                                    {71, 71, "bar of pie"},
                                    {72, 75, "XY scatter"},
                                    {76, 76, "stacked area"},
                                    {77, 77, "100% area"},
                                    {78, 78, "stacked 3-D area"},
                                    {79, 79, "100% 3-D area"},
                                    {80, 80, "doughnut"},
                                    {81, 82, "radar"},
                                    {83, 86, "surface"},
                                    {87, 87, "bubble"},
                                    {88, 91, "stock"},
                                    {92, 94, "cylinder column"},
                                    {95, 97, "cylinder bar"},
                                    {98, 98, "cylinder column"},
                                    {99, 105, "cone"},
                                    {106, 112, "pyramid"},
                                    {113, 0x7FFFFFFF, "chart"}}};
static_assert(std::ranges::is_sorted(rows, {}, &Row::first));

}  // namespace

std::string_view chart_kind(std::int32_t chart_type) noexcept {
  const auto row = std::ranges::lower_bound(rows, chart_type, {}, &Row::last);
  return row != rows.end() && row->first <= chart_type ? row->name : "chart";
}

}  // namespace qto::cli
