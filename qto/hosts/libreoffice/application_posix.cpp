#include "qto/hosts/libreoffice/application.hpp"

#include <dlfcn.h>

#include <filesystem>
#include <string>

#include "qto/host/failure.hpp"
#include "qto/hosts/libreoffice/start.hpp"

namespace qto::libreoffice {
namespace {

constexpr const char* library_name = "libqtooffice.so";

[[noreturn]] void fail(const std::string& text) {
  throw host::HostFailure(host::general_failure, text);
}

/// Where the shared object lies: beside what holds this code, or in the library folder next to it.
std::filesystem::path find_library() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&find_library), &info);
  std::error_code failure;
  std::filesystem::path own = info.dli_fname ? info.dli_fname : "";
  if (!own.is_absolute() || !std::filesystem::exists(own, failure))
    own = std::filesystem::read_symlink("/proc/self/exe", failure);
  const std::filesystem::path folder =
      std::filesystem::weakly_canonical(own, failure).parent_path();
  for (const char* place :
       {"", "../lib", "../" QTO_LIBRARY_FOLDER "/qto", "../" QTO_LIBRARY_FOLDER})
    if (const auto file = folder / place / library_name; std::filesystem::exists(file, failure))
      return file;
  fail(std::string("qto's host for LibreOffice, ") + library_name +
       ", is not there: it is built where Debian's package libreoffice-dev is installed");
}

void* load() {
  const std::filesystem::path file = find_library();
  if (void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) return library;
  const std::string problem = dlerror();
  if (problem.find("libuno") != std::string::npos)
    fail("LibreOffice is not installed; install Debian's package libreoffice-calc");
  fail("qto's host for LibreOffice cannot be loaded: " + problem);
}

}  // namespace

Ref<host::Application> application() {
  static void* const library = load();
  const auto start = reinterpret_cast<decltype(&qto_libreoffice_application)>(
      dlsym(library, "qto_libreoffice_application"));
  if (!start) fail("qto's host for LibreOffice is of another version than this program");
  Ref<host::Application> application(start());
  application->release();  // counted by the caller's reference
  return application;
}

}  // namespace qto::libreoffice
