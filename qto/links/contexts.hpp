#pragma once

#include <memory>

#include "qto/links/context.hpp"

namespace qto {

/// The contexts of one apartment.
class Contexts {
 public:
  Contexts();
  /// That of the start object accepted last.
  const Ref<Context>& current() const noexcept { return current_; }
  /// Makes the context of an application the current one. Null begins with a fresh one.
  void enter(Ref<host::Application> application);
  /// Replaces the lists of linked workbooks by empty ones.
  void reset_books();

 private:
  Ref<Context> make(Ref<host::Application> application);

  std::shared_ptr<Context::All> all_;
  Ref<Context> current_;
};

}  // namespace qto
