#include "qto/hosts/embedded/functions/registry.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

#include "qto/hosts/embedded/functions/documentation.hpp"
#include "tests/evaluate/small_book.hpp"

namespace qto::embedded {
namespace {

TEST(FunctionTables, ShowExamplesThatHold) {
  for (const functions::Family& family : functions::families())
    for (const FunctionSpec& spec : family.rows) {
      SmallBook book;
      EXPECT_EQ(book.run(spec.example), spec.result) << spec.example;
    }
}

TEST(FunctionTables, NameEachFunctionOnce) {
  std::set<std::string_view> names;
  for (const functions::Family& family : functions::families())
    for (const FunctionSpec& spec : family.rows) {
      EXPECT_TRUE(names.insert(spec.name).second) << spec.name;
      EXPECT_EQ(functions::registry().find(spec.name), &spec);
    }
  EXPECT_EQ(functions::registry().find("NOSUCH"), nullptr);
}

TEST(FunctionTables, RefuseAWrongNumberOfArguments) {
  for (const functions::Family& family : functions::families())
    for (const FunctionSpec& spec : family.rows) {
      SmallBook book;
      std::string formula = "=" + std::string(spec.name) + "(1";
      for (int i = 0; i < std::min(spec.max_args, 254); ++i) formula += ",1";
      if (spec.max_args < any_count) {
        EXPECT_EQ(book.run(formula + ")"), "#VALUE!") << formula;
      }
    }
}

/// With QTO_WRITE_DOCS set the page is written anew instead.
TEST(FunctionTables, AreDocumented) {
  const std::string path = QTO_SOURCE_DIR "/docs/functions.md";
  if (std::getenv("QTO_WRITE_DOCS")) std::ofstream(path) << functions::documentation();
  std::ifstream file(path);
  std::stringstream page;
  page << file.rdbuf();
  EXPECT_EQ(page.str(), functions::documentation()) << "run test_functions with QTO_WRITE_DOCS=1";
}

}  // namespace
}  // namespace qto::embedded
