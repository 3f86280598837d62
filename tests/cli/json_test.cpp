#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <set>

#include "tests/cli/run_command.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

json answer(std::vector<std::string> arguments, int status = 0) {
  arguments.push_back("--json");
  const Outcome outcome = run_qto(arguments);
  EXPECT_EQ(outcome.status, status) << outcome.err;
  return json::parse(outcome.out);  // throws for anything but one document
}

std::vector<std::string> addresses(const json& parts) {
  std::vector<std::string> out;
  for (const json& part : parts) out.push_back(part["AddressLong"]);
  return out;
}

std::vector<std::string> keys(const json& object) {
  std::vector<std::string> out;
  for (const auto& [key, value] : object.items()) out.push_back(key);
  return out;
}

/// Value and text of every kind.
TemporaryFile values_book() {
  BookFile book;
  book.styles(
      "<cellXfs count=\"2\"><xf numFmtId=\"0\"/><xf numFmtId=\"14\" applyNumberFormat=\"1\"/>"
      "</cellXfs>");
  book.cells(
      "<row r=\"1\"><c r=\"A1\"><v>1.5</v></c><c r=\"B1\" t=\"inlineStr\"><is><t>a \"b\"\n&#233;"
      "</t></is></c><c r=\"C1\" t=\"b\"><v>1</v></c><c r=\"D1\" t=\"e\"><v>#N/A</v></c>"
      "<c r=\"E1\" s=\"1\"><v>45000</v></c><c r=\"F1\" s=\"1\"><v>45000.5</v></c></row>"
      "<row r=\"2\"><c r=\"A2\"><v>2</v></c><c r=\"B2\"><f>A1/0</f><v/></c></row>");
  return TemporaryFile("values.xlsx", book.bytes());
}

TEST(Json, shows_values_by_their_kinds) {
  const TemporaryFile file = values_book();
  const auto value = [&](const char* cell) {
    return answer({"part", file.path(), cell})["start"]["Value"];
  };
  EXPECT_EQ(value("A1"), json(1.5));
  EXPECT_EQ(value("B1"), json("a \"b\"\né"));
  EXPECT_EQ(value("C1"), json(true));
  EXPECT_EQ(value("D1"), json::parse(R"({"error": "#N/A"})"));
  EXPECT_EQ(value("E1"), json::parse(R"({"date": "2023-03-15"})"));
  EXPECT_EQ(value("F1"), json::parse(R"({"date": "2023-03-15T12:00:00"})"));
  EXPECT_EQ(value("Z9"), json(nullptr));
  EXPECT_EQ(value("B2"), json::parse(R"({"error": "#DIV/0!"})"));
  EXPECT_EQ(value("A1:A3"), json::parse("[[1.5], [2], [null]]"));
}

TEST(Json, names_the_members_of_a_part) {
  const json part = answer({"part", plan(), "'Cash flow'!C4"})["start"];
  EXPECT_THAT(keys(part),
              testing::UnorderedElementsAre(
                  "UniqueKey", "ObjectType", "AddressShort", "AddressLong", "WorkBookName",
                  "WorkBookPath", "WorkSheetName", "EmbeddedChartName", "Formula", "Value", "Text",
                  "Title", "HasError", "HasConstant", "IsConstant", "IsUnknown", "Exists",
                  "FormulaContainsConstant", "IntelligentDrillingUsed", "DrillRemark"));
  EXPECT_EQ(part["AddressLong"], "'Cash flow'!C4");
  EXPECT_EQ(part["Formula"], "=-MAX(0,C2+C3)*TaxRate");
  EXPECT_EQ(part["Text"], "-260");
  EXPECT_EQ(part["Title"], "Tax.2026");
  EXPECT_EQ(part["HasConstant"], true);
  EXPECT_EQ(part["FormulaContainsConstant"], 2);
  EXPECT_EQ(answer({"part", plan(), "Costs!WageRise"})["start"]["ObjectType"], "Name");
}

TEST(Json, lists_every_part_of_a_tree_once_and_its_precedents) {
  const json tree = answer({"tree", plan(), "Summary!C7"});
  EXPECT_EQ(tree["operation"], "tree");
  EXPECT_EQ(tree["ExceededMaxItems"], false);
  EXPECT_EQ(tree["BooksOpened"], json::array());
  EXPECT_EQ(tree["reports"], json::array());
  const json& parts = tree["parts"];
  EXPECT_EQ(parts[0], tree["start"]);
  EXPECT_THAT(addresses(std::vector<json>(parts.begin(), parts.begin() + 4)),
              ElementsAre("'Summary'!C7", "'Debt'!C4", "'Debt'!C2", "'Debt'!B4"));
  std::set<std::string> known;
  for (const json& part : parts) EXPECT_TRUE(known.insert(part["UniqueKey"]).second);
  for (const auto& [key, list] : tree["precedents"].items()) {
    EXPECT_TRUE(known.count(key)) << key;
    EXPECT_FALSE(list.empty()) << key;
    for (const std::string precedent : list) EXPECT_TRUE(known.count(precedent)) << precedent;
  }
  const json& first = tree["precedents"][parts[0]["UniqueKey"].get<std::string>()];
  ASSERT_EQ(first.size(), 2u);
  EXPECT_THAT(first[0], HasSubstr("[plan.xlsx]Debt'!C4"));
  EXPECT_THAT(first[1], HasSubstr("[plan.xlsx]Summary'!C6"));
}

TEST(Json, lists_inputs_and_errors) {
  const json inputs = answer({"inputs", plan(), "Costs!B5"});
  EXPECT_EQ(inputs["start"]["AddressShort"], "B5");
  EXPECT_FALSE(inputs.contains("parts"));
  const auto found = addresses(inputs["InputCells"]);
  EXPECT_EQ(found.front(), "'Costs'!B5");
  EXPECT_THAT(found, testing::Contains("'Assumptions'!B3"));
  EXPECT_THAT(addresses(answer({"errors", plan(), "Summary!B15"})["ErrorCells"]),
              ElementsAre("'Costs'!D8"));
  EXPECT_EQ(answer({"inputs", plan(), "Summary!C7", "--max-items", "3"}, 3)["ExceededMaxItems"],
            true);
}

TEST(Json, tells_complaints_to_programs) {
  json error = answer({"tree", plan(), "Assumptions!B3"}, 2)["error"];
  EXPECT_EQ(error["number"], "80040002");
  EXPECT_THAT(error["message"], HasSubstr("no formula"));
  error = answer({"tree", plan(), "Nowhere!B3"}, 1)["error"];
  EXPECT_FALSE(error.contains("number"));
  EXPECT_THAT(error["message"], HasSubstr("no sheet 'Nowhere'"));
  error = answer({"tree", "nowhere.xlsx", "A1"}, 4)["error"];
  EXPECT_EQ(error["file"], "nowhere.xlsx");
}

}  // namespace
}  // namespace qto::test
