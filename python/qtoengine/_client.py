"""Objects by name: attribute access, calls, iteration."""

import ctypes
import datetime
import difflib
import os
import pathlib
import threading

from . import _binary as b
from . import _display

_LOCALE = 0x409
_DEFAULT, _ENUMERATOR, _ASSIGNED = 0, -4, -3
_EPOCH = datetime.datetime(1899, 12, 30)

#: What a handler raised while the call that is running raised its event, one list a thread.
pending = threading.local()


_STANDARD_TEXTS = {
    0x80010108: "The object was released.",
    0x80020003: "Member not found.",
    0x80020004: "Parameter not found.",
    0x80020005: "Type mismatch.",
    0x80020006: "Unknown name.",
    0x8002000A: "Out of present range.",
    0x8002000E: "Invalid number of parameters.",
    0x8002000F: "Parameter not optional.",
}


class com_error(Exception):
    """An automation error. `hresult` is its number, negative as automation counts it; `source` and
    `description` tell more where the server does, as `excepinfo` (code, source, description, help
    file, help context, number) does; `argerror` is the position of a wrong argument, counted from
    the last."""

    def __init__(self, hresult, strerror="", excepinfo=None, argerror=None):
        strerror = strerror or _STANDARD_TEXTS.get(hresult & 0xFFFFFFFF, "")
        super().__init__(hresult, strerror, excepinfo, argerror)
        self.hresult = hresult
        self.strerror = strerror
        self.excepinfo = excepinfo
        self.argerror = argerror

    @property
    def source(self):
        return self.excepinfo[1] if self.excepinfo else None

    @property
    def description(self):
        return self.excepinfo[2] if self.excepinfo else None

    def __str__(self):
        return f"{self.hresult & 0xFFFFFFFF:08X} {self.strerror}".rstrip()


def _signed(number):
    return ctypes.c_int32(number).value


def _to_variant(value):
    v = b.Variant()
    if value is None:
        v.type = b.VT_NULL
    elif isinstance(value, bool):
        v.type, v.boolean = b.VT_BOOL, -1 if value else 0
    elif isinstance(value, int) and -(2**31) <= value < 2**31:
        v.type, v.i4 = b.VT_I4, value
    elif isinstance(value, (int, float)):
        v.type, v.r8 = b.VT_R8, float(value)
    elif isinstance(value, str):
        v.type, v.pointer = b.VT_TEXT, b.make_text(value)
    elif isinstance(value, datetime.datetime):
        v.type, v.r8 = b.VT_DATE, (value - _EPOCH) / datetime.timedelta(days=1)
    elif isinstance(value, CDispatch):
        v.type, v.pointer = b.VT_DISPATCH, value._pointer
        b.add_ref(value._pointer)
    else:
        raise TypeError(f"a {type(value).__name__} cannot be passed to an automation object")
    return v


def _from_variant(v):
    kind = v.type
    if kind in (b.VT_EMPTY, b.VT_NULL):
        return None
    if kind in (b.VT_I4, b.VT_ERROR):
        return v.i4
    if kind == b.VT_BOOL:
        return v.boolean != 0
    if kind == b.VT_R8:
        return v.r8
    if kind == b.VT_DATE:
        return _EPOCH + datetime.timedelta(days=v.r8)
    if kind == b.VT_TEXT:
        return b.read_text(v.pointer)
    if kind in (b.VT_DISPATCH, b.VT_UNKNOWN):
        if not v.pointer:
            return None
        b.add_ref(v.pointer)
        return CDispatch(v.pointer)
    if kind == b.VT_ARRAY | b.VT_VARIANT:
        array = b.Array.from_address(v.pointer)
        columns, rows = array.bounds[0], array.bounds[2]
        return tuple(tuple(_from_variant(array.data[column * rows + row])
                           for column in range(columns)) for row in range(rows))
    raise com_error(_signed(b.TYPE_MISMATCH))


def _failure(done, told, bad):
    argument = None if bad.value == 0xFFFFFFFF else bad.value
    if done & 0xFFFFFFFF != b.SEE_EXCEPTION:
        return com_error(done, argerror=argument)
    info = (told.code, b.take_text(told.source), b.take_text(told.description),
            b.take_text(told.help_file), told.help_context, told.number)
    return com_error(told.number, info[2] or "", info, argument)


def _invoke(pointer, member, flags, arguments, named=()):
    """Calls a member; `named` holds pairs of identifier and value."""
    given = [value for _, value in named] + list(reversed(arguments))
    identifiers = [identifier for identifier, _ in named]
    if flags & (b.PUT | b.PUTREF):
        identifiers = [_ASSIGNED]
    values = (b.Variant * max(len(given), 1))()
    try:
        for i, value in enumerate(given):
            values[i] = _to_variant(value)
        names = (ctypes.c_int32 * max(len(identifiers), 1))(*identifiers)
        parameters = b.Parameters(values, names if identifiers else None, len(given),
                                  len(identifiers))
        result, told, bad = b.Variant(), b.ExceptionInfo(), ctypes.c_uint32(0xFFFFFFFF)
        types = [ctypes.c_int32, ctypes.c_void_p, ctypes.c_uint32, ctypes.c_uint16,
                 ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p]
        done = b.call(pointer, 6, ctypes.c_int32, types, member, ctypes.addressof(b.NO_GUID),
                      _LOCALE, flags, ctypes.addressof(parameters), ctypes.addressof(result),
                      ctypes.addressof(told), ctypes.addressof(bad))
        raised, pending.error = getattr(pending, "error", None), None
        if raised is not None:
            b.clear(result)
            raise raised
        if done < 0:
            raise _failure(done, told, bad)
        try:
            return _from_variant(result)
        finally:
            b.clear(result)
    finally:
        for value in values:
            b.clear(value)


class CDispatch:
    """An automation object; its members are reached as attributes, in any letter case."""

    def __init__(self, pointer):
        object.__setattr__(self, "_pointer", pointer)

    def __del__(self):
        if self._pointer:
            b.release(self._pointer)
            object.__setattr__(self, "_pointer", None)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        """Closes what can be closed, without saving, and lets go of the object."""
        if self._pointer:
            if self._ids("Close")[0] is not None:
                self.Close(False)
            self.__del__()

    def _live(self):
        """The pointer, while there is one."""
        if not self._pointer:
            raise com_error(_signed(b.DISCONNECTED))
        return self._pointer

    def _ids(self, *names):
        """The identifiers of a member and of its arguments by name; None for what is unknown."""
        texts = [ctypes.create_string_buffer(name.encode("utf-16-le") + b"\0\0") for name in names]
        table = (ctypes.c_void_p * len(names))(*map(ctypes.addressof, texts))
        found = (ctypes.c_int32 * len(names))()
        b.call(self._live(), 5, ctypes.c_int32,
               [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_uint32, ctypes.c_uint32,
                ctypes.c_void_p],
               ctypes.addressof(b.NO_GUID), ctypes.addressof(table), len(names), _LOCALE,
               ctypes.addressof(found))
        return [None if identifier == -1 else identifier for identifier in found]

    def _call(self, name, member, flags, arguments, named):
        positions = self._ids(name, *named)[1:] if named else []
        for argument, position in zip(named, positions):
            if position is None:
                raise com_error(_signed(b.UNKNOWN_NAME), f"{name} has no argument {argument}")
        return _invoke(self._live(), member, flags, arguments,
                       list(zip(positions, named.values())))

    def __getattr__(self, name):
        if name.startswith("__"):
            raise AttributeError(name)
        member = self._ids(name)[0]
        if member is None and name.startswith("Get") and len(name) > 3:
            # A property whose arguments may all be left out is asked for with them this way.
            name = name[3:]
            member = self._ids(name)[0]
            if member is not None:
                return lambda *given, **named: self._call(name, member, b.GET, given, named)
        if member is None:
            raise self._unknown(name)
        try:
            return _invoke(self._live(), member, b.GET, ())
        except com_error as error:
            # A method, or a property that wants arguments: what is asked for is the call.
            if error.hresult & 0xFFFFFFFF not in (b.MEMBER_NOT_FOUND, b.BAD_COUNT):
                raise
        return lambda *given, **named: self._call(name, member, b.METHOD | b.GET, given, named)

    def __setattr__(self, name, value):
        member = self._ids(name)[0]
        if member is None:
            raise self._unknown(name)
        _invoke(self._live(), member, b.PUTREF if isinstance(value, CDispatch) else b.PUT,
                (value,))

    def _unknown(self, name):
        near = difflib.get_close_matches(name, _display.members(_display.class_name(self)), 1)
        hint = f"; did you mean {near[0]}?" if near else ""
        return AttributeError(f"{_display.class_name(self)} has no member {name}{hint}")

    def __dir__(self):
        return sorted({*super().__dir__(), *_display.members(_display.class_name(self))})

    def __repr__(self):
        return _display.representation(self)

    def _repr_html_(self):
        return _display.html(self)

    def __getitem__(self, index):
        """Of a collection: the item under a key, or at a position counted from 0 as in every
        sequence of Python (`Item` counts from 1); also a slice."""
        if isinstance(index, slice):
            return [self.Item(i + 1) for i in range(*index.indices(self.Count))]
        if isinstance(index, str):
            found = self.Item(index)
            if found is None:
                raise KeyError(index)
            return found
        position = index + self.Count if index < 0 else index
        if not 0 <= position < self.Count:
            raise IndexError(f"{index} of {self.Count}")
        return self.Item(position + 1)

    def __contains__(self, item):
        if isinstance(item, str):
            return self.Item(item) is not None
        return any(item == own for own in self)

    def __call__(self, *arguments):
        return _invoke(self._live(), _DEFAULT, b.METHOD | b.GET, arguments)

    def __len__(self):
        return self.Count

    def __bool__(self):
        return True

    def __eq__(self, other):
        return isinstance(other, CDispatch) and self._pointer == other._pointer

    def __hash__(self):
        return hash(self._pointer)

    def __iter__(self):
        walk = _invoke(self._live(), _ENUMERATOR, b.METHOD | b.GET, ())
        item = b.Variant()
        while True:
            done = b.call(walk._pointer, 3, ctypes.c_int32,
                          [ctypes.c_uint32, ctypes.c_void_p, ctypes.c_void_p],
                          1, ctypes.addressof(item), None)
            if done < 0:
                raise com_error(done)
            if done:
                return
            value = _from_variant(item)
            b.clear(item)
            yield value


def _registry_files():
    yield pathlib.Path(__file__).parent / "lib/servers"  # libraries that came with the package
    home = os.environ.get("XDG_DATA_HOME") or os.path.expanduser("~/.local/share")
    yield pathlib.Path(home, "qto/servers")
    for folder in (os.environ.get("XDG_DATA_DIRS") or "/usr/local/share:/usr/share").split(":"):
        yield pathlib.Path(folder, "qto/servers")
    yield pathlib.Path(__file__).parent.parent / "qto/servers"  # of the build beside the package


def _find_server(progid):
    """(class identifier, library) of a registered class."""
    for file in _registry_files():
        if not file.is_file():
            continue
        for line in file.read_text(encoding="utf-8").splitlines():
            entry = line.split("\t")
            if len(entry) == 3 and progid.lower() in (entry[0].lower(), entry[1].lower()):
                return entry[1], str(file.parent / entry[2])
    raise com_error(_signed(0x800401F3), f"no class {progid} is registered")


def Dispatch(progid):
    """A new object of a registered class, named as "QTOEngine.DrillDown" or by its identifier."""
    class_id, library = _find_server(progid)
    try:
        module = ctypes.CDLL(library)
    except OSError as error:
        raise com_error(_signed(0x8007007E), str(error)) from None
    factory, made, guid = ctypes.c_void_p(), ctypes.c_void_p(), b.Guid.parse(class_id)
    done = module.DllGetClassObject(ctypes.byref(guid), ctypes.byref(b.IID_FACTORY),
                                    ctypes.byref(factory))
    if done < 0:
        raise com_error(done)
    done = b.call(factory.value, 3, ctypes.c_int32, [ctypes.c_void_p] * 3, None,
                  ctypes.addressof(b.IID_DISPATCH), ctypes.addressof(made))
    b.release(factory.value)
    if done < 0:
        raise com_error(done)
    return CDispatch(made.value)
