#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "qto/server/calls/dispatch.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/host_tables/library.hpp"
#include "qto/server/registration/registry_posix.hpp"
#include "tests/server/module_client.hpp"

namespace qto::server {
namespace {

using namespace engine_tables;
using host_tables::application_table;

namespace fs = std::filesystem;

bool is_loaded(const char* path) {
  void* handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle;
}

TEST(Module, UnloadsWhenNothingIsLeft) {
  Library library(QTO_ENGINE_MODULE);
  ASSERT_TRUE(library) << dlerror();
  EXPECT_EQ(library.call("DllCanUnloadNow"), 0);
  Dispatch* drill = library.create(drill_down_table.class_id);
  ASSERT_TRUE(drill);
  EXPECT_EQ(library.call("DllCanUnloadNow"), 1);
  Dispatch* books = object_of(drill, u"BooksOpened");
  ASSERT_TRUE(books);
  drill->Release();
  EXPECT_EQ(library.call("DllCanUnloadNow"), 1);
  books->Release();
  EXPECT_EQ(library.call("DllCanUnloadNow"), 0);
  ClassFactory* factory = library.factory(model_part_table.class_id);
  factory->LockServer(1);
  factory->Release();
  EXPECT_EQ(library.call("DllCanUnloadNow"), 1);
  factory = library.factory(model_part_table.class_id);
  factory->LockServer(0);
  factory->Release();
  EXPECT_EQ(library.call("DllCanUnloadNow"), 0);
  // It may be asked again before it really goes.
  Dispatch* again = library.create(drill_down_table.class_id);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->Release(), 0u);
  EXPECT_EQ(library.call("DllCanUnloadNow"), 0);
  library.unload();
  EXPECT_FALSE(is_loaded(QTO_ENGINE_MODULE));
}

TEST(Module, ShowsTheFourExportsAlone) {
  const Library library(QTO_ENGINE_MODULE);
  for (const char* name :
       {"DllRegisterServer", "DllUnregisterServer", "DllGetClassObject", "DllCanUnloadNow"})
    EXPECT_TRUE(library.find<void>(name)) << name;
  EXPECT_EQ(library.factory(own_guid(0xABC)), nullptr);
  EXPECT_FALSE(library.find<void>("_ZN3qto9DrillDown10FindInputsEv"));
}

TEST(Module, CarriesAVersionRecord) {
  std::ifstream file(QTO_ENGINE_MODULE, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  for (const char* entry : {"FileDescription: Underlying drilling functionality.",
                            "OLESelfRegister", "OriginalFilename: libqtoeng1101.so"})
    EXPECT_NE(bytes.find(entry), std::string::npos) << entry;
}

TEST(Module, DrillsARealBookThroughBothLibraries) {
  Library host(QTO_HOST_MODULE), engine(QTO_ENGINE_MODULE);
  ASSERT_TRUE(host && engine);
  Dispatch* application = host.create(application_table.class_id);
  ASSERT_TRUE(application);
  Dispatch* books = object_of(application, u"Workbooks");
  const std::string path = QTO_SOURCE_DIR "/examples/workbooks/plan.xlsx";
  const Bstr file(std::u16string(path.begin(), path.end())), sheet_name(u"Summary"), cell(u"C7"),
      empty_cell(u"Z99");
  Dispatch* book = object_of(books, u"Open", {file.variant()});
  ASSERT_TRUE(book);
  Dispatch* sheets = object_of(book, u"worksheets");
  Dispatch* sheet = object_of(sheets, u"Item", {sheet_name.variant()});
  ASSERT_TRUE(sheet);
  Dispatch* range = object_of(sheet, u"Range", {cell.variant()});
  Dispatch* empty = object_of(sheet, u"Range", {empty_cell.variant()});

  Dispatch* drill = engine.create(drill_down_table.class_id);
  EXPECT_EQ(call(drill, u"StartUnderlyingObject", call_put_ref, {of(empty)}),
            static_cast<std::int32_t>(0x80040002));
  ASSERT_EQ(call(drill, u"StartUnderlyingObject", call_put_ref, {of(range)}), 0);
  ASSERT_EQ(call(drill, u"FindInputs", call_method, {}), 0);
  Dispatch* inputs = object_of(drill, u"InputCells");
  ASSERT_TRUE(inputs);
  ComVariant count;
  EXPECT_EQ(call(inputs, u"Count", call_get, {}, &count), 0);
  EXPECT_EQ(count.type, vt_i4);
  EXPECT_GT(count.i4, 10);
  EXPECT_EQ(call(drill, u"NoSuchMember", call_get, {}), static_cast<std::int32_t>(0x80020006));
  std::uint32_t bad = 9;
  EXPECT_EQ(call(drill, u"MaxItems", call_put, {sheet_name.variant()}, nullptr, &bad),
            static_cast<std::int32_t>(0x80020005));
  EXPECT_EQ(bad, 0u);

  EXPECT_EQ(host.call("DllCanUnloadNow"), 1);
  for (Dispatch* held : {inputs, drill, range, empty, sheet, sheets, book, books, application})
    held->Release();
  // The engine still knows the application of its last start object, until it can go itself.
  EXPECT_EQ(host.call("DllCanUnloadNow"), 1);
  EXPECT_EQ(engine.call("DllCanUnloadNow"), 0);
  EXPECT_EQ(host.call("DllCanUnloadNow"), 0);
}

TEST(Module, TheHostGoesWithItsLastObject) {
  Library host(QTO_HOST_MODULE);
  Dispatch* application = host.create(application_table.class_id);
  Dispatch* books = object_of(application, u"Workbooks");
  application->Release();
  Dispatch* book = object_of(books, u"Add");
  ASSERT_TRUE(book);
  books->Release();
  Dispatch* sheets = object_of(book, u"Worksheets");
  Dispatch* sheet = object_of(sheets, u"Item", {of(1)});
  book->Release();
  sheets->Release();
  ASSERT_TRUE(sheet);
  EXPECT_EQ(host.call("DllCanUnloadNow"), 1);
  sheet->Release();
  EXPECT_EQ(host.call("DllCanUnloadNow"), 0);
  host.unload();
  EXPECT_FALSE(is_loaded(QTO_HOST_MODULE));
}

TEST(Module, EntersItselfIntoTheRegistry) {
  const fs::path folder = fs::temp_directory_path() / ("qto-registry-" + std::to_string(getpid()));
  setenv("XDG_DATA_HOME", folder.c_str(), 1);
  const auto file = user_registry();
  ASSERT_TRUE(file);
  EXPECT_EQ(*file, folder / "qto/servers");
  const Library engine(QTO_ENGINE_MODULE), host(QTO_HOST_MODULE);
  EXPECT_EQ(engine.call("DllUnregisterServer"), 0);  // nothing to take out
  EXPECT_FALSE(fs::exists(*file));
  EXPECT_EQ(host.call("DllRegisterServer"), 0);
  EXPECT_EQ(engine.call("DllRegisterServer"), 0);
  EXPECT_EQ(engine.call("DllRegisterServer"), 0);
  const auto entries = read_registry(*file);
  ASSERT_EQ(entries.size(), 8u);
  EXPECT_EQ(entries[0].program_id, "QTOHost.Application");
  EXPECT_EQ(entries[1].program_id, "QTOEngine.DrillDown");
  EXPECT_EQ(entries[1].class_id, drill_down_table.class_id);
  EXPECT_EQ(entries[1].library, fs::canonical(QTO_ENGINE_MODULE));
  EXPECT_EQ(engine.call("DllUnregisterServer"), 0);
  EXPECT_EQ(read_registry(*file).size(), 1u);
  unsetenv("XDG_DATA_HOME");
  fs::remove_all(folder);
}

/// Fills a registry from several processes at once.
int register_at_once(const fs::path& file, const std::vector<const LibraryTable*>& libraries) {
  std::vector<pid_t> children;
  for (const LibraryTable* library : libraries) {
    const pid_t child = fork();
    if (child == 0) {
      int failed = 0;
      for (int i = 0; i < 50; ++i) failed |= update_registry(file, *library, "/lib/one.so");
      _exit(failed != 0);
    }
    children.push_back(child);
  }
  int failures = 0;
  for (const pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    failures += status != 0;
  }
  return failures;
}

TEST(Registry, RegistrationsAtOnceLoseNoClass) {
  const fs::path folder = fs::temp_directory_path() / ("qto-at-once-" + std::to_string(getpid()));
  std::array<ClassTable, 4> tables{};
  std::array<const ClassTable*, 4> classes{};
  std::array<LibraryTable, 4> libraries{};
  std::vector<const LibraryTable*> all;
  for (std::size_t i = 0; i < tables.size(); ++i) {
    tables[i] = engine_tables::drill_down_table;
    tables[i].class_id = own_guid(static_cast<std::uint32_t>(0x8000 + i));
    classes[i] = &tables[i];
    libraries[i] = engine_library();
    libraries[i].classes = {&classes[i], 1};
    all.push_back(&libraries[i]);
  }
  EXPECT_EQ(register_at_once(folder / "servers", all), 0);
  EXPECT_EQ(read_registry(folder / "servers").size(), all.size());
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
  fs::remove_all(folder);
}

TEST(Registry, AFullDiskLeavesTheFileAsItWas) {
  const fs::path folder = fs::temp_directory_path() / ("qto-full-" + std::to_string(getpid()));
  const fs::path file = folder / "servers";
  ASSERT_EQ(update_registry(file, engine_library(), "/lib/one.so"), 0);
  const auto before = fs::file_size(file);
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{64, 64};
    setrlimit(RLIMIT_FSIZE, &little);
    _exit(update_registry(file, engine_library(), "/lib/another.so") == EFBIG ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(fs::file_size(file), before);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
  fs::remove_all(folder);
}

TEST(Registry, SkipsWhatIsNoEntry) {
  const fs::path file = fs::temp_directory_path() / ("qto-entries-" + std::to_string(getpid()));
  std::ofstream(file) << "junk\n\nA\tB\tC\nX.Y\t" << guid_text(own_guid(1)) << "\t/lib/x y.so\n";
  const auto entries = read_registry(file);
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].library, "/lib/x y.so");
  fs::remove(file);
  EXPECT_TRUE(read_registry(file).empty());
}

}  // namespace
}  // namespace qto::server
