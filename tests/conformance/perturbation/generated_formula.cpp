#include "tests/conformance/perturbation/generated_formula.hpp"

#include <algorithm>

#include "qto/automation/address.hpp"

namespace qto::embedded::conformance {
namespace {

using Formula = GeneratedFormula;

/// Puts formulas together. What is put into a form stands in the place of its marks, in order.
class Writer {
 public:
  Writer(const GeneratedNames& names, Chance& chance) : names_(names), chance_(chance) {}

  /// What gives one value.
  Formula value(int levels) {
    if (levels <= 0 || chance_.happens(1, 8)) return leaf();
    switch (chance_.below(14)) {
      case 0:
        return operation(levels);
      case 1:
      case 2:
        return aggregate(levels);
      case 3:
      case 4:
        return branch(levels);
      case 5:
      case 6:
      case 7:
        return lookup(levels);
      case 8:
      case 9:
        return conditional_sum(levels);
      case 10:
        return local_names(levels);
      case 11:
        return over_array(levels);
      case 12:
        return about(levels);
      default:
        return make("\1", {reference(levels - 1)});
    }
  }

 private:
  static Formula make(std::string form, std::vector<Formula> parts = {}) {
    return {std::move(form), std::move(parts)};
  }
  template <std::size_t N>
  std::string any(const char* const (&forms)[N]) {
    return forms[chance_.below(N)];
  }
  std::string number(int below) { return std::to_string(chance_.below(below)); }
  const std::string& any(const std::vector<std::string>& list) { return chance_.one_of(list); }

  // Places

  /// "" for the own sheet, "Data!" for another; most references lead elsewhere.
  std::string qualifier() {
    return chance_.happens(1, 3) ? std::string() : any(names_.qualifiers) + "!";
  }
  static int first_column(const std::string& qualifier) { return qualifier.empty() ? 4 : 1; }
  std::string dollar() { return chance_.happens(1, 4) ? "$" : ""; }
  std::string address(int row, int column) {
    std::string letters;
    append_column(letters, column);
    return dollar() + letters + dollar() + std::to_string(row);
  }
  std::string cell_on(const std::string& qualifier) {
    return address(1 + chance_.below(12), first_column(qualifier) + chance_.below(6));
  }
  /// A block of so many rows and columns somewhere among the values.
  std::string block_on(const std::string& qualifier, int rows, int columns) {
    const int row = 1 + static_cast<int>(chance_.below(13 - rows));
    const int column = first_column(qualifier) + static_cast<int>(chance_.below(7 - columns));
    return address(row, column) + ":" + address(row + rows - 1, column + columns - 1);
  }
  Formula cell() {
    const std::string on = qualifier();
    return make(on + cell_on(on));
  }
  Formula block(int rows, int columns) {
    const std::string on = qualifier();
    return make(on + block_on(on, rows, columns));
  }
  /// Twelve keys, rising numbers or short texts, and what stands beside them.
  Formula keys(bool numbers) {
    const std::string on = any(names_.qualifiers) + "!";
    return make(on + (numbers ? "A1:A12" : "$B$1:$B$12"));
  }
  Formula results() {
    const std::string on = any(names_.qualifiers) + "!";
    return make(on + any({"C1:C12", "D1:D12", "E$1:E$12", "B1:B12"}));
  }
  Formula table() {
    const std::string on = any(names_.qualifiers) + "!";
    return make(on + any({"A1:E12", "$A$1:$E$12", "A1:C12", "A2:D9"}));
  }

  // References

  Formula reference(int levels) {
    if (levels <= 0 || chance_.happens(1, 5)) return written_reference();
    switch (chance_.below(12)) {
      case 0:
        return intersection();
      case 1:
        return make("(\1,\1)", {reference(levels - 1), reference(levels - 1)});
      case 2:
        return range_of_ends(levels);
      case 3:
        return make("INDEX(\1,\1,\1)",
                    {reference(levels - 1), position(levels - 1, 3), position(levels - 1, 2)});
      case 4:
        return make("INDEX((\1,\1),\1,1,\1)",
                    {block(3, 2), block(2, 2), position(levels - 1, 2), position(levels - 1, 2)});
      case 5:
        return offset(levels);
      case 6:
        return indirect();
      case 7:
        return make("IF(\1,\1,\1)",
                    {condition(levels - 1), reference(levels - 1), reference(levels - 1)});
      case 8:
        return make("CHOOSE(\1,\1,\1)",
                    {position(levels - 1, 2), reference(levels - 1), reference(levels - 1)});
      case 9:
        return make("XLOOKUP(\1,\1,\1)", {key(levels - 1, true), keys(true), results()});
      default:
        return written_reference();
    }
  }

  Formula written_reference() {
    switch (chance_.below(13)) {
      case 0:
        if (!chance_.happens(1, 12)) return block(5, 1);
        return make(any(names_.qualifiers) + "!" + any({"A:A", "C:D", "$B:$B", "E:C"}));
      case 1:
        return make(any(names_.qualifiers) + "!" + any({"3:3", "2:5", "$4:6"}));
      case 2:
        return make(chance_.happens(1, 12) ? any({"E:E", "$F:G"}) : "20:21");
      case 3:
        return make(any(names_.range_names));
      case 4:
        return make(any(names_.cell_names));
      case 5:
        return make(any(names_.tables));
      case 6:
        return make(any(names_.spilled));
      case 7: {
        const std::string on = any(names_.qualifiers) + "!";
        return make(on + cell_on(on) + ":" + on + cell_on(on));
      }
      case 8:
        if (!chance_.happens(1, 10)) return block(2, 6);
        return make(any(names_.qualifiers) + any({"!A:XFD", "!1:1048576"}));
      case 9:
      case 10:
        return block(1 + chance_.below(4), 1 + chance_.below(3));
      default:
        return cell();
    }
  }

  Formula intersection() {
    const std::string on = qualifier();
    const std::string again = chance_.happens(1, 2) ? on : "";
    const int column = first_column(on);
    const std::string tall = address(2, column + 1) + ":" + address(9, column + 2);
    const std::string wide = address(4, column) + ":" + address(5, column + 5);
    if (again.empty() && !on.empty()) return make(on + tall + " " + on + wide);
    return make(on + tall + " " + again + wide);
  }

  Formula range_of_ends(int levels) {
    const std::string on = qualifier();
    const std::string first = on + cell_on(on);
    switch (chance_.below(6)) {
      case 0:
        return make(first + ":INDEX(" + on + block_on(on, 5, 3) + ",\1,\1)",
                    {position(levels - 1, 5), position(levels - 1, 3)});
      case 1:
        return make(first + ":OFFSET(" + first + ",\1,\1)",
                    {position(levels - 1, 3), position(levels - 1, 2)});
      case 2:
        return make(first + ":CHOOSE(\1," + on + cell_on(on) + "," + on + cell_on(on) + ")",
                    {position(levels - 1, 2)});
      case 3:
        return make("First_:Last_");
      case 4:
        return make("INDEX(" + on + block_on(on, 4, 2) + ",\1,1):INDEX(" + on + block_on(on, 4, 2) +
                        ",\1,2)",
                    {position(levels - 1, 4), position(levels - 1, 4)});
      default:
        return make("OFFSET(" + first + ",\1,0):" + on + cell_on(on), {position(levels - 1, 2)});
    }
  }

  Formula offset(int levels) {
    switch (chance_.below(4)) {
      case 0:
        return make("OFFSET(\1,\1,\1)", {cell(), position(levels - 1, 3), position(levels - 1, 2)});
      case 1:
        return make("OFFSET(\1,\1,\1,\1,\1)",
                    {cell(), position(levels - 1, 2), position(levels - 1, 2),
                     position(levels - 1, 3), position(levels - 1, 2)});
      case 2:
        return make("OFFSET(\1,1,,\1)", {block(2, 2), position(levels - 1, 3)});
      default:
        return make("OFFSET(" + any(names_.cell_names) + ",\1,1)", {position(levels - 1, 3)});
    }
  }

  Formula indirect() {
    const std::string on = any(names_.qualifiers) + "!";
    switch (chance_.below(6)) {
      case 0:
      case 1:
        return make("INDIRECT(" + on + "F" + std::to_string(1 + chance_.below(6)) + ")");
      case 2:
        return make("INDIRECT(\"" + doubled(on) + "C\"&\1)", {position(1, 9)});
      case 3:
        return make("INDIRECT(\"R\"&\1&\"C5\",FALSE)", {position(1, 9)});
      case 4:
        return make("INDIRECT(\"" + doubled(on) + "R2C3:R\"&\1&\"C4\",0)", {position(1, 9)});
      default:
        return make("INDIRECT(ADDRESS(\1,5))", {position(1, 9)});
    }
  }
  static std::string doubled(const std::string& text) {
    std::string out;
    for (const char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out;
  }

  // Values

  Formula leaf() {
    switch (chance_.below(12)) {
      case 0:
        return make(number(10));
      case 1:
        return make(any({"\"a\"", "\"b\"", "\"x,y\"", "\"\"", "\"say \"\"A1\"\"\""}));
      case 2:
        return make(any({"TRUE", "FALSE", "1E+3", "2.5%", "1E-2"}));
      case 3:
        return chance_.happens(1, 4) ? make(any({"#N/A", "#DIV/0!", "#REF!", "#NAME?", "#NULL!"}))
                                     : make("3");
      case 4:
        return make(any(names_.value_names));
      case 5:
        return make(any(names_.cell_names));
      default:
        return cell();
    }
  }

  Formula operation(int levels) {
    const char* const forms[] = {"\1+\1",  "\1-\1",   "\1*\1",  "\1/\1",   "\1^\1",
                                 "\1&\1",  "\1=\1",   "\1<\1",  "\1>=\1",  "\1<>\1",
                                 "-\1+\1", "(\1)*\1", "\1%+\1", "+\1 - \1"};
    return make(any(forms), {value(levels - 1), value(levels - 1)});
  }

  Formula aggregate(int levels) {
    switch (chance_.below(8)) {
      case 0:
      case 1:
        return make(any({"SUM(\1)", "COUNT(\1)", "COUNTA(\1)", "MAX(\1)", "MIN(\1)", "AVERAGE(\1)",
                         "PRODUCT(\1)", "ROWS(\1)", "COUNTBLANK(\1)"}),
                    {reference(levels - 1)});
      case 2:
        return make("SUM(\1,\1)", {reference(levels - 1), value(levels - 1)});
      case 3:
        return make(
            any({"SUBTOTAL(9,\1)", "SUBTOTAL(\1,\1)", "AGGREGATE(9,6,\1)"}) == "SUBTOTAL(\1,\1)"
                ? "SUBTOTAL(103,\1)"
                : "AGGREGATE(4,6,\1)",
            {reference(levels - 1)});
      case 4:
        return make("SUMPRODUCT((\1>\1)*\1)", {keys(true), value(levels - 1), results()});
      case 5:
        return make("SUMPRODUCT(--(\1=\1),\1)", {keys(false), value(levels - 1), results()});
      case 6:
        return span(any({"SUM", "COUNTA", "MAX", "AVERAGE"}));
      default:
        return make("SUM(\1:\1)", {make("First_"), make("Last_")});
    }
  }

  /// Over several sheets, in tab order or against it.
  Formula span(const std::string& function) {
    std::string first = names_.data_sheets.front();
    std::string last = any(names_.data_sheets);
    if (chance_.happens(1, 3)) std::swap(first, last);
    const auto bare = [](const std::string& sheet) {
      return sheet.front() == '\'' ? sheet.substr(1, sheet.size() - 2) : sheet;
    };
    const bool quoted = first.front() == '\'' || last.front() == '\'' || chance_.happens(1, 3);
    const std::string sheets =
        quoted ? "'" + bare(first) + ":" + bare(last) + "'" : first + ":" + last;
    return make(function + "(" + sheets + "!" + any({"C3", "C2:D4", "$E$1:$E$12", "A:A"}) + ")");
  }

  Formula condition(int levels) {
    if (levels <= 0)
      return chance_.happens(1, 2) ? make("\1" + any({">3", "=0", "<\"b\"", "<>\"\""}), {cell()})
                                   : cell();
    switch (chance_.below(8)) {
      case 0:
        return make("AND(\1,\1)", {condition(levels - 1), condition(levels - 1)});
      case 1:
        return make("OR(\1,\1)", {condition(levels - 1), condition(levels - 1)});
      case 2:
        return make("NOT(\1)", {condition(levels - 1)});
      case 3:
        return make(any({"ISNUMBER(\1)", "ISERROR(\1)", "ISBLANK(\1)", "ISTEXT(\1)"}),
                    {value(levels - 1)});
      case 4:
        return make(any({"TRUE", "FALSE", "1", "0", "\"TRUE\""}));
      default:
        return make("\1" + any({">", "=", "<", "<>"}) + "\1", {value(levels - 1), leaf()});
    }
  }

  Formula branch(int levels) {
    const auto sub = [&] { return value(levels - 1); };
    switch (chance_.below(12)) {
      case 0:
        return make("IF(\1,\1)", {condition(levels - 1), sub()});
      case 1:
        return make("IFS(\1,\1,\1,\1,TRUE,\1)",
                    {condition(levels - 1), sub(), condition(levels - 1), sub(), sub()});
      case 2:
        return make("SWITCH(\1,\1,\1,\1,\1,\1)", {sub(), leaf(), sub(), leaf(), sub(), sub()});
      case 3:
        return make("SWITCH(\1,1,\1,2,\1)", {position(levels - 1, 3), sub(), sub()});
      case 4:
        return make("CHOOSE(\1,\1,\1,\1)", {position(levels - 1, 4), sub(), sub(), sub()});
      case 5:
        return make("IFERROR(\1,\1)", {sub(), sub()});
      case 6:
        return make("IFNA(\1,\1)", {lookup(levels - 1), sub()});
      case 7:
        return make("SUM(IF(\1>\1,\1,\1))", {keys(true), leaf(), results(), sub()});
      case 8:
        return make("IF(\1,,\1)", {condition(levels - 1), sub()});
      case 9:
        return make("SUM(\1:IF(\1,\1,\1))",
                    {make("First_"), condition(levels - 1), make("Last_"), make("First_")});
      default:
        return make("IF(\1,\1,\1)", {condition(levels - 1), sub(), sub()});
    }
  }

  /// A small whole number, written or held by a cell, or a little beyond.
  Formula position(int levels, int most) {
    switch (chance_.below(levels > 0 ? 5 : 3)) {
      case 0:
        return make(std::to_string(1 + chance_.below(most)));
      case 1:
        return make("Step" + std::to_string(1 + chance_.below(std::min(most, 3))));
      case 2:
        return make("MOD(N(\1)," + std::to_string(most) + ")+1", {cell()});
      case 3:
        return make("MATCH(\1,\1,0)", {key(levels - 1, true), keys(true)});
      default:
        return make("IF(\1,1,\1)", {condition(levels - 1), position(levels - 1, most)});
    }
  }

  Formula key(int levels, bool numbers) {
    const std::string on = any(names_.qualifiers) + "!";
    switch (chance_.below(levels > 0 ? 6 : 4)) {
      case 0:
        return make(numbers ? number(14) : any({"\"a\"", "\"d\"", "\"*\"", "\"e?\""}));
      case 1:
        return make(on + (numbers ? "A" : "B") + std::to_string(1 + chance_.below(12)));
      case 2:
        return make(on + address(1 + chance_.below(12), 3 + chance_.below(3)));
      case 3:
        return cell();
      default:
        return value(levels - 1);
    }
  }

  Formula lookup(int levels) {
    const bool numbers = chance_.happens(1, 2);
    const auto wanted = [&] { return key(levels - 1, numbers); };
    const std::string exactly = any({"0", "FALSE", ""});
    switch (chance_.below(17)) {
      case 0:
        return make("VLOOKUP(\1,\1,\1," + exactly + ")",
                    {wanted(), table(), position(levels - 1, 3)});
      case 1:
        return make("VLOOKUP(\1,\1,\1)", {wanted(), table(), position(levels - 1, 3)});
      case 2:
        return make("HLOOKUP(\1,\1,\1,FALSE)", {wanted(), table(), position(levels - 1, 4)});
      case 3:
        return make("LOOKUP(\1,\1,\1)", {wanted(), keys(true), results()});
      case 4:
        return make("LOOKUP(\1,\1)", {wanted(), table()});
      case 5:
        return make("LOOKUP(2,1/(\1=\1),\1)", {keys(numbers), wanted(), results()});
      case 6:
        return make("XLOOKUP(\1,\1,\1,\1)",
                    {wanted(), keys(numbers), results(), value(levels - 1)});
      case 7:
        return make("XLOOKUP(\1,\1,\1,\"none\"," + any({"-1", "1", "0"}) + ")",
                    {wanted(), keys(numbers), results()});
      case 8:
        return make("INDEX(\1,MATCH(\1,\1,0))", {results(), wanted(), keys(numbers)});
      case 9:
        return make("INDEX(\1,MATCH(\1,\1,0),\1)",
                    {table(), wanted(), keys(numbers), position(levels - 1, 4)});
      case 10:
        return make("INDEX(\1,XMATCH(\1,\1,-1))", {results(), wanted(), keys(true)});
      case 11:
        return make("INDEX(\1,\1,\1)", {table(), position(levels - 1, 4), position(levels - 1, 3)});
      case 12:
        return make("SUM(INDEX(\1,\1,0))", {table(), position(levels - 1, 5)});
      case 13:
        return make("VLOOKUP(\1,IF(\1,\1,\1),2,FALSE)",
                    {wanted(), condition(levels - 1), table(), table()});
      case 14:
        return make("VLOOKUP(\1,CHOOSE({1,2},\1,\1),2,FALSE)",
                    {wanted(), keys(numbers), results()});
      case 15:
        return make("VLOOKUP(\1,{1,\"one\";2,\"two\";5,\"five\"},2)", {wanted()});
      default:
        return make("MATCH(\1,\1," + any({"0", "1", ""}) + ")", {wanted(), keys(numbers)});
    }
  }

  Formula criterion(int levels) {
    switch (chance_.below(6)) {
      case 0:
        return make(any({"\">3\"", "\"<>\"", "\"a*\"", "\"\"", "\"<=5\""}));
      case 1:
        return make(any({"\">=\"&\1", "\"<\"&\1", "\"<>\"&\1"}), {cell()});
      case 2:
        return key(levels, true);
      case 3:
        return key(levels, false);
      case 4:
        return make(any({"{1,3}", "{\"a\";\"b\"}"}));
      default:
        return cell();
    }
  }

  Formula conditional_sum(int levels) {
    const auto by = [&] { return criterion(levels - 1); };
    const auto range = [&] { return keys(chance_.happens(1, 2)); };
    switch (chance_.below(10)) {
      case 0:
        return make("SUMIF(\1,\1,\1)", {range(), by(), results()});
      case 1:
        return make("SUMIF(\1,\1)", {range(), by()});
      case 2:
        return make("SUMIF(\1,\1,\1)", {range(), by(), cell()});
      case 3:
        return make("SUMIFS(\1,\1,\1,\1,\1)", {results(), range(), by(), range(), by()});
      case 4:
        return make("COUNTIF(\1,\1)", {range(), by()});
      case 5:
        return make("COUNTIFS(\1,\1,\1,\1)", {range(), by(), range(), by()});
      case 6:
        return make(any({"AVERAGEIF(\1,\1,\1)", "SUMIF(\1,\1,\1)"}), {range(), by(), results()});
      case 7:
        return make("AVERAGEIFS(\1,\1,\1)", {results(), range(), by()});
      case 8:
        return make(any({"MAXIFS(\1,\1,\1)", "MINIFS(\1,\1,\1)"}), {results(), range(), by()});
      default:
        return make("SUM(SUMIFS(\1,\1,\1))", {results(), range(), by()});
    }
  }

  Formula local_names(int levels) {
    const auto sub = [&] { return value(levels - 1); };
    switch (chance_.below(8)) {
      case 0:
        return make("LET(x_,\1,x_+\1)", {sub(), sub()});
      case 1:
        return make("LET(r_,\1,k,\1,SUM(r_)*k)", {reference(levels - 1), sub()});
      case 2:
        return make("LET(t,\1,VLOOKUP(\1,t,2,FALSE))", {table(), key(levels - 1, true)});
      case 3:
        return make("LAMBDA(p,q,IF(p>2,q,\1))(\1,\1)", {sub(), sub(), sub()});
      case 4:
        return make("SUM(MAP(\1,LAMBDA(v,IF(N(v)>\1,v,\1))))", {block(3, 2), leaf(), cell()});
      case 5:
        return make("REDUCE(\1,\1,LAMBDA(s,v,s+N(v)*\1))", {leaf(), block(4, 1), cell()});
      case 6:
        return make("SUM(BYROW(\1,LAMBDA(r_,INDEX(r_,1,\1))))",
                    {block(4, 2), position(levels - 1, 2)});
      default:
        return make(any(names_.function_names) + "(\1)", {sub()});
    }
  }

  Formula over_array(int levels) {
    switch (chance_.below(8)) {
      case 0:
        return make("SUM(FILTER(\1,\1>\1,0))", {results(), keys(true), leaf()});
      case 1:
        return make("INDEX(SORT(\1),\1)", {results(), position(levels - 1, 5)});
      case 2:
        return make("COUNTA(UNIQUE(\1))", {reference(levels - 1)});
      case 3:
        return make("SUM(TAKE(\1,\1))", {table(), position(levels - 1, 3)});
      case 4:
        return make("SUM(TRANSPOSE(\1)*{1,2,3})", {block(3, 1)});
      case 5:
        return make("SUM(\1*\1)", {block(3, 1), block(3, 1)});
      case 6:
        return make("SUM(VLOOKUP({1,5},\1,2,TRUE))", {table()});
      default:
        return make("TEXTJOIN(\",\",TRUE,\1)", {reference(levels - 1)});
    }
  }

  Formula about(int levels) {
    return make(any({"ISERROR(\1)", "N(\1)", "T(\1)", "TYPE(\1)", "LEN(\1)", "ABS(\1)", "@\1",
                     "ISBLANK(\1)", "ROUND(\1,1)", "ERROR.TYPE(\1)", "COLUMN(\1)", "NOT(\1)"}),
                {chance_.happens(1, 2) ? value(levels - 1) : reference(levels - 1)});
  }

  const GeneratedNames& names_;
  Chance& chance_;
};

}  // namespace

std::string GeneratedFormula::text() const {
  std::string out;
  auto part = parts.begin();
  for (const char c : form) {
    if (c != mark)
      out += c;
    else
      out += (part++)->text();
  }
  return out;
}

std::vector<GeneratedFormula> GeneratedFormula::simpler() const {
  std::vector<GeneratedFormula> out = parts;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    std::vector<GeneratedFormula> in_its_place = parts[i].simpler();
    if (parts[i].form != "1") in_its_place.push_back({"1", {}});
    for (GeneratedFormula& simple : in_its_place) {
      out.push_back(*this);
      out.back().parts[i] = std::move(simple);
    }
  }
  return out;
}

GeneratedFormula generate_formula(const GeneratedNames& names, Chance& chance, int levels) {
  return Writer(names, chance).value(levels);
}

}  // namespace qto::embedded::conformance
