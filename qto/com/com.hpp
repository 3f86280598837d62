#pragma once

#include <cstddef>
#include <cstdint>

#include "qto/com/guid.hpp"

/// The calling convention of interfaces and exports, which 32-bit Windows alone tells apart.
#if defined(_WIN32) && !defined(_WIN64)
#define QTO_CALL __stdcall
#else
#define QTO_CALL
#endif

/// The component object model's binary interfaces, laid out as its clients expect them: function
/// tables in this order, variants of 24 bytes (16 where pointers have 32 bits), texts as counted
/// UTF-16.
namespace qto::com {

using Result = std::int32_t;

constexpr Result failure(std::uint32_t number) { return static_cast<Result>(number); }
inline constexpr Result ok = 0;
inline constexpr Result no_more = 1;  ///< success that says "no" or "fewer than asked for"
inline constexpr Result not_implemented = failure(0x80004001);
inline constexpr Result no_interface = failure(0x80004002);
inline constexpr Result operation_aborted = failure(0x80004004);
inline constexpr Result null_pointer = failure(0x80004003);
inline constexpr Result unknown_interface = failure(0x80020001);
inline constexpr Result see_exception = failure(0x80020009);  ///< ExceptionInfo tells
inline constexpr Result bad_index = failure(0x8002000B);
inline constexpr Result access_denied = failure(0x80070005);
inline constexpr Result disk_full = failure(0x80070070);
inline constexpr Result invalid_argument = failure(0x80070057);
inline constexpr Result disconnected = failure(0x80010108);  ///< the object was released
inline constexpr Result no_aggregation = failure(0x80040110);
inline constexpr Result class_not_available = failure(0x80040111);
inline constexpr Result no_connection = failure(0x80040200);
inline constexpr Result registration_failed = failure(0x80040201);
inline constexpr Result cannot_connect = failure(0x80040202);

constexpr Guid standard_guid(std::uint32_t n) { return {n, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }
inline constexpr Guid iid_unknown = standard_guid(0);
inline constexpr Guid iid_class_factory = standard_guid(1);
inline constexpr Guid iid_dispatch = standard_guid(0x20400);
inline constexpr Guid iid_type_info = standard_guid(0x20401);
inline constexpr Guid iid_enum_variant = standard_guid(0x20404);
/// The interfaces about connections and classes come in one block.
constexpr Guid control_guid(std::uint32_t n) {
  return {0xB196B200 + n, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
}
inline constexpr Guid iid_provide_class_info = control_guid(0x83);
inline constexpr Guid iid_connection_point_container = control_guid(0x84);
inline constexpr Guid iid_enum_connection_points = control_guid(0x85);
inline constexpr Guid iid_connection_point = control_guid(0x86);
inline constexpr Guid iid_enum_connections = control_guid(0x87);
inline constexpr Guid iid_provide_class_info_2{
    0xA6BC3AC0, 0xDBAA, 0x11CE, {0x9D, 0xE3, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51}};

using Text = char16_t*;  ///< counted; the number of bytes lies in the 32 bits before it

enum VariantType : std::uint16_t {
  vt_empty = 0,
  vt_null = 1,
  vt_i2 = 2,
  vt_i4 = 3,
  vt_r4 = 4,
  vt_r8 = 5,
  vt_currency = 6,
  vt_date = 7,
  vt_text = 8,
  vt_dispatch = 9,
  vt_error = 10,
  vt_bool = 11,
  vt_variant = 12,
  vt_unknown = 13,
  vt_decimal = 14,
  vt_i1 = 16,
  vt_u1 = 17,
  vt_u2 = 18,
  vt_u4 = 19,
  vt_i8 = 20,
  vt_u8 = 21,
  vt_int = 22,
  vt_uint = 23,
  vt_array = 0x2000,
  vt_by_ref = 0x4000,
};

struct Dispatch;
struct Unknown;

struct ArrayBound {
  std::uint32_t count;
  std::int32_t first;
};
/// An array of one or two dimensions; of two the last, whose bound comes first, is the rows' own.
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
    std::uint64_t bits;
    void* room[2] = {};  ///< as much as any value takes
  };
};
static_assert(sizeof(ComVariant) == 8 + 2 * sizeof(void*));

struct CallParameters {
  ComVariant* values;         ///< the last argument first
  const std::int32_t* named;  ///< identifiers of the first `named_count` of them
  std::uint32_t count, named_count;
};
inline constexpr std::int32_t id_unknown = -1;
inline constexpr std::int32_t id_assigned_value = -3;

/// What a late-bound call tells about a failure. The texts belong to the caller.
struct ExceptionInfo {
  std::uint16_t code, reserved;
  Text source, description, help_file;
  std::uint32_t help_context;
  void* reserved_pointer;
  void* deferred;
  Result number;
};

// No virtual destructors: they would take places in the function tables.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
struct Unknown {
  virtual Result QTO_CALL QueryInterface(const Guid& id, void** out) = 0;
  virtual std::uint32_t QTO_CALL AddRef() = 0;
  virtual std::uint32_t QTO_CALL Release() = 0;
};
struct TypeInfo;
struct Dispatch : Unknown {
  virtual Result QTO_CALL GetTypeInfoCount(std::uint32_t* count) = 0;
  virtual Result QTO_CALL GetTypeInfo(std::uint32_t index, std::uint32_t locale,
                                      TypeInfo** out) = 0;
  virtual Result QTO_CALL GetIDsOfNames(const Guid& reserved, const char16_t* const* names,
                                        std::uint32_t count, std::uint32_t locale,
                                        std::int32_t* ids) = 0;
  virtual Result QTO_CALL Invoke(std::int32_t id, const Guid& reserved, std::uint32_t locale,
                                 std::uint16_t flags, CallParameters* parameters,
                                 ComVariant* result, ExceptionInfo* exception,
                                 std::uint32_t* bad_argument) = 0;
};
struct ClassFactory : Unknown {
  virtual Result QTO_CALL CreateInstance(Unknown* outer, const Guid& id, void** out) = 0;
  virtual Result QTO_CALL LockServer(std::int32_t lock) = 0;
};
/// The shape of all enumerators.
template <class Item>
struct EnumerationOf : Unknown {
  virtual Result QTO_CALL Next(std::uint32_t count, Item* out, std::uint32_t* fetched) = 0;
  virtual Result QTO_CALL Skip(std::uint32_t count) = 0;
  virtual Result QTO_CALL Reset() = 0;
  virtual Result QTO_CALL Clone(EnumerationOf** out) = 0;
};
using EnumVariant = EnumerationOf<ComVariant>;

// How clients connect to the events of an object.
/// One connection of a connection point, as its enumerator gives it; the sink is counted.
struct ConnectData {
  Unknown* sink;
  std::uint32_t cookie;
};
using EnumConnections = EnumerationOf<ConnectData>;
struct ConnectionPointContainer;
struct ConnectionPoint : Unknown {
  virtual Result QTO_CALL GetConnectionInterface(Guid* id) = 0;
  virtual Result QTO_CALL GetConnectionPointContainer(ConnectionPointContainer** out) = 0;
  virtual Result QTO_CALL Advise(Unknown* sink, std::uint32_t* cookie) = 0;
  virtual Result QTO_CALL Unadvise(std::uint32_t cookie) = 0;
  virtual Result QTO_CALL EnumConnections(com::EnumConnections** out) = 0;
};
using EnumConnectionPoints = EnumerationOf<ConnectionPoint*>;
struct ConnectionPointContainer : Unknown {
  virtual Result QTO_CALL EnumConnectionPoints(com::EnumConnectionPoints** out) = 0;
  virtual Result QTO_CALL FindConnectionPoint(const Guid& id, ConnectionPoint** out) = 0;
};
#pragma GCC diagnostic pop

}  // namespace qto::com
