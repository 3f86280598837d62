#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "qto/server/description/describe.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/host_tables/library.hpp"

namespace qto::server {
namespace {

std::string file_text(const std::string& path) {
  std::ifstream file(std::string(QTO_SOURCE_DIR) + "/" + path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(Surface, OrderAndIdentifiersAreTheRecordedOnes) {
  EXPECT_EQ(snapshot_text(engine_library()), file_text("tests/server/surface.txt"));
  EXPECT_EQ(snapshot_text(host_library()), file_text("tests/server/host_surface.txt"));
}

TEST(Surface, DocumentationFollowsTheTables) {
  EXPECT_EQ(interface_page(engine_library()), file_text("docs/interface.md"));
  EXPECT_EQ(interface_page(host_library()), file_text("docs/host_interface.md"));
}

TEST(Surface, ClassesHaveTheirEventsAndCanBeCreated) {
  const std::pair<const char*, std::size_t> expected[] = {
      {"DrillDown", 9}, {"LinkedBook", 0}, {"LinkedBooks", 0}, {"LinkList", 0},
      {"ModelPart", 5}, {"ModelParts", 1}, {"DrillOptions", 0}};
  const auto classes = engine_library().classes;
  ASSERT_EQ(classes.size(), std::size(expected));
  for (std::size_t i = 0; i < classes.size(); ++i) {
    EXPECT_EQ(classes[i]->name, expected[i].first);
    EXPECT_EQ(classes[i]->events.size(), expected[i].second) << classes[i]->name;
    EXPECT_EQ(classes[i]->create()->TypeName(), classes[i]->name);
  }
  EXPECT_EQ(engine_library().enumerations.size(), 6u);
}

TEST(Surface, EveryIdentifierIsItsOwn) {
  std::set<std::string> seen;
  const auto add = [&](const Guid& guid) { EXPECT_TRUE(seen.insert(guid_text(guid)).second); };
  for (const LibraryTable* library : {&engine_library(), &host_library()}) {
    add(library->id);
    for (const ClassTable* table : library->classes) {
      add(table->class_id);
      add(table->interface_id);
      if (!table->events.empty()) add(table->event_interface_id);
    }
  }
  for (const EnumerationTable* table : engine_library().enumerations) add(table->id);
}

TEST(Surface, ClassesAreFoundInAnyLetterCase) {
  EXPECT_EQ(find_class(engine_library(), "modelPARTS")->name, "ModelParts");
  EXPECT_EQ(find_class(engine_library(), "Parser"), nullptr);
}

TEST(Surface, IdentifiersReadBackAsWritten) {
  const Guid guid = own_guid(0x11);
  EXPECT_EQ(parse_guid(guid_text(guid)), guid);
  EXPECT_EQ(parse_guid(guid_text(guid).substr(1, 36)), guid);
  EXPECT_FALSE(parse_guid("{81663611-E4E0-49EC-A3C2-45A1460F483Z}"));
  EXPECT_FALSE(parse_guid("QTOEngine.DrillDown"));
  EXPECT_FALSE(parse_guid(""));
}

TEST(Surface, TypeLibraryShowsKindsAndDirections) {
  const std::string idl = idl_text(engine_library());
  for (const char* line : {
           "  [propget, id(4)] HRESULT StartUnderlyingObject([out, retval] IDispatch** Result);",
           "  [propputref, id(4)] HRESULT StartUnderlyingObject([in] IDispatch* strt);",
           "  [propput, id(12)] HRESULT MaxItems([in] long mite);",
           "  [propputref, id(13)] HRESULT DrillOptions([in, out] _DrillOptions** dr_op);",
           "  [id(-4), hidden] HRESULT NewEnum([out, retval] IUnknown** Result);",
           "  [id(8)] HRESULT Create([in, out] IDispatch** Obj, [in] BSTR LikelyType, [in, "
           "defaultvalue(\"\")] BSTR UnknownName);",
           "  [id(3)] void BeforeGetPrecedents([in, out] _ModelPart** Parent, [in, out] "
           "VARIANT_BOOL* Cancel);",
           "  qtodrillusedsection = 1,",
       })
    EXPECT_NE(idl.find(line), std::string::npos) << line;
}

}  // namespace
}  // namespace qto::server
