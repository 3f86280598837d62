#pragma once

#include <memory>
#include <vector>

#include "qto/automation/ref.hpp"
#include "qto/host/application.hpp"
#include "qto/links/linked_books.hpp"

namespace qto {

/// What a drill works in: the spreadsheet application of its start object, and the workbooks that
/// references led to there. Drills of one apartment over one application share a context; parts
/// keep that of the drill that made them, so drills over other applications leave them alone.
class Context : public RefCounted {
 public:
  ~Context() override;

  /// Null until a start object is accepted.
  const Ref<host::Application>& application() const noexcept { return application_; }
  /// Workbooks that the engine opened, and those that it could not or was not to open.
  const Ref<LinkedBooks>& BooksOpened() const noexcept { return books_opened_; }
  const Ref<LinkedBooks>& BooksNotOpened() const noexcept { return books_not_opened_; }

 private:
  friend class Contexts;
  using All = std::vector<Context*>;
  Context(Ref<host::Application> application, std::shared_ptr<All> all);
  void reset_books();

  Ref<host::Application> application_;
  Ref<LinkedBooks> books_opened_;
  Ref<LinkedBooks> books_not_opened_;
  std::shared_ptr<All> all_;  // of its apartment
};

}  // namespace qto
