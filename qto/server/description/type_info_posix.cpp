#include <algorithm>
#include <memory>
#include <string>

#include "qto/com/errors.hpp"
#include "qto/com/values.hpp"
#include "qto/server/calls/dispatch.hpp"
#include "qto/server/description/type_info.hpp"
#include "qto/server/module/counted.hpp"

namespace qto::server {
namespace {

/// A description that is read from the table.
class TableTypeInfo final : public Counted<TypeInfo> {
 public:
  TableTypeInfo(const ClassTable& table, TypePart part)
      : Counted(iid_type_info), table_(table), part_(part) {}

  Result QTO_CALL GetTypeAttr(TypeAttributes** out) override {
    if (!out) return null_pointer;
    return guarded([&] {
      auto made = std::make_unique<TypeAttributes>();
      made->id = is_class() ? table_.class_id : table_.interface_id;
      made->locale = locale;
      made->constructor = made->destructor = id_of_type;
      made->kind = is_class() ? kind_class : kind_dispatch;
      made->functions = is_class() ? 0 : static_cast<std::uint16_t>(table_.members.size());
      made->major = 1;
      *out = made.release();
      return ok;
    });
  }
  void QTO_CALL ReleaseTypeAttr(TypeAttributes* attributes) override { delete attributes; }

  Result QTO_CALL GetNames(std::int32_t id, Text* names, std::uint32_t room,
                           std::uint32_t* count) override {
    if (!names || !count) return null_pointer;
    const Member* member = find(id);
    *count = 0;
    if (!member) return element_not_found;
    return guarded([&] {
      const auto wanted = std::min<std::size_t>(room, 1 + member->types.size());
      for (; *count < wanted; ++*count)
        names[*count] =
            make_text(*count == 0 ? member->name : argument_at(member->arguments, *count - 1).name);
      return ok;
    });
  }
  Result QTO_CALL GetIDsOfNames(const char16_t* const* names, std::uint32_t count,
                                std::int32_t* ids) override {
    return ids_of_names(table_, names, count, ids);
  }
  Result QTO_CALL Invoke(void* object, std::int32_t id, std::uint16_t flags,
                         CallParameters* parameters, ComVariant* result, ExceptionInfo* exception,
                         std::uint32_t* bad_argument) override {
    if (!object) return null_pointer;
    return static_cast<Dispatch*>(object)->Invoke(id, Guid(), locale, flags, parameters, result,
                                                  exception, bad_argument);
  }
  Result QTO_CALL GetDocumentation(std::int32_t id, Text* name, Text* description,
                                   std::uint32_t* help_context, Text* help_file) override {
    for (Text* out : {name, description, help_file})
      if (out) *out = nullptr;
    if (help_context) *help_context = 0;
    const Member* member = id == id_of_type ? nullptr : find(id);
    if (id != id_of_type && !member) return element_not_found;
    return guarded([&] {
      if (name) *name = make_text(member ? std::string(member->name) : type_name());
      if (description && !member) *description = make_text(table_.role);
      return ok;
    });
  }

  // What a client without type libraries has no use for.
  Result QTO_CALL GetTypeComp(void**) override { return not_implemented; }
  Result QTO_CALL GetFuncDesc(std::uint32_t, void**) override { return not_implemented; }
  Result QTO_CALL GetVarDesc(std::uint32_t, void**) override { return not_implemented; }
  Result QTO_CALL GetRefTypeOfImplType(std::uint32_t, std::uint32_t*) override {
    return not_implemented;
  }
  Result QTO_CALL GetImplTypeFlags(std::uint32_t, std::int32_t*) override {
    return not_implemented;
  }
  Result QTO_CALL GetDllEntry(std::int32_t, std::int32_t, Text*, Text*, std::uint16_t*) override {
    return not_implemented;
  }
  Result QTO_CALL GetRefTypeInfo(std::uint32_t, TypeInfo**) override { return not_implemented; }
  Result QTO_CALL AddressOfMember(std::int32_t, std::int32_t, void**) override {
    return not_implemented;
  }
  Result QTO_CALL CreateInstance(Unknown*, const Guid&, void**) override { return not_implemented; }
  Result QTO_CALL GetMops(std::int32_t, Text*) override { return not_implemented; }
  Result QTO_CALL GetContainingTypeLib(void**, std::uint32_t*) override { return not_implemented; }
  void QTO_CALL ReleaseFuncDesc(void*) override {}
  void QTO_CALL ReleaseVarDesc(void*) override {}

 private:
  static constexpr std::uint32_t locale = 0x409;
  static constexpr Result element_not_found = failure(0x8002802B);

  bool is_class() const { return part_ == TypePart::whole_class; }
  std::string type_name() const { return (is_class() ? "" : "_") + std::string(table_.name); }
  const Member* find(std::int32_t id) const {
    for (const Member& member : table_.members)
      if (member.id == id) return &member;
    return nullptr;
  }

  const ClassTable& table_;
  TypePart part_;
};

}  // namespace

Result type_info_of(const ClassTable& table, TypePart part, TypeInfo** out) noexcept {
  if (!out) return null_pointer;
  *out = nullptr;
  return guarded([&] {
    *out = new TableTypeInfo(table, part);
    return ok;
  });
}

void release_type_library() noexcept {}

}  // namespace qto::server
