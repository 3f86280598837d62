#include "qto/diagnostics/procedures.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

/// The list of procedures against the sources: what they register, and what the public classes
/// offer.
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
/// registers both, and every walk with its own stack, whose frames register one by one.
void collect(const std::string& text, Names& names) {
  static const std::regex frame(R"re(Procedure\s+\w+\(\s*"(\w+)",([^;]*)\);)re");
  static const std::regex walk(R"re(Walk \w+\(\*this, "(\w+)",)re");
  static const std::regex literal(R"re("([^"]+)")re");
  for (std::sregex_iterator at(text.begin(), text.end(), frame), end; at != end; ++at) {
    const std::string module = (*at)[1];
    const std::string members = (*at)[2];
    for (std::sregex_iterator one(members.begin(), members.end(), literal); one != end; ++one)
      names.insert(module + "." + (*one)[1].str());
  }
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

/// Public members of a class as its header declares them: "Count()", "put_Title(" and so on.
/// Published names begin with a capital letter, all but one.
Names public_members(const std::string& name, const std::string& header) {
  const std::string text = source(std::string(QTO_SOURCE_DIR "/qto/") + header);
  const std::size_t begin = text.find("class " + name + " : public Object {");
  const std::size_t end = text.find(" private:", begin);
  EXPECT_NE(begin, std::string::npos) << name;
  const std::string body =
      std::regex_replace(text.substr(begin, end - begin), std::regex("//[^\n]*"), "");
  static const std::regex declared(R"re([\w>&] ((?:put_|putref_)?[A-Z]\w+|value)\()re");
  Names members;
  for (std::sregex_iterator at(body.begin(), body.end(), declared), stop; at != stop; ++at)
    members.insert((*at)[1]);
  members.erase("TypeName");  // of every object
  members.erase("Key");       // of the engine's own collections
  members.erase("Pass");
  return members;
}

std::string accessor(const std::string& member) {
  if (member.starts_with("put_")) return member.substr(4) + "[Let]";
  if (member.starts_with("putref_")) return member.substr(7) + "[Set]";
  return member;
}

TEST(Procedures, HoldEveryPublicMember) {
  const struct {
    const char* name;
    const char* header;
  } classes[] = {{"DrillDown", "engine/drill_down.hpp"},
                 {"DrillOptions", "engine/options/drill_options.hpp"},
                 {"LinkList", "links/link_list.hpp"},
                 {"LinkedBook", "links/linked_book.hpp"},
                 {"LinkedBooks", "links/linked_books.hpp"},
                 {"ModelPart", "model/model_part.hpp"},
                 {"ModelParts", "model/model_parts.hpp"}};
  const Names names = listed();
  for (const auto& [name, header] : classes) {
    const Names members = public_members(name, header);
    EXPECT_GE(members.size(), 4u) << name;
    for (const std::string& member : members) {
      const std::string qualified = std::string(name) + "." + accessor(member);
      EXPECT_TRUE(names.contains(qualified) || names.contains(qualified + "[Get]")) << qualified;
    }
  }
}

}  // namespace
}  // namespace qto::diagnostics
