// The yardstick of the benchmarks: inflates every XML part of a package and tokenizes it, keeping
// nothing. No reader of workbooks that sees all of a file can be faster on one core.

#include <expat.h>
#include <zip.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace {

struct Totals {
  std::int64_t parts = 0;
  std::int64_t bytes = 0;
  std::string failure;
};

struct CloseArchive {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseFile {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};
struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using Archive = std::unique_ptr<zip_t, CloseArchive>;
using File = std::unique_ptr<zip_file_t, CloseFile>;
using Parser = std::unique_ptr<XML_ParserStruct, FreeParser>;

// Empty, but set: without handlers expat would skip building names and attributes.
void XMLCALL on_start(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL on_end(void*, const XML_Char*) {}
void XMLCALL on_text(void*, const XML_Char*, int) {}

bool is_xml(std::string_view name) { return name.ends_with(".xml") || name.ends_with(".rels"); }

// The reason of a failure, empty when the whole part was read.
std::string read_part(zip_t* archive, zip_uint64_t index, Totals& totals) {
  constexpr int buffer_size = 1 << 16;
  const File file(zip_fopen_index(archive, index, 0));
  if (!file) return zip_strerror(archive);
  const Parser parser(XML_ParserCreate(nullptr));
  XML_SetElementHandler(parser.get(), on_start, on_end);
  XML_SetCharacterDataHandler(parser.get(), on_text);
  for (;;) {
    void* buffer = XML_GetBuffer(parser.get(), buffer_size);
    if (buffer == nullptr) return "out of memory";
    const zip_int64_t size = zip_fread(file.get(), buffer, buffer_size);
    if (size < 0) return zip_file_strerror(file.get());
    totals.bytes += size;
    if (XML_ParseBuffer(parser.get(), static_cast<int>(size), size == 0) != XML_STATUS_OK)
      return XML_ErrorString(XML_GetErrorCode(parser.get()));
    if (size == 0) return {};
  }
}

Totals pass_over(const char* path) {
  Totals totals;
  int error = 0;
  const Archive archive(zip_open(path, ZIP_RDONLY, &error));
  if (!archive) {
    totals.failure = "not a readable zip archive";
    return totals;
  }
  const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
  for (zip_int64_t n = 0; n < count && totals.failure.empty(); ++n) {
    const auto index = static_cast<zip_uint64_t>(n);
    const char* name = zip_get_name(archive.get(), index, 0);
    if (name == nullptr || !is_xml(name)) continue;
    const std::string failure = read_part(archive.get(), index, totals);
    if (!failure.empty()) totals.failure = std::string(name) + ": " + failure;
    ++totals.parts;
  }
  return totals;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: plain_pass FILE\n");
    return 1;
  }
  const auto started = std::chrono::steady_clock::now();
  const Totals totals = pass_over(argv[1]);
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
  if (!totals.failure.empty()) {
    std::fprintf(stderr, "%s: %s\n", argv[1], totals.failure.c_str());
    return 1;
  }
  std::printf("parts %lld\nbytes %lld\nseconds %.3f\n", static_cast<long long>(totals.parts),
              static_cast<long long>(totals.bytes), elapsed.count());
}
