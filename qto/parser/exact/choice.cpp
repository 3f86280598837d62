#include "qto/parser/exact/choice.hpp"

#include <algorithm>

#include "qto/parser/exact/decide.hpp"

namespace qto::exact {
namespace {

constexpr Choice choices[] = {
    {"AVERAGEIF", Family::sum, "kcd", decide_sumif},
    {"AVERAGEIFS", Family::sum, "d(kc)", decide_sumifs},
    {"CHOOSE", Family::branch, "c(d)", decide_choose},
    {"COUNTIF", Family::sum, "(kc)", decide_countifs},
    {"COUNTIFS", Family::sum, "(kc)", decide_countifs},
    {"FILTER", Family::sum, "dcd", decide_filter},
    {"HLOOKUP", Family::lookup, "cdcc", decide_hlookup},
    {"IF", Family::branch, "cdd", decide_if},
    {"IFERROR", Family::branch, "cd", decide_iferror},
    {"IFNA", Family::branch, "cd", decide_ifna},
    {"IFS", Family::branch, "(cd)", decide_ifs},
    {"INDEX", Family::index, "dccc", decide_index},
    {"INDIRECT", Family::indirect, "cc", decide_indirect},
    {"LOOKUP", Family::lookup, "ckd", decide_lookup},
    {"MATCH", Family::match, "ckc", decide_match},
    {"MAXIFS", Family::sum, "d(kc)", decide_sumifs},
    {"MINIFS", Family::sum, "d(kc)", decide_sumifs},
    {"OFFSET", Family::offset, "ccccc", decide_offset},
    {"SUMIF", Family::sum, "kcd", decide_sumif},
    {"SUMIFS", Family::sum, "d(kc)", decide_sumifs},
    {"SWITCH", Family::branch, "c(cd)", decide_switch},
    {"VLOOKUP", Family::lookup, "cdcc", decide_vlookup},
    {"XLOOKUP", Family::lookup, "ckddcc", decide_xlookup},
    {"XMATCH", Family::match, "ckcc", decide_xmatch},
};
static_assert(std::ranges::is_sorted(choices, {}, &Choice::function));

}  // namespace

const Choice* find_choice(std::string_view function) noexcept {
  const auto row = std::ranges::lower_bound(choices, function, {}, &Choice::function);
  return row != std::end(choices) && row->function == function ? &*row : nullptr;
}

char Choice::role(std::size_t argument, std::size_t count) const noexcept {
  const std::size_t open = std::min(arguments.find('('), arguments.size());
  if (argument < open) return arguments[argument];
  if (open == arguments.size()) return 'd';
  const std::string_view repeated = arguments.substr(open + 1, arguments.size() - open - 2);
  const std::size_t place = (argument - open) % repeated.size();
  // What stands alone at the end, as the default of SWITCH does, delivers.
  if (argument + 1 == count && place + 1 < repeated.size()) return 'd';
  return repeated[place];
}

Follow asked(const DrillOptions::Settings& options, Family family) noexcept {
  const auto section = [](qtoDrillType type) {
    if (type == qtoDrillAll) return Follow::all;
    return type == qtodrillusedsection ? Follow::used : Follow::condition;
  };
  const auto target = [](qtoDrillType type) {
    if (type == qtoDrillIndirectApparent) return Follow::all;
    return type == qtoDrillIndirectReal ? Follow::used : Follow::condition;
  };
  switch (family) {
    case Family::branch:
      return section(options.parse_if);
    case Family::lookup:
      return section(options.parse_lookup);
    case Family::match:
      return section(options.parse_match);
    case Family::index:
      // It has no value for conditions of its own.
      if (options.parse_index == qtoDrillAll) return Follow::all;
      return section(options.parse_lookup) == Follow::condition ? Follow::condition : Follow::used;
    case Family::sum:
      return section(options.parse_sumif);
    case Family::indirect:
      return target(options.parse_indirect);
    case Family::offset:
      break;
  }
  return target(options.parse_offset);
}

std::string Call::text(std::size_t i) const {
  if (!given(i)) return "";
  return evaluation.text_of(arguments[i], scope).value_or("");
}

}  // namespace qto::exact
