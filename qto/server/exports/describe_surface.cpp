#include <cstdio>
#include <string>
#include <string_view>

#include "qto/server/description/describe.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/host_tables/library.hpp"

/// Writes the automation surface to standard output in one of its textual forms.
int main(int count, char** arguments) {
  using namespace qto::server;
  const bool host = count == 3 && arguments[2] == std::string_view("host");
  const std::string_view form = count == 2 || host ? arguments[1] : "";
  const LibraryTable& library = host ? host_library() : engine_library();
  std::string text;
  if (form == "idl") {
    text = idl_text(library);
  } else if (form == "markdown") {
    text = interface_page(library);
  } else if (form == "snapshot") {
    text = snapshot_text(library);
  } else if (form == "stubs") {
    text = python_stubs(library);
  } else {
    std::fputs("describe_surface idl|markdown|snapshot|stubs [host]\n", stderr);
    return 2;
  }
  return std::fputs(text.c_str(), stdout) < 0;
}
