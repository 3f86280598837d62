"""Events: handlers, their connections, and what handlers raise."""

import ctypes
import functools
import weakref

from . import _binary as b
from ._client import CDispatch, Dispatch, _from_variant, _signed, com_error, pending
from ._display import surface_lines

_OPERATION_ABORTED = 0x80004004
_IID_CLASS_INFO = b.Guid.parse("A6BC3AC0-DBAA-11CE-9DE3-00AA004BB851")
_DEFAULT_EVENTS = 1


class Sink:
    """A client's IDispatch that passes events to the methods On… of a handler."""

    _alive = {}

    def __init__(self, handler, events):
        self._handler = handler
        self._events = events  # identifier: name
        pointer, number = ctypes.c_void_p, ctypes.c_uint32
        shape = ctypes.CFUNCTYPE
        self._functions = [
            shape(ctypes.c_int32, pointer, pointer, pointer)(self._query),
            shape(number, pointer)(self._add_ref),
            shape(number, pointer)(self._release),
            shape(ctypes.c_int32, pointer, pointer)(lambda *_: _signed(0x80004001)),
            shape(ctypes.c_int32, pointer, number, number, pointer)(
                lambda *_: _signed(0x80004001)),
            shape(ctypes.c_int32, pointer, pointer, pointer, number, number, pointer)(
                lambda *_: _signed(b.UNKNOWN_NAME)),
            shape(ctypes.c_int32, pointer, ctypes.c_int32, pointer, number, ctypes.c_uint16,
                  pointer, pointer, pointer, pointer)(self._invoke),
        ]
        self._table = (pointer * 7)(*(ctypes.cast(f, pointer) for f in self._functions))
        self._object = (pointer * 1)(ctypes.addressof(self._table))
        self._count = 0
        self.pointer = ctypes.addressof(self._object)

    def _query(self, this, guid, out):
        wanted = bytes(b.Guid.from_address(guid).bytes)
        known = wanted in (bytes(b.IID_UNKNOWN.bytes), bytes(b.IID_DISPATCH.bytes))
        ctypes.c_void_p.from_address(out).value = this if known else None
        if not known:
            return _signed(0x80004002)
        self._add_ref(this)
        return 0

    def _add_ref(self, _this):
        self._count += 1
        Sink._alive[self.pointer] = self
        return self._count

    def _release(self, _this):
        self._count -= 1
        if self._count == 0:
            Sink._alive.pop(self.pointer, None)
        return self._count

    def _invoke(self, _this, event, _guid, _locale, _flags, given, _result, _info, _bad):
        if getattr(pending, "error", None) is not None:
            return _signed(_OPERATION_ABORTED)
        try:
            method = getattr(self._handler, "On" + self._events.get(event, ""), None)
            if method is None:
                return 0
            parameters = b.Parameters.from_address(given)
            slots = [parameters.values[i] for i in reversed(range(parameters.count))]
            places = [slot for slot in slots if slot.type & b.VT_BYREF]
            answer = method(*map(self._argument, slots))
            if answer is None:
                return 0
            answers = answer if isinstance(answer, tuple) else (answer,)
            for slot, value in zip(places, answers):
                self._answer(slot, value)
            return 0
        except BaseException as error:  # comes out of the call that raised the event
            if getattr(pending, "error", None) is None:
                pending.error = error
            return _signed(_OPERATION_ABORTED)

    @staticmethod
    def _argument(slot):
        if not slot.type & b.VT_BYREF:
            return _from_variant(slot)
        value = b.Variant(type=slot.type & ~b.VT_BYREF)
        size = {b.VT_BOOL: 2, b.VT_I4: 4}.get(value.type, 8)
        ctypes.memmove(ctypes.addressof(value.bits), slot.pointer, size)
        return _from_variant(value)

    @staticmethod
    def _answer(slot, value):
        """Puts an answer in the place of the preset; one of another type leaves the preset."""
        kind = slot.type & ~b.VT_BYREF
        if kind == b.VT_BOOL:
            ctypes.c_int16.from_address(slot.pointer).value = -1 if value else 0
        elif kind == b.VT_I4:
            ctypes.c_int32.from_address(slot.pointer).value = int(value)
        elif kind == b.VT_TEXT:
            fresh = b.make_text(str(value))
            place = ctypes.c_void_p.from_address(slot.pointer)
            b.free_text(place.value)
            place.value = fresh
        elif kind == b.VT_DISPATCH and (value is None or isinstance(value, CDispatch)):
            place = ctypes.c_void_p.from_address(slot.pointer)
            old = place.value
            if value is not None:
                b.add_ref(value._pointer)
            place.value = value._pointer if value is not None else None
            if old:
                b.release(old)


@functools.lru_cache(maxsize=None)
def _event_names(interface):
    """{identifier: name} of the events of an interface."""
    events, inside = {}, False
    for line in surface_lines():
        words = line.split()
        if not line.startswith(" "):
            inside = words[0] == "class" and words[-1] == interface and len(words) == 5
        elif inside and words[0] == "event":
            events[int(words[1])] = words[2].split("(")[0]
    return events


def _event_interface(source):
    info, interface = b.query(source._live(), _IID_CLASS_INFO), b.Guid()
    done = -1
    if info:
        done = b.call(info, 4, ctypes.c_int32, [ctypes.c_uint32, ctypes.c_void_p],
                      _DEFAULT_EVENTS, ctypes.addressof(interface))
        b.release(info)
    if done < 0:
        raise com_error(_signed(0x80040200), f"{source!r} raises no events")
    return interface


class _Connection:
    """A handler's place at an object's connection point."""

    def __init__(self, source, handler):
        interface = _event_interface(source)
        names = _event_names(str(interface))
        container = b.query(source._live(), b.IID_CONTAINER)
        point, cookie = ctypes.c_void_p(), ctypes.c_uint32()
        done = b.call(container, 4, ctypes.c_int32, [ctypes.c_void_p] * 2,
                      ctypes.addressof(interface), ctypes.addressof(point))
        b.release(container)
        if done >= 0:
            done = b.call(point.value, 5, ctypes.c_int32, [ctypes.c_void_p] * 2,
                          Sink(handler, names).pointer, ctypes.addressof(cookie))
        if done < 0:
            raise com_error(done)
        self._point, self._cookie = point.value, cookie.value

    def end(self):
        if self._point:
            point, self._point = self._point, None
            b.call(point, 6, ctypes.c_int32, [ctypes.c_uint32], self._cookie)
            b.release(point)

    def let_go(self):
        """Leaves the connection to the object, with which it ends."""
        if self._point:
            b.release(self._point)
            self._point = None


class _WithState:
    """An automation object that carries its handler's own attributes too."""

    def __setattr__(self, name, value):
        if name.startswith("_") or self._ids(name)[0] is None:
            object.__setattr__(self, name, value)
        else:
            CDispatch.__setattr__(self, name, value)


def DispatchWithEvents(source, handler_class):
    """An object whose events call the methods On… of `handler_class`; what they return answers the
    by-reference arguments in order. `source` is an object, or the name of a class of which a new one
    is made. What comes back is also an instance of `handler_class`, whose methods may keep state on
    `self`. What a handler raises ends the operation and comes out of its call."""
    source = source if isinstance(source, CDispatch) else Dispatch(source)
    kind = type(handler_class.__name__, (_WithState, CDispatch, handler_class), {})
    made = kind(source._live())
    b.add_ref(source._pointer)
    # The sink must not keep the object: the connection ends with it.
    _Connection(made, weakref.proxy(made)).let_go()
    if handler_class.__init__ is not object.__init__:
        handler_class.__init__(made)
    return made


def WithEvents(source, handler_class):
    """A new instance of `handler_class` whose methods On… receive the events of an object until its
    `close()` is called; it also ends a `with` block."""

    class Connected(handler_class):
        def close(self):
            self._connection.end()

        def __enter__(self):
            return self

        def __exit__(self, *_):
            self.close()

    Connected.__name__ = handler_class.__name__
    handler = Connected()
    handler._connection = _Connection(source, handler)
    return handler
