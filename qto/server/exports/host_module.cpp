#include <memory>

#include "qto/hosts/embedded/application.hpp"
#include "qto/server/host_tables/library.hpp"
#include "qto/server/module/module.hpp"

namespace qto::server {
namespace {

/// Keeps the module while an application, or anything obtained from it, is alive anywhere.
struct Use {
  Use() noexcept { module_add_use(); }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
  ~Use() { module_release_use(); }
};

Ref<Object> create_application() {
  embedded::Application application;
  // The handler goes when the application does; it takes no address.
  application.hyperlink_followed().add([use = std::make_shared<Use>()](std::string_view, bool&) {});
  return application.ref();
}

}  // namespace

const Module& this_module() {
  static const ClassTable application = [] {
    ClassTable table = host_tables::application_table;
    table.create = create_application;
    return table;
  }();
  static const ClassTable* const classes[] = {&application};
  static const LibraryTable library = [] {
    LibraryTable own = host_library();
    own.classes = classes;
    return own;
  }();
  static const LibraryTable* const shown[] = {&host_library()};
  static const Module module{&library, shown, nullptr};
  return module;
}

}  // namespace qto::server
