#include "qto/links/context.hpp"

#include <utility>

#include "qto/links/contexts.hpp"

namespace qto {

Context::Context(Ref<host::Application> application, std::shared_ptr<All> all)
    : application_(std::move(application)), all_(std::move(all)) {
  reset_books();
  all_->push_back(this);
}

Context::~Context() { std::erase(*all_, this); }

void Context::reset_books() {
  books_opened_ = make_ref<LinkedBooks>();
  books_not_opened_ = make_ref<LinkedBooks>();
}

Contexts::Contexts() : all_(std::make_shared<Context::All>()), current_(make(nullptr)) {}

Ref<Context> Contexts::make(Ref<host::Application> application) {
  return Ref<Context>(new Context(std::move(application), all_));
}

void Contexts::enter(Ref<host::Application> application) {
  if (!application) {
    current_ = make(nullptr);
    return;
  }
  for (Context* context : *all_) {
    if (context->application_ != application) continue;
    current_ = Ref<Context>(context);
    return;
  }
  // What was recorded before there was an application is kept for the first one.
  if (current_->application_)
    current_ = make(std::move(application));
  else
    current_->application_ = std::move(application);
}

void Contexts::reset_books() {
  for (Context* context : *all_) context->reset_books();
}

}  // namespace qto
