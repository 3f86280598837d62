#include "qto/diagnostics/procedures.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

/// The list of procedures against what the sources register.
namespace qto::diagnostics {
namespace {

using Names = std::set<std::string>;

Names listed() {
  Names names;
  for (const auto& [module, member] : procedures())
    names.insert(std::string(module) + "." + std::string(member));
  return names;
}

std::string source(const std::filesystem::path& file) {
  std::stringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

/// Every `Procedure proc("Module", …"member"…)` of a text, where a choice between two members
/// registers both, every `procedure("Module", "member", …`, and every walk with its own stack,
/// whose frames register one by one.
void collect(const std::string& text, Names& names) {
  static const std::regex frame(R"re(Procedure\s+\w+\(\s*"(\w+)",([^;]*)\);)re");
  static const std::regex body(R"re(\bprocedure\(\s*"(\w+)",\s*"([^"]+)")re");
  static const std::regex walk(R"re(Walk \w+\(\*this, "(\w+)",)re");
  static const std::regex literal(R"re("([^"]+)")re");
  for (std::sregex_iterator at(text.begin(), text.end(), frame), end; at != end; ++at) {
    const std::string module = (*at)[1];
    const std::string members = (*at)[2];
    for (std::sregex_iterator one(members.begin(), members.end(), literal); one != end; ++one)
      names.insert(module + "." + (*one)[1].str());
  }
  for (std::sregex_iterator at(text.begin(), text.end(), body), end; at != end; ++at)
    names.insert((*at)[1].str() + "." + (*at)[2].str());
  for (std::sregex_iterator at(text.begin(), text.end(), walk), end; at != end; ++at)
    names.insert("DrillDown." + (*at)[1].str());
}

TEST(Procedures, AreListedOnce) { EXPECT_EQ(listed().size(), procedures().size()); }

TEST(Procedures, OfTheSourcesAreThoseOfTheList) {
  Names registered;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(QTO_SOURCE_DIR "/qto")) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".cpp" || extension == ".hpp") collect(source(entry.path()), registered);
  }
  EXPECT_THAT(registered, testing::ContainerEq(listed()));
}

}  // namespace
}  // namespace qto::diagnostics
