#include "qto/server/host_names.hpp"

namespace qto::server {
namespace {

class PositionWalk final : public Enumerator {
 public:
  PositionWalk(Ref<Object> list, std::function<std::int64_t()> count,
               std::function<Ref<Object>(std::int64_t)> item, std::int64_t done)
      : list_(std::move(list)), count_(std::move(count)), item_(std::move(item)), done_(done) {}
  bool next(Variant& item) override {
    if (done_ >= count_()) return false;
    item = Variant(item_(++done_));
    return true;
  }
  void reset() override { done_ = 0; }
  Ref<Enumerator> clone() const override {
    return make_ref<PositionWalk>(list_, count_, item_, done_);
  }

 private:
  Ref<Object> list_;
  std::function<std::int64_t()> count_;
  std::function<Ref<Object>(std::int64_t)> item_;
  std::int64_t done_;
};

}  // namespace

Ref<Enumerator> walk_positions(Ref<Object> list, std::function<std::int64_t()> count,
                               std::function<Ref<Object>(std::int64_t)> item) {
  return make_ref<PositionWalk>(std::move(list), std::move(count), std::move(item), 0);
}

}  // namespace qto::server
