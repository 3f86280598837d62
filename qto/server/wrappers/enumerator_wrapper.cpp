#include "qto/server/wrappers/callable_wrapper.hpp"

#include <utility>

#include "qto/com/errors.hpp"
#include "qto/server/module/counted.hpp"
#include "qto/server/wrappers/marshaling.hpp"

namespace qto::server {
namespace {

class EnumeratorWrapper final : public Counted<EnumVariant> {
 public:
  explicit EnumeratorWrapper(Ref<Enumerator> walk)
      : Counted(iid_enum_variant), walk_(std::move(walk)) {}

  Result QTO_CALL Next(std::uint32_t count, ComVariant* out, std::uint32_t* fetched) override {
    if (!out && count) return null_pointer;
    std::uint32_t done = 0;
    const Result read = guarded([&] {
      Variant item;
      for (; done < count && walk_->next(item); ++done) out[done] = to_com(item);
      return done == count ? ok : no_more;
    });
    if (read < 0)
      while (done > 0) clear(out[--done]);
    if (fetched) *fetched = done;
    return read;
  }
  Result QTO_CALL Skip(std::uint32_t count) override {
    return guarded([&] {
      Variant item;
      while (count > 0 && walk_->next(item)) --count;
      return count == 0 ? ok : no_more;
    });
  }
  Result QTO_CALL Reset() override {
    return guarded([&] {
      walk_->reset();
      return ok;
    });
  }
  Result QTO_CALL Clone(EnumVariant** out) override {
    if (!out) return null_pointer;
    *out = nullptr;
    return guarded([&] {
      *out = new EnumeratorWrapper(walk_->clone());
      return ok;
    });
  }

 private:
  Ref<Enumerator> walk_;
};

}  // namespace

EnumVariant* wrap_enumerator(Ref<Enumerator> walk) {
  return new EnumeratorWrapper(std::move(walk));
}

}  // namespace qto::server
