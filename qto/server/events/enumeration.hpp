#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "qto/server/module/counted.hpp"

namespace qto::server {

/// An enumerator over items that were gathered beforehand and are counted: `Traits::add` takes a
/// reference for a client, `Traits::release` gives one back.
template <class Item, class Traits>
class Enumeration final : public Counted<EnumerationOf<Item>> {
 public:
  /// Takes the references of the items over.
  Enumeration(const Guid& interface_id, std::vector<Item> items)
      : Enumeration(interface_id, std::make_shared<Items>(std::move(items)), 0) {}

  Result QTO_CALL Next(std::uint32_t count, Item* out, std::uint32_t* fetched) override {
    if (!out || (!fetched && count != 1)) return null_pointer;
    std::uint32_t done = 0;
    for (; done < count && next_ < items_->list.size(); ++done) {
      out[done] = items_->list[next_++];
      Traits::add(out[done]);
    }
    if (fetched) *fetched = done;
    return done == count ? ok : no_more;
  }
  Result QTO_CALL Skip(std::uint32_t count) override {
    const std::size_t left = items_->list.size() - next_;
    next_ += count < left ? count : left;
    return count <= left ? ok : no_more;
  }
  Result QTO_CALL Reset() override {
    next_ = 0;
    return ok;
  }
  Result QTO_CALL Clone(EnumerationOf<Item>** out) override {
    if (!out) return null_pointer;
    *out = new Enumeration(this->interface_id(), items_, next_);
    return ok;
  }

 private:
  struct Items {
    explicit Items(std::vector<Item> given) : list(std::move(given)) {}
    Items(const Items&) = delete;
    Items& operator=(const Items&) = delete;
    ~Items() {
      for (Item& item : list) Traits::release(item);
    }
    std::vector<Item> list;
  };
  Enumeration(const Guid& interface_id, std::shared_ptr<Items> items, std::size_t next)
      : Counted<EnumerationOf<Item>>(interface_id), items_(std::move(items)), next_(next) {}

  std::shared_ptr<Items> items_;
  std::size_t next_;
};

}  // namespace qto::server
