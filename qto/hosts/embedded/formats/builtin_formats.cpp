#include "qto/hosts/embedded/formats/builtin_formats.hpp"

#include <array>

namespace qto::embedded::formats {
namespace {

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

std::string_view builtin_format(int num_fmt_id) {
  if (num_fmt_id < 0 || num_fmt_id >= static_cast<int>(kTable.size())) return {};
  return kTable[static_cast<std::size_t>(num_fmt_id)];
}

}  // namespace qto::embedded::formats
