#include "qto/server/enumerator_face.hpp"

#include <utility>

#include "qto/com/errors.hpp"
#include "qto/server/counted.hpp"
#include "qto/server/face.hpp"

namespace qto::server::com {
namespace {

class EnumeratorFace final : public Counted<EnumVariant> {
 public:
  explicit EnumeratorFace(Ref<Enumerator> walk)
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
      *out = new EnumeratorFace(walk_->clone());
      return ok;
    });
  }

 private:
  Ref<Enumerator> walk_;
};

}  // namespace

EnumVariant* enumerator_face(Ref<Enumerator> walk) { return new EnumeratorFace(std::move(walk)); }

}  // namespace qto::server::com
