#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace qto {

/// An event that clients subscribe to. Arguments that are references carry the client's answers
/// back: the raiser presets them, raises, and reads them again. Without a handler raising costs one
/// test, and the presets stand. Handlers run in the order in which they were added, on the raiser's
/// thread; they may add and remove handlers (also themselves) while the event is being raised.
template <class... Args>
class Event {
 public:
  using Handler = std::function<void(Args...)>;

  /// Subscribes; the returned token is what remove() takes.
  int add(Handler handler) {
    auto next = std::make_shared<List>(list_ ? *list_->get() : List{});
    const int token = ++next->last_token;
    next->handlers.emplace_back(token, std::move(handler));
    list_ = std::make_unique<std::shared_ptr<const List>>(std::move(next));
    return token;
  }

  void remove(int token) {
    if (!list_) return;
    auto next = std::make_shared<List>(*list_->get());
    std::erase_if(next->handlers, [token](const auto& entry) { return entry.first == token; });
    list_ = std::make_unique<std::shared_ptr<const List>>(std::move(next));
  }

  explicit operator bool() const noexcept { return list_ && !list_->get()->handlers.empty(); }

  void operator()(Args... args) const {
    if (!list_) return;
    // The list is replaced, never edited, so a raise in progress keeps the one it started with.
    const std::shared_ptr<const List> snapshot = *list_;
    for (const auto& entry : snapshot->handlers) entry.second(args...);
  }

 private:
  struct List {
    int last_token = 0;
    std::vector<std::pair<int, Handler>> handlers;
  };
  // One pointer wide: a model part holds five events and there may be millions of parts.
  std::unique_ptr<std::shared_ptr<const List>> list_;
};

}  // namespace qto
