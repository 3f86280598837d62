#pragma once

#include <functional>
#include <optional>
#include <string>

#include "qto/parser/exact/choice.hpp"

/// What the functions that tell what a call delivers have in common.
namespace qto::exact {

// One for each row of the table, or for rows that are alike.
Outcome decide_if(const Call& call);
Outcome decide_ifs(const Call& call);
Outcome decide_switch(const Call& call);
Outcome decide_choose(const Call& call);
Outcome decide_iferror(const Call& call);
Outcome decide_ifna(const Call& call);
Outcome decide_vlookup(const Call& call);
Outcome decide_hlookup(const Call& call);
Outcome decide_lookup(const Call& call);
Outcome decide_xlookup(const Call& call);
Outcome decide_match(const Call& call);
Outcome decide_xmatch(const Call& call);
Outcome decide_index(const Call& call);
Outcome decide_offset(const Call& call);
Outcome decide_indirect(const Call& call);
Outcome decide_sumif(const Call& call);
Outcome decide_sumifs(const Call& call);
Outcome decide_countifs(const Call& call);
Outcome decide_filter(const Call& call);

/// An argument's value as the call sees it, or why it cannot be told: an error, or nothing.
struct Told {
  Variant value;
  std::string why;
};
Told tell(const Call& call, std::size_t argument, const char* what);
/// The same of a text that was made of arguments.
Told tell_text(const Call& call, const std::string& text, const char* what);
/// The same where one value is wanted: several different ones cannot decide.
Told tell_one(const Call& call, std::size_t argument, const char* what);
/// As a number, where it can be one.
std::optional<double> number_in(const Variant& value);

/// Runs `visit` for each element of a value until it answers false; false when it did.
bool each_element(const Variant& value, const std::function<bool(const Variant&)>& visit);

/// How many rows and columns a part of the formula has.
struct Shape {
  std::int32_t rows = 1;
  std::int32_t columns = 1;
};
Shape shape_of(const Call& call, formula::NodeIndex node, const Scope* scope);
/// Adds what delivers the element of a table in that row and column; 0 stands for all of them.
void add_element(const Call& call, formula::NodeIndex table, const Scope* scope, std::int32_t row,
                 std::int32_t column, Outcome& outcome);

/// All of an argument.
Part argument_part(const Call& call, std::size_t argument);

}  // namespace qto::exact
