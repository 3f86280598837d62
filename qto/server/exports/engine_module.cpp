#include "qto/automation/apartment.hpp"
#include "qto/hosts/late_bound/late_bound.hpp"
#include "qto/links/main.hpp"
#include "qto/server/engine_tables/library.hpp"
#include "qto/server/host_tables/library.hpp"
#include "qto/server/module/module.hpp"

namespace qto::server {

const Module& this_module() {
  static const LibraryTable* const shown[] = {&engine_library(), &host_library()};
  // The application of the last start object would keep its host from going.
  static const Module module{&engine_library(), shown,
                             [] {
                               Main::set_shared_application(nullptr);
                               end_apartment();
                               late_bound::forget_sessions();
                             },
                             late_bound::proxy_of};
  return module;
}

}  // namespace qto::server
