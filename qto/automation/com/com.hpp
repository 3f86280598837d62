#pragma once

#include <cstddef>
#include <cstdint>

#include "qto/automation/com/guid.hpp"

/// The component object model's binary interfaces, laid out as its clients expect them: function
/// tables in this order, variants of 24 bytes, texts as counted UTF-16.
namespace qto::server::com {

using Result = std::int32_t;

constexpr Result failure(std::uint32_t number) { return static_cast<Result>(number); }
inline constexpr Result ok = 0;
inline constexpr Result no_more = 1;  ///< success that says "no" or "fewer than asked for"
inline constexpr Result not_implemented = failure(0x80004001);
inline constexpr Result no_interface = failure(0x80004002);
inline constexpr Result null_pointer = failure(0x80004003);
inline constexpr Result no_aggregation = failure(0x80040110);
inline constexpr Result class_not_available = failure(0x80040111);
inline constexpr Result no_connection = failure(0x80040200);
inline constexpr Result registration_failed = failure(0x80040201);

constexpr Guid standard_guid(std::uint32_t n) { return {n, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }
inline constexpr Guid iid_unknown = standard_guid(0);
inline constexpr Guid iid_class_factory = standard_guid(1);
inline constexpr Guid iid_dispatch = standard_guid(0x20400);
inline constexpr Guid iid_enum_variant = standard_guid(0x20404);
inline constexpr Guid iid_connection_point_container{
    0xB196B284, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
inline constexpr Guid iid_connection_point{
    0xB196B286, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
/// Answers the object itself, uncounted: for libraries of the same build in one process.
inline constexpr Guid iid_native_object = own_guid(0xFFF0);

using Text = char16_t*;  ///< counted; the number of bytes lies in the 32 bits before it

enum VariantType : std::uint16_t {
  vt_empty = 0,
  vt_null = 1,
  vt_i2 = 2,
  vt_i4 = 3,
  vt_r4 = 4,
  vt_r8 = 5,
  vt_date = 7,
  vt_text = 8,
  vt_dispatch = 9,
  vt_error = 10,
  vt_bool = 11,
  vt_variant = 12,
  vt_unknown = 13,
  vt_i8 = 20,
  vt_array = 0x2000,
  vt_by_ref = 0x4000,
};

struct Dispatch;
struct Unknown;

struct ArrayBound {
  std::uint32_t count;
  std::int32_t first;
};
/// An array of two dimensions; the last one, whose bound comes first, is the rows' own.
struct Array {
  std::uint16_t dimensions;
  std::uint16_t features;
  std::uint32_t element_size;
  std::uint32_t locks;
  void* data;
  ArrayBound bounds[2];
};

struct ComVariant {
  std::uint16_t type = vt_empty;
  std::uint16_t reserved[3] = {};
  union {
    std::int16_t i2;
    std::int32_t i4;
    std::int64_t i8;
    float r4;
    double r8;
    std::int16_t boolean;
    Text text;
    Dispatch* dispatch;
    Unknown* unknown;
    Array* array;
    void* pointer;
    std::int64_t bits[2] = {};
  };
};
static_assert(sizeof(ComVariant) == 24);

struct CallParameters {
  ComVariant* values;         ///< the last argument first
  const std::int32_t* named;  ///< identifiers of the first `named_count` of them
  std::uint32_t count, named_count;
};
inline constexpr std::int32_t id_unknown = -1;
inline constexpr std::int32_t id_assigned_value = -3;

// No virtual destructors: they would take places in the function tables.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
struct Unknown {
  virtual Result QueryInterface(const Guid& id, void** out) = 0;
  virtual std::uint32_t AddRef() = 0;
  virtual std::uint32_t Release() = 0;
};
struct Dispatch : Unknown {
  virtual Result GetTypeInfoCount(std::uint32_t* count) = 0;
  virtual Result GetTypeInfo(std::uint32_t index, std::uint32_t locale, Unknown** out) = 0;
  virtual Result GetIDsOfNames(const Guid& reserved, const char16_t* const* names,
                               std::uint32_t count, std::uint32_t locale, std::int32_t* ids) = 0;
  virtual Result Invoke(std::int32_t id, const Guid& reserved, std::uint32_t locale,
                        std::uint16_t flags, CallParameters* parameters, ComVariant* result,
                        void* exception, std::uint32_t* bad_argument) = 0;
};
struct ClassFactory : Unknown {
  virtual Result CreateInstance(Unknown* outer, const Guid& id, void** out) = 0;
  virtual Result LockServer(std::int32_t lock) = 0;
};
struct EnumVariant : Unknown {
  virtual Result Next(std::uint32_t count, ComVariant* out, std::uint32_t* fetched) = 0;
  virtual Result Skip(std::uint32_t count) = 0;
  virtual Result Reset() = 0;
  virtual Result Clone(EnumVariant** out) = 0;
};
struct ConnectionPoint : Unknown {
  virtual Result GetConnectionInterface(Guid* id) = 0;
  virtual Result GetConnectionPointContainer(Unknown** out) = 0;
  virtual Result Advise(Unknown* sink, std::uint32_t* cookie) = 0;
  virtual Result Unadvise(std::uint32_t cookie) = 0;
  virtual Result EnumConnections(Unknown** out) = 0;
};
struct ConnectionPointContainer : Unknown {
  virtual Result EnumConnectionPoints(Unknown** out) = 0;
  virtual Result FindConnectionPoint(const Guid& id, ConnectionPoint** out) = 0;
};
#pragma GCC diagnostic pop

}  // namespace qto::server::com
