#include "tests/late_bound/played_server.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "qto/com/values.hpp"
#include "qto/server/wrappers/marshaling.hpp"

namespace qto::test {

class PlayedServer::Stub final : public com::Dispatch {
 public:
  Stub(PlayedServer& all, com::Unknown* identity, com::Holder<com::Dispatch> inner)
      : all_(all), identity_(identity), inner_(std::move(inner)) {}

  com::Result QTO_CALL QueryInterface(const com::Guid& id, void** out) override {
    *out = id == com::iid_unknown || id == com::iid_dispatch ? this : nullptr;
    if (!*out) return com::no_interface;
    AddRef();
    return com::ok;
  }
  std::uint32_t QTO_CALL AddRef() override { return ++count_; }
  std::uint32_t QTO_CALL Release() override {
    const std::uint32_t left = --count_;
    if (left == 0) {
      all_.live_.erase(identity_);
      delete this;
    }
    return left;
  }
  com::Result QTO_CALL GetTypeInfoCount(std::uint32_t* count) override {
    return inner_->GetTypeInfoCount(count);
  }
  com::Result QTO_CALL GetTypeInfo(std::uint32_t index, std::uint32_t locale,
                                   com::TypeInfo** out) override {
    return inner_->GetTypeInfo(index, locale, out);
  }
  com::Result QTO_CALL GetIDsOfNames(const com::Guid& reserved, const char16_t* const* names,
                                     std::uint32_t count, std::uint32_t locale,
                                     std::int32_t* ids) override {
    if (all_.hidden.contains(names[0])) return com::failure(0x80020006);
    return inner_->GetIDsOfNames(reserved, names, count, locale, ids);
  }
  com::Result QTO_CALL Invoke(std::int32_t id, const com::Guid& reserved, std::uint32_t locale,
                              std::uint16_t flags, com::CallParameters* parameters,
                              com::ComVariant* result, com::ExceptionInfo* exception,
                              std::uint32_t* bad_argument) override {
    if (all_.fails()) return all_.result_;
    std::vector<com::ComVariant> values(parameters->values, parameters->values + parameters->count);
    for (com::ComVariant& value : values)
      if (value.type == com::vt_dispatch) value.unknown = all_.inner_of(value.unknown);
    com::CallParameters passed = *parameters;
    passed.values = values.data();
    const com::Result done =
        inner_->Invoke(id, reserved, locale, flags, &passed, result, exception, bad_argument);
    if (done >= 0 && result && result->type == com::vt_dispatch && result->dispatch)
      result->dispatch = all_.wrap(com::Holder<com::Dispatch>(result->dispatch));
    return done;
  }
  com::Unknown* inner() const { return inner_.get(); }

 private:
  PlayedServer& all_;
  com::Unknown* identity_;
  com::Holder<com::Dispatch> inner_;
  std::uint32_t count_ = 1;
};

PlayedServer::~PlayedServer() {
  EXPECT_TRUE(live_.empty()) << live_.size() << " objects were not released";
}

com::Dispatch* PlayedServer::wrap(com::Holder<com::Dispatch> inner) {
  void* identity = nullptr;
  inner->QueryInterface(com::iid_unknown, &identity);
  const com::Holder<com::Unknown> uncounted(static_cast<com::Unknown*>(identity));
  const auto found = live_.find(uncounted.get());
  if (found != live_.end()) {
    found->second->AddRef();
    return found->second;
  }
  auto* stub = new Stub(*this, uncounted.get(), std::move(inner));
  live_.emplace(uncounted.get(), stub);
  return stub;
}

com::Unknown* PlayedServer::unknown_of(Stub* stub) { return stub; }

com::Unknown* PlayedServer::inner_of(com::Unknown* passed) const {
  for (const auto& [identity, stub] : live_)
    if (stub == passed) return stub->inner();
  return passed;
}

com::Holder<com::Unknown> PlayedServer::stub_of(const Ref<Object>& object) {
  auto* wrapper = static_cast<com::Dispatch*>(server::wrapper_of(object));
  return stub_of(com::Holder<com::Dispatch>(wrapper));
}

}  // namespace qto::test
