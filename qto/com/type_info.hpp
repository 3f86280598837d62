#pragma once

#include "qto/com/com.hpp"

/// What clients ask about types.
namespace qto::com {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
/// Tells the class of an object, and with it its events.
struct ProvideClassInfo2 : Unknown {
  virtual Result QTO_CALL GetClassInfo(TypeInfo** out) = 0;
  virtual Result QTO_CALL GetGUID(std::uint32_t kind, Guid* out) = 0;
};
inline constexpr std::uint32_t default_event_interface = 1;  ///< the kind that GetGUID knows

/// What TypeInfo tells of a type as a whole.
struct TypeAttributes {
  Guid id;
  std::uint32_t locale, reserved;
  std::int32_t constructor, destructor;
  char16_t* schema;
  std::uint32_t instance_size;
  std::int32_t kind;
  std::uint16_t functions, variables, implemented, table_bytes, alignment, flags, major, minor;
  void* alias;
  std::uint16_t alias_type;
  void* idl_reserved;
  std::uint16_t idl_flags;
};
inline constexpr std::int32_t kind_dispatch = 4, kind_class = 5;
inline constexpr std::int32_t id_of_type = -1;  ///< asks GetDocumentation for the type itself

/// The description of a type. Descriptions that nobody needs off Windows are passed untyped.
struct TypeInfo : Unknown {
  virtual Result QTO_CALL GetTypeAttr(TypeAttributes** out) = 0;
  virtual Result QTO_CALL GetTypeComp(void** out) = 0;
  virtual Result QTO_CALL GetFuncDesc(std::uint32_t index, void** out) = 0;
  virtual Result QTO_CALL GetVarDesc(std::uint32_t index, void** out) = 0;
  virtual Result QTO_CALL GetNames(std::int32_t id, Text* names, std::uint32_t room,
                                   std::uint32_t* count) = 0;
  virtual Result QTO_CALL GetRefTypeOfImplType(std::uint32_t index, std::uint32_t* out) = 0;
  virtual Result QTO_CALL GetImplTypeFlags(std::uint32_t index, std::int32_t* out) = 0;
  virtual Result QTO_CALL GetIDsOfNames(const char16_t* const* names, std::uint32_t count,
                                        std::int32_t* ids) = 0;
  virtual Result QTO_CALL Invoke(void* object, std::int32_t id, std::uint16_t flags,
                                 CallParameters* parameters, ComVariant* result,
                                 ExceptionInfo* exception, std::uint32_t* bad_argument) = 0;
  /// Every pointer may be null; the texts are the caller's.
  virtual Result QTO_CALL GetDocumentation(std::int32_t id, Text* name, Text* description,
                                           std::uint32_t* help_context, Text* help_file) = 0;
  virtual Result QTO_CALL GetDllEntry(std::int32_t id, std::int32_t kind, Text* library, Text* name,
                                      std::uint16_t* ordinal) = 0;
  virtual Result QTO_CALL GetRefTypeInfo(std::uint32_t reference, TypeInfo** out) = 0;
  virtual Result QTO_CALL AddressOfMember(std::int32_t id, std::int32_t kind, void** out) = 0;
  virtual Result QTO_CALL CreateInstance(Unknown* outer, const Guid& id, void** out) = 0;
  virtual Result QTO_CALL GetMops(std::int32_t id, Text* out) = 0;
  virtual Result QTO_CALL GetContainingTypeLib(void** library, std::uint32_t* index) = 0;
  virtual void QTO_CALL ReleaseTypeAttr(TypeAttributes* attributes) = 0;
  virtual void QTO_CALL ReleaseFuncDesc(void* description) = 0;
  virtual void QTO_CALL ReleaseVarDesc(void* description) = 0;
};
#pragma GCC diagnostic pop

}  // namespace qto::com
