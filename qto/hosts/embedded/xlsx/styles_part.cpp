#include "qto/hosts/embedded/xlsx/part_readers.hpp"

#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/formats/number_format.hpp"
#include "qto/hosts/embedded/xlsx/xml_reader.hpp"
#include "qto/hosts/embedded/xlsx/xml_value.hpp"

namespace qto::embedded {
namespace {

struct CellFormat {
  std::int64_t number_format = 0;
  std::int64_t base = 0;  ///< the named style's format that it starts from
  bool has_protection = false;
  bool locked = true;
  bool hidden = false;
};

class StylesHandler final : public XmlHandler {
 public:
  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    if (space != Space::main) return;
    if (name == "numFmts") {
      in_codes_ = true;
    } else if (name == "numFmt" && in_codes_) {
      std::string code(attributes.text("formatCode"));
      decode_escapes(code);
      if (const auto id = attributes.whole("numFmtId")) codes_.emplace(*id, std::move(code));
    } else if (name == "cellXfs") {
      formats_ = &cell_formats_;
    } else if (name == "cellStyleXfs") {
      formats_ = &style_formats_;
    } else if (name == "xf" && formats_) {
      start_format(attributes);
    } else if (name == "protection" && in_format_) {
      CellFormat& format = formats_->back();
      format.has_protection = true;
      format.locked = attributes.flag("locked", true);
      format.hidden = attributes.flag("hidden", false);
    }
  }

  void on_end(Space space, std::string_view name) override {
    if (space != Space::main) return;
    if (name == "cellXfs" || name == "cellStyleXfs") formats_ = nullptr;
    if (name == "numFmts") in_codes_ = false;
    if (name == "xf") in_format_ = false;
  }

  void store(StyleTable& styles) {
    if (cell_formats_.empty()) return;
    styles.clear();
    for (const CellFormat& format : cell_formats_) {
      const CellFormat& protection = protection_of(format);
      styles.add(code_of(format.number_format), protection.locked, protection.hidden);
    }
  }

 private:
  void start_format(const Attributes& attributes) {
    if (std::ssize(*formats_) >= most_styles) return;
    CellFormat format;
    format.number_format = attributes.whole_or("numFmtId", 0);
    format.base = attributes.whole_or("xfId", 0);
    formats_->push_back(format);
    in_format_ = true;
  }

  const CellFormat& protection_of(const CellFormat& format) const {
    const auto base = static_cast<std::uint64_t>(format.base);
    return format.has_protection || base >= style_formats_.size() ? format : style_formats_[base];
  }

  std::string code_of(std::int64_t id) const {
    if (const auto own = codes_.find(id); own != codes_.end()) return own->second;
    const bool small = id >= 0 && id <= 0xFFFF;
    const std::string_view builtin = small ? formats::builtin_format(static_cast<int>(id)) : "";
    return builtin.empty() ? "General" : std::string(builtin);
  }

  std::unordered_map<std::int64_t, std::string> codes_;
  std::vector<CellFormat> cell_formats_;
  std::vector<CellFormat> style_formats_;
  std::vector<CellFormat>* formats_ = nullptr;  ///< the list that is being read
  bool in_codes_ = false;
  bool in_format_ = false;
};

}  // namespace

void read_styles(Package& package, const Package::Part& part, StyleTable& styles) {
  StylesHandler handler;
  PartStream stream = package.open(part);
  read_xml(stream, handler);
  handler.store(styles);
}

}  // namespace qto::embedded
