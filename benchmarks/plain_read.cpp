#include "benchmarks/plain_read.hpp"

#include <expat.h>
#include <zip.h>

#include <chrono>
#include <memory>
#include <string_view>

namespace qto::benchmarks {
namespace {

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
std::string read_part(zip_t* archive, zip_uint64_t index, PlainTotals& totals) {
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

}  // namespace

PlainTotals plain_pass(const std::string& path) {
  const auto started = std::chrono::steady_clock::now();
  PlainTotals totals;
  int error = 0;
  const Archive archive(zip_open(path.c_str(), ZIP_RDONLY, &error));
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
  totals.seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  return totals;
}

}  // namespace qto::benchmarks
