"""The binary interfaces of the served libraries, as ctypes sees them."""

import ctypes
import uuid

PTR = ctypes.sizeof(ctypes.c_void_p)
_libc = ctypes.CDLL(None)
_libc.malloc.restype = ctypes.c_void_p
_libc.malloc.argtypes = [ctypes.c_size_t]
_libc.free.argtypes = [ctypes.c_void_p]

VT_EMPTY, VT_NULL, VT_I4, VT_R8, VT_DATE, VT_TEXT = 0, 1, 3, 5, 7, 8
VT_DISPATCH, VT_ERROR, VT_BOOL, VT_VARIANT, VT_UNKNOWN = 9, 10, 11, 12, 13
VT_ARRAY, VT_BYREF = 0x2000, 0x4000

METHOD, GET, PUT, PUTREF = 1, 2, 4, 8
MEMBER_NOT_FOUND, UNKNOWN_NAME, BAD_COUNT = 0x80020003, 0x80020006, 0x8002000E
TYPE_MISMATCH, SEE_EXCEPTION, DISCONNECTED = 0x80020005, 0x80020009, 0x80010108
_HEADER = 8  # before a text; its last four bytes count the bytes


class Guid(ctypes.Structure):
    _fields_ = [("bytes", ctypes.c_ubyte * 16)]

    @classmethod
    def parse(cls, text):
        return cls.from_buffer_copy(uuid.UUID(text).bytes_le)

    def __str__(self):
        return "{" + str(uuid.UUID(bytes_le=bytes(self.bytes))).upper() + "}"


NO_GUID = Guid()
IID_UNKNOWN = Guid.parse("00000000-0000-0000-C000-000000000046")
IID_FACTORY = Guid.parse("00000001-0000-0000-C000-000000000046")
IID_DISPATCH = Guid.parse("00020400-0000-0000-C000-000000000046")
IID_ENUM = Guid.parse("00020404-0000-0000-C000-000000000046")
IID_CONTAINER = Guid.parse("B196B284-BAB4-101A-B69C-00AA00341D07")


class _Value(ctypes.Union):
    _fields_ = [
        ("i4", ctypes.c_int32),
        ("r8", ctypes.c_double),
        ("boolean", ctypes.c_int16),
        ("pointer", ctypes.c_void_p),
        ("bits", ctypes.c_int64 * 2),
    ]


class Variant(ctypes.Structure):
    _anonymous_ = ["value"]
    _fields_ = [("type", ctypes.c_uint16), ("reserved", ctypes.c_uint16 * 3), ("value", _Value)]


class Parameters(ctypes.Structure):
    _fields_ = [
        ("values", ctypes.POINTER(Variant)),
        ("named", ctypes.POINTER(ctypes.c_int32)),
        ("count", ctypes.c_uint32),
        ("named_count", ctypes.c_uint32),
    ]


class ExceptionInfo(ctypes.Structure):
    _fields_ = [
        ("code", ctypes.c_uint16),
        ("reserved", ctypes.c_uint16),
        ("source", ctypes.c_void_p),
        ("description", ctypes.c_void_p),
        ("help_file", ctypes.c_void_p),
        ("help_context", ctypes.c_uint32),
        ("reserved_pointer", ctypes.c_void_p),
        ("deferred", ctypes.c_void_p),
        ("number", ctypes.c_int32),
    ]


class Array(ctypes.Structure):
    _fields_ = [
        ("dimensions", ctypes.c_uint16),
        ("features", ctypes.c_uint16),
        ("element_size", ctypes.c_uint32),
        ("locks", ctypes.c_uint32),
        ("data", ctypes.POINTER(Variant)),
        ("bounds", ctypes.c_int32 * 4),  # count and first of the columns, then of the rows
    ]


def make_text(text):
    data = text.encode("utf-16-le", "surrogatepass")
    memory = _libc.malloc(_HEADER + len(data) + 2)
    if not memory:
        raise MemoryError
    ctypes.c_uint32.from_address(memory + _HEADER - 4).value = len(data)
    ctypes.memmove(memory + _HEADER, data + b"\0\0", len(data) + 2)
    return memory + _HEADER


def read_text(address):
    if not address:
        return ""
    count = ctypes.c_uint32.from_address(address - 4).value
    return ctypes.string_at(address, count).decode("utf-16-le", "surrogatepass")


def take_text(address):
    """Reads a text that is ours to free; None when there is none."""
    if not address:
        return None
    text = read_text(address)
    free_text(address)
    return text


def free_text(address):
    if address:
        _libc.free(address - _HEADER)


def call(pointer, place, result, types, *arguments):
    """Calls the function at a place of an object's function table."""
    table = ctypes.c_void_p.from_address(pointer).value
    function = ctypes.c_void_p.from_address(table + place * PTR).value
    return ctypes.CFUNCTYPE(result, ctypes.c_void_p, *types)(function)(pointer, *arguments)


def add_ref(pointer):
    call(pointer, 1, ctypes.c_uint32, [])


def release(pointer):
    call(pointer, 2, ctypes.c_uint32, [])


def query(pointer, guid):
    """The interface as a pointer with a reference, or None."""
    out = ctypes.c_void_p()
    done = call(pointer, 0, ctypes.c_int32, [ctypes.c_void_p, ctypes.c_void_p],
                ctypes.addressof(guid), ctypes.addressof(out))
    return out.value if done >= 0 else None


def clear(variant):
    """Releases what a variant owns."""
    if variant.type == VT_TEXT:
        free_text(variant.pointer)
    elif variant.type in (VT_DISPATCH, VT_UNKNOWN) and variant.pointer:
        release(variant.pointer)
    elif variant.type & VT_ARRAY and variant.pointer:
        array = Array.from_address(variant.pointer)
        for i in range(array.bounds[0] * array.bounds[2]):
            clear(array.data[i])
        _libc.free(ctypes.cast(array.data, ctypes.c_void_p))
        _libc.free(variant.pointer)
    variant.type = VT_EMPTY
