#pragma once

#include <array>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "qto/com/com.hpp"
#include "qto/com/conversion.hpp"
#include "qto/com/holder.hpp"
#include "qto/com/values.hpp"
#include "qto/hosts/late_bound/member.hpp"

/// Calls by name.
namespace qto::late_bound {

/// The identifiers of the members of one class, as far as they were asked for.
class MemberIds {
 public:
  explicit MemberIds(std::string class_name) : class_name_(std::move(class_name)) {}
  const std::string& class_name() const noexcept { return class_name_; }
  /// Asks the object where the identifier is not known yet; `failed` is the answer when it has no
  /// such member.
  std::optional<std::int32_t> id_of(com::Dispatch& object, HostMember member, com::Result& failed);

 private:
  struct Known {
    std::int32_t id = 0;
    bool found = false, missing = false;
  };
  std::string class_name_;
  std::array<Known, static_cast<std::size_t>(HostMember::count_)> known_{};
};

/// An argument; nothing where it is left out and another one follows.
using Given = std::optional<Variant>;
using GivenList = std::initializer_list<Given>;

/// An object of another server, without a class of ours.
class Remote {
 public:
  Remote() noexcept = default;
  /// `ids` must live as long as the object.
  Remote(com::Holder<com::Dispatch> object, MemberIds& ids)
      : object_(std::move(object)), ids_(&ids) {}
  Remote(Remote&&) noexcept = default;
  Remote& operator=(Remote&&) noexcept = default;

  explicit operator bool() const noexcept { return bool(object_); }
  com::Dispatch* object() const noexcept { return object_.get(); }

  /// What a property or a method answers. Throws HostFailure with the number, the text and the name
  /// of the call.
  Variant get(HostMember member, com::ObjectMarshaler& marshaler, GivenList arguments = {}) const;
  /// The same; nothing when it fails.
  std::optional<Variant> probe(HostMember member, com::ObjectMarshaler& marshaler,
                               GivenList arguments = {}) const;
  /// The reference that a member answers as it is, or null for no object.
  com::Holder<com::Dispatch> get_object(HostMember member, com::ObjectMarshaler& marshaler,
                                        GivenList arguments = {}) const;
  void put(HostMember member, com::ObjectMarshaler& marshaler, const Variant& value) const;
  /// True when the object has such a member.
  bool has(HostMember member) const;

 private:
  struct Failure;
  class Answer;
  bool invoke(HostMember member, std::uint16_t flags, com::ObjectMarshaler& marshaler,
              GivenList arguments, Answer& answer, Failure& failure) const;
  [[noreturn]] void fail(HostMember member, const Failure& failure) const;

  com::Holder<com::Dispatch> object_;
  MemberIds* ids_ = nullptr;
};

/// The class of a remote object by its type information, without the "_" that an interface may
/// carry; "" when it tells none.
std::string class_of(com::Dispatch& object);

/// The number behind a result code: 1004 of 800A03EC, others as they are.
std::int32_t failure_number(com::Result result) noexcept;

}  // namespace qto::late_bound
