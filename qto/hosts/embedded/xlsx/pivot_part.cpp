#include "qto/hosts/embedded/xlsx/pivot_part.hpp"

#include <algorithm>
#include <utility>

#include "qto/automation/address.hpp"
#include "qto/hosts/embedded/xlsx/external_target.hpp"
#include "qto/hosts/embedded/xlsx/relationships.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
namespace {

/// `location` without the page fields, which stand above it, a blank row between them.
Rect with_page_fields(Rect location, std::int64_t page_rows, std::int64_t page_columns) {
  if (page_rows < 1) return location;
  // Each page field takes two columns, with a blank one between neighbours.
  const std::int64_t fields = std::clamp<std::int64_t>(page_columns, 1, max_columns / 3);
  const std::int64_t last_column = location.first.column + fields * 3 - 2;
  const std::int64_t first_row =
      location.first.row - std::min<std::int64_t>(page_rows, max_rows) - 1;
  location.first.row = static_cast<std::int32_t>(std::max<std::int64_t>(first_row, 1));
  location.last.column =
      std::max(location.last.column,
               static_cast<std::int32_t>(std::min<std::int64_t>(last_column, max_columns)));
  return location;
}

class PivotHandler final : public XmlHandler {
 public:
  explicit PivotHandler(PivotModel& into) : into_(into) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::main) return;
    if (name == "pivotTableDefinition") {
      into_.name = attributes.text("name");
      decode_escapes(into_.name);
    } else if (name == "location") {
      const auto area = parse_area(attributes.text("ref"));
      if (!area) throw XmlFault("the pivot table has no location");
      into_.table_range = with_page_fields(area->rect(), attributes.whole_or("rowPageCount", 0),
                                           attributes.whole_or("colPageCount", 0));
    }
  }

 private:
  PivotModel& into_;
};

class CacheHandler final : public XmlHandler {
 public:
  CacheHandler(const Relationships& links, const std::string& base_folder, std::string& into)
      : links_(links), base_folder_(base_folder), into_(into) {}

  /// The number of the connection of an external source; 0 for none.
  std::int64_t connection() const noexcept { return connection_; }

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::main) return;
    if (name == "cacheSource") start_source(attributes);
    if (name == "worksheetSource" || name == "rangeSet") add_range(attributes);
  }

 private:
  void start_source(const Attributes& attributes) {
    const std::string_view type = attributes.text("type");
    if (type == "external") connection_ = attributes.whole_or("connectionId", 0);
    if (type == "external" || type == "scenario") into_ = type;
  }

  /// A consolidation has several.
  void add_range(const Attributes& attributes) {
    if (!into_.empty()) into_ += ", ";
    std::string sheet(attributes.text("sheet"));
    decode_escapes(sheet);
    std::string item(attributes.text("name"));
    decode_escapes(item);
    const auto area = parse_area(attributes.text("ref"));
    if (item.empty() && area) item = r1c1_of(area->rect(), true, true, CellPos{});
    const std::string where = place(attributes.relationship(), sheet);
    if (!where.empty() && !item.empty()) append_sheet_name(into_, where), into_ += '!';
    into_ += item;
  }

  std::string place(std::string_view relationship, const std::string& sheet) const {
    const Relationship* link = links_.by_id(relationship);
    if (!link || !link->external) return sheet;
    const FileLocation at = locate_target(link->target, base_folder_);
    return sheet.empty() ? at.folder + at.name : at.folder + "[" + at.name + "]" + sheet;
  }

  const Relationships& links_;
  const std::string& base_folder_;
  std::string& into_;
  std::int64_t connection_ = 0;
};

/// The connections of a book as people know them: by name, and what is asked of them.
class ConnectionsHandler final : public XmlHandler {
 public:
  explicit ConnectionsHandler(std::unordered_map<std::int64_t, std::string>& into) : into_(into) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::main) return;
    if (name == "connection") {
      id_ = attributes.whole_or("id", 0);
      into_[id_] = attributes.text("name");
      decode_escapes(into_[id_]);
    } else if (name == "dbPr") {
      std::string command(attributes.text("command"));
      decode_escapes(command);
      if (!command.empty()) into_[id_] += ": " + command;
    }
  }

 private:
  std::unordered_map<std::int64_t, std::string>& into_;
  std::int64_t id_ = 0;
};

}  // namespace

PivotModel PivotReader::read(const Package::Part& part) {
  PivotModel pivot;
  PivotHandler handler(pivot);
  PartStream stream = package_.open(part);
  read_xml(stream, handler);
  pivot.source = source_of(part);
  return pivot;
}

std::string PivotReader::source_of(const Package::Part& pivot_part) {
  const Relationships links(package_, pivot_part.name);
  const Relationship* link = links.of_type("pivotCacheDefinition");
  const Package::Part* cache = link ? package_.find(link->part) : nullptr;
  if (!cache) return "unknown source";
  const auto [found, is_new] = sources_.try_emplace(cache->name);
  if (is_new) {
    const Relationships cache_links(package_, cache->name);
    CacheHandler handler(cache_links, base_folder_, found->second);
    PartStream stream = package_.open(*cache);
    read_xml(stream, handler);
    const std::string& connection = connection_name(handler.connection());
    if (!connection.empty()) found->second = connection;
    // A cell of a pivot table is known by its source having a text.
    if (found->second.empty()) found->second = "unknown source";
  }
  return found->second;
}

const std::string& PivotReader::connection_name(std::int64_t number) {
  static const std::string none;
  if (number == 0) return none;
  const Package::Part* part = package_.find("xl/connections.xml");
  if (part && !std::exchange(connections_read_, true)) {
    ConnectionsHandler handler(connections_);
    PartStream stream = package_.open(*part);
    read_xml(stream, handler);
  }
  const auto found = connections_.find(number);
  return found == connections_.end() ? none : found->second;
}

}  // namespace qto::embedded
