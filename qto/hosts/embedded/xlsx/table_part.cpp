#include "qto/hosts/embedded/xlsx/part_readers.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "qto/hosts/embedded/xlsx/sheet_settings.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
namespace {

class TableHandler final : public XmlHandler {
 public:
  explicit TableHandler(Table& into) : into_(into) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::main) return;
    if (name == "table") return start_table(attributes);
    if (is_filter_criterion(name)) into_.filtered = true;
    if (name != "tableColumn") return;
    std::string column(attributes.text("name"));
    decode_escapes(column);
    into_.columns.push_back(std::move(column));
  }

 private:
  void start_table(const Attributes& attributes) {
    into_.name = attributes.text(attributes.find("displayName") ? "displayName" : "name");
    decode_escapes(into_.name);
    const auto area = parse_area(attributes.text("ref"));
    if (!area) throw XmlFault("table \"" + into_.name + "\" has no range");
    into_.range = area->rect();
    const std::int64_t rows = into_.range.rows();
    const auto count = [&](const char* attribute, std::int64_t fallback) {
      return static_cast<int>(
          std::clamp<std::int64_t>(attributes.whole_or(attribute, fallback), 0, rows));
    };
    into_.header_rows = count("headerRowCount", 1);
    into_.totals_rows = count("totalsRowCount", 0);
  }

  Table& into_;
};

}  // namespace

Table read_table(Package& package, const Package::Part& part, const Sheet& sheet) {
  Table table;
  table.sheet = &sheet;
  TableHandler handler(table);
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  return table;
}

}  // namespace qto::embedded
