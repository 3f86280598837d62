"""How objects appear to people: in the interpreter, in completion, in notebooks."""

import ctypes
import functools
import html as markup
import pathlib

from . import _binary as b

_LIST_LIMIT = 50  # rows that a notebook shows of a list


@functools.lru_cache(maxsize=None)
def surface_lines():
    """The surface of the engine, one line for each class, member and event."""
    return (pathlib.Path(__file__).parent / "surface.txt").read_text(encoding="utf-8").splitlines()


@functools.lru_cache(maxsize=None)
def members(class_name):
    """The names of a class's members; none for a class of another server."""
    names, inside = [], False
    for line in surface_lines():
        words = line.split()
        if not line.startswith(" "):
            inside = words[:2] == ["class", class_name]
        elif inside and words[0] in ("get", "let", "set", "method"):
            names.append(words[2].split("(")[0])
    return tuple(dict.fromkeys(names))


def class_name(item):
    """The class of an object by its type information; "object" where it tells none."""
    if not item._pointer:
        return "released object"
    info, name = ctypes.c_void_p(), ctypes.c_void_p()
    done = b.call(item._pointer, 4, ctypes.c_int32,
                  [ctypes.c_uint32, ctypes.c_uint32, ctypes.c_void_p],
                  0, 0x409, ctypes.addressof(info))
    if done < 0 or not info.value:
        return "object"
    b.call(info.value, 12, ctypes.c_int32, [ctypes.c_int32] + [ctypes.c_void_p] * 4,
           -1, ctypes.addressof(name), None, None, None)
    b.release(info.value)
    return (b.take_text(name.value) or "object").lstrip("_")


def _part_cells(part):
    return part.AddressLong(1), part.Title, part.Formula, part.Text


def representation(item):
    kind = class_name(item)
    try:
        if kind == "ModelPart":
            address, title, formula, text = _part_cells(item)
            words = [word for word in (address, title, formula) if word]
            return f"<ModelPart {'  '.join(words)} → {text}>" if words else "<ModelPart>"
        if item._pointer and item._ids("Count")[0] is not None:
            return f"<{kind} of {item.Count}>"
        for name in ("FullName", "Name"):
            if item._pointer and item._ids(name)[0] is not None:
                return f"<{kind} {getattr(item, name)}>"
    except Exception:  # what cannot be told is left out
        pass
    return f"<{kind}>"


def _rows(parts):
    cells = ("".join(f"<td>{markup.escape(str(cell))}</td>" for cell in _part_cells(part))
             for part in parts)
    return "".join(f"<tr>{row}</tr>" for row in cells)


def html(item):
    """A table of a part or of the first parts of a list; nothing for other objects."""
    kind = class_name(item)
    if kind not in ("ModelPart", "ModelParts"):
        return None
    count = 1 if kind == "ModelPart" else item.Count
    shown = [item] if kind == "ModelPart" else item[:_LIST_LIMIT]
    head = "".join(f"<th>{name}</th>" for name in ("Address", "Title", "Formula", "Text"))
    more = f"<p>{count - _LIST_LIMIT} more</p>" if count > _LIST_LIMIT else ""
    return f"<table><tr>{head}</tr>{_rows(shown)}</table>{more}"
