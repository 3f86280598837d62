#include "qto/hosts/embedded/xlsx/drawing_part.hpp"

#include <string>

#include "qto/hosts/embedded/xlsx/chart_part.hpp"
#include "qto/hosts/embedded/xlsx/relationships.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
namespace {

struct ChartFrame {
  std::string name;
  std::string relationship;
};

class DrawingHandler final : public XmlHandler {
 public:
  explicit DrawingHandler(std::vector<ChartFrame>& into) : into_(into) {}

  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space == Space::sheet_drawing && name == "cNvPr") {
      name_ = attributes.text("name");
      decode_escapes(name_);
    } else if (space == Space::chart && name == "chart") {
      into_.push_back({name_, std::string(attributes.relationship())});
    }
  }

 private:
  std::vector<ChartFrame>& into_;
  std::string name_;  ///< of the frame that is being read
};

}  // namespace

std::vector<ChartModel> read_drawing(Package& package, const Package::Part& part) {
  std::vector<ChartFrame> frames;
  DrawingHandler handler(frames);
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  const Relationships links(package, part.name);
  std::vector<ChartModel> charts;
  for (const ChartFrame& frame : frames) {
    const Relationship* link = links.by_id(frame.relationship);
    const Package::Part* chart = link ? package.find(link->part) : nullptr;
    if (chart) charts.push_back({frame.name, read_chart(package, *chart)});
  }
  return charts;
}

}  // namespace qto::embedded
