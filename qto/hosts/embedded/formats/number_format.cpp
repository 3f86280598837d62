#include "qto/hosts/embedded/formats/number_format.hpp"

#include <array>
#include <cmath>

#include "qto/hosts/embedded/formats/format_parser.hpp"
#include "qto/hosts/embedded/formats/general_text.hpp"
#include "qto/hosts/embedded/formats/renderers.hpp"

namespace qto::embedded::formats {
namespace {

using Op = Condition::Op;

constexpr std::string_view kNotShowable = "########";

Section general_section() {
  Section section;
  section.kind = SectionKind::general;
  section.tokens.push_back({TokenKind::general, 0, 1, {}});
  return section;
}

// Sections without a condition are for positive, negative and other numbers, in this order.
void add_default_conditions(std::vector<Section>& sections) {
  const std::size_t count = sections.size();
  const bool conditional = sections[0].condition.op != Op::none;
  if (count > 1 && !conditional) {
    sections[0].condition = {count == 2 ? Op::greater_equal : Op::greater, 0};
  }
  if (count > 2 && sections[1].condition.op == Op::none) sections[1].condition = {Op::less, 0};
}

// Takes what is left by a first section for all numbers from some limit <= 0 on.
bool follows_non_negative(const std::vector<Section>& sections) {
  const Condition& first = sections[0].condition;
  return (first.op == Op::greater || first.op == Op::greater_equal) && first.limit <= 0;
}

// A section that only negative numbers reach shows them without a sign of its own accord.
void settle_signs(std::vector<Section>& sections) {
  for (std::size_t i = 0; i < sections.size(); ++i) {
    const Condition& condition = sections[i].condition;
    const bool rest = i == 1 && condition.op == Op::none && follows_non_negative(sections);
    sections[i].absolute = rest || condition.only_negative();
  }
}

void append_slots(const Section& section, std::string_view slot, std::string& out) {
  for (const Token& token : section.tokens) {
    if (token.kind == TokenKind::literal) {
      out += token.text;
    } else if (token.kind == TokenKind::text || token.kind == TokenKind::general) {
      out += slot;
    }
  }
}

bool render(const Section& section, double value, bool date1904, std::string& out) {
  if (section.kind == SectionKind::date) return render_date(section, value, date1904, out);
  const double magnitude = std::abs(value);
  if (value < 0 && !section.absolute) out += '-';
  if (section.kind == SectionKind::number) {
    render_number(section, magnitude, out);
  } else if (section.kind == SectionKind::fraction) {
    return render_fraction(section, magnitude, out);
  } else {
    std::string general;
    append_general(magnitude, kGeneralWidth, general);
    append_slots(section, general, out);
  }
  return true;
}

constexpr std::array<std::string_view, 50> make_table() {
  std::array<std::string_view, 50> table{};
  table[0] = "General";
  table[1] = "0";
  table[2] = "0.00";
  table[3] = "#,##0";
  table[4] = "#,##0.00";
  table[5] = R"("$"#,##0_);\("$"#,##0\))";
  table[6] = R"("$"#,##0_);[Red]\("$"#,##0\))";
  table[7] = R"("$"#,##0.00_);\("$"#,##0.00\))";
  table[8] = R"("$"#,##0.00_);[Red]\("$"#,##0.00\))";
  table[9] = "0%";
  table[10] = "0.00%";
  table[11] = "0.00E+00";
  table[12] = "# ?/?";
  table[13] = R"(# ??/??)";
  // 14 and 22 follow the system's short date, which is m/d/yyyy under en-US.
  table[14] = "m/d/yyyy";
  table[15] = "d-mmm-yy";
  table[16] = "d-mmm";
  table[17] = "mmm-yy";
  table[18] = "h:mm AM/PM";
  table[19] = "h:mm:ss AM/PM";
  table[20] = "h:mm";
  table[21] = "h:mm:ss";
  table[22] = "m/d/yyyy h:mm";
  table[37] = "#,##0_);(#,##0)";
  table[38] = "#,##0_);[Red](#,##0)";
  table[39] = "#,##0.00_);(#,##0.00)";
  table[40] = "#,##0.00_);[Red](#,##0.00)";
  table[41] = R"(_(* #,##0_);_(* \(#,##0\);_(* "-"_);_(@_))";
  table[42] = R"(_("$"* #,##0_);_("$"* \(#,##0\);_("$"* "-"_);_(@_))";
  table[43] = R"(_(* #,##0.00_);_(* \(#,##0.00\);_(* "-"??_);_(@_))";
  table[44] = R"(_("$"* #,##0.00_);_("$"* \(#,##0.00\);_("$"* "-"??_);_(@_))";
  table[45] = "mm:ss";
  table[46] = "[h]:mm:ss";
  table[47] = "mm:ss.0";
  table[48] = "##0.0E+0";
  table[49] = "@";
  return table;
}

constexpr auto kTable = make_table();

}  // namespace

bool Condition::matches(double value) const {
  switch (op) {
    case Op::none:
      return true;
    case Op::less:
      return value < limit;
    case Op::less_equal:
      return value <= limit;
    case Op::equal:
      return value == limit;
    case Op::not_equal:
      return value != limit;
    case Op::greater_equal:
      return value >= limit;
    case Op::greater:
      return value > limit;
  }
  return false;
}

bool Condition::only_negative() const {
  return (op == Op::less && limit <= 0) || ((op == Op::less_equal || op == Op::equal) && limit < 0);
}

NumberFormat::NumberFormat() { number_sections_.push_back(general_section()); }

NumberFormat NumberFormat::parse(std::string_view code) {
  NumberFormat format;
  if (code.empty()) return format;
  auto sections = parse_sections(code);
  format.valid_ = sections.has_value();
  if (!sections) return format;

  const bool last_is_text = sections->back().kind == SectionKind::text;
  format.text_ = sections->size() == 1 && last_is_text && sections->back().tokens.size() == 1;
  if (sections->size() == 4 || last_is_text) {
    format.text_section_ = sections->back();
    if (sections->size() > 1) sections->pop_back();
  }
  add_default_conditions(*sections);
  settle_signs(*sections);
  format.number_sections_ = std::move(*sections);
  const Section& first = format.number_sections_.front();
  format.general_ = format.number_sections_.size() == 1 && first.kind == SectionKind::general &&
                    first.tokens.size() == 1 && first.condition.op == Op::none;
  for (const Section& section : format.number_sections_) {
    format.date_ |= section.kind == SectionKind::date;
  }
  return format;
}

std::optional<std::string> NumberFormat::try_format(double value, bool date1904) const {
  if (!std::isfinite(value)) return std::nullopt;
  std::string out;
  for (const Section& section : number_sections_) {
    if (!section.condition.matches(value)) continue;
    if (!render(section, value, date1904, out)) return std::nullopt;
    return out;
  }
  // No condition holds: the number shows as General.
  if (value < 0) out += '-';
  append_general(std::abs(value), kGeneralWidth, out);
  return out;
}

std::string NumberFormat::format(double value, bool date1904) const {
  auto text = try_format(value, date1904);
  return text ? std::move(*text) : std::string(kNotShowable);
}

std::string NumberFormat::format_text(std::string_view text) const {
  if (!text_section_) return std::string(text);
  std::string out;
  append_slots(*text_section_, text, out);
  return out;
}

std::string_view builtin_format(int num_fmt_id) {
  if (num_fmt_id < 0 || num_fmt_id >= static_cast<int>(kTable.size())) return {};
  return kTable[static_cast<std::size_t>(num_fmt_id)];
}

}  // namespace qto::embedded::formats
