"""Shows the library's objects in gdb as what they stand for: texts, values, trees, elements.

gdb loads this file by itself when it lies beside the library under the library's name plus "-gdb.py", in a folder that
gdb trusts (add-auto-load-safe-path DIR); "source zavbase-gdb.py" loads it by hand. Damaged or uninitialised objects are
shown as far as they can be read.
"""

import gdb
import gdb.printing

MOST_LINKS = 1 << 20  # where a damaged chain of links is given up


def object_at(pointer):
    """What a pointer to a library object refers to, as its own class; None for null."""
    if int(pointer) == 0:
        return None
    target = pointer.dereference()
    try:
        return target.cast(target.dynamic_type)
    except gdb.error:
        return target


def shown(pointer):
    """What stands for a pointer to an object inside another one."""
    target = object_at(pointer)
    return "<null>" if target is None else target


def base(value, name):
    """The part of an object that belongs to its base class `name`."""
    return value.cast(gdb.lookup_type(name))


def text_of(value):
    """The bytes of a ZAV_Str as a Python string; undecodable bytes as escapes."""
    string = base(value, "ZAV_Str")
    return bytes_at(string["mData"], int(string["mLength"])).decode("utf-8", "backslashreplace")


def bytes_at(address, length):
    return bytes(gdb.selected_inferior().read_memory(int(address), length)) if length else b""


class Text:
    """Byte strings and UTF-8 strings; embedded NULs are kept."""

    def __init__(self, value):
        string = base(value, "ZAV_Str")
        self.data, self.length = string["mData"], int(string["mLength"])

    def to_string(self):
        return self.data.string("utf-8", "backslashreplace", self.length)

    def display_hint(self):
        return "string"


class SubText:
    """A view into a string."""

    def __init__(self, value):
        view = base(value, "ZAV_SubStr")
        self.data, self.length = view["mStart"], int(view["mLength"])

    def to_string(self):
        return self.data.string("utf-8", "backslashreplace", self.length) if int(self.data) else ""

    def display_hint(self):
        return "string"


class SystemText:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return self.value["mString"]


class Path:
    """A dictionary path: its keys with the usual separator between them."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        first, end = int(self.value["mFirstKey"]), int(self.value["mEnd"])
        if int(self.value["mSize"]) == 0 or end <= first:
            return ""
        return bytes_at(first, end - first).rstrip(b"\0").replace(b"\0", b":").decode("utf-8", "backslashreplace")

    def display_hint(self):
        return "string"


def scalar(element):
    """Characters that are numbers are shown as numbers."""
    plain = element.type.strip_typedefs()
    return int(element) if plain.code == gdb.TYPE_CODE_INT and plain.sizeof == 1 else element


class Value:
    """A typed value: the scalar, or the elements of the array."""

    def __init__(self, value):
        self.value = value
        self.kind = str(value.type.strip_typedefs().unqualified())[len("ZAV_UVal"):]
        self.dimension = int(value["mDimension"])

    def to_string(self):
        if self.dimension < 1:
            element = scalar(self.value["mValue"])
            return "(%s) %s" % (self.kind, element if isinstance(element, int) else element.format_string())
        return "(%s#%d)" % (self.kind, self.dimension)

    def children(self):
        for index in range(max(self.dimension, 0)):
            yield "[%d]" % index, scalar(self.value["mData"][index])

    def display_hint(self):
        return "array" if self.dimension > 0 else None


class Entry:
    """An entry of a value dictionary."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "%s => %s" % (key_of(self.value), shown_text(self.value["mValue"]))


def key_of(entry):
    return entry["mKey"].string("utf-8", "backslashreplace", int(entry["mKeyLength"]))


def shown_text(pointer):
    what = shown(pointer)
    return what if isinstance(what, str) else what.format_string()


class ValueDict:
    """A value dictionary as a tree: entries in insertion order, dictionaries within it likewise."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        count = int(self.value["mSet"]["mCount"])
        return "dictionary of %d entr%s" % (count, "y" if count == 1 else "ies")

    def children(self):
        entry, left = self.value["mFirst"], MOST_LINKS
        while int(entry) and left:
            yield key_of(entry), shown(entry["mValue"])
            entry, left = entry["mNext"], left - 1


class Elements:
    """Any collection: its size and its elements in its own order."""

    def __init__(self, value, elements):
        self.name = str(value.type.strip_typedefs().unqualified())
        self.found = elements(value)

    def to_string(self):
        return "%s of %d" % (self.name, len(self.found))

    def children(self):
        for index, pointer in enumerate(self.found):
            yield "[%d]" % index, shown(pointer)

    def display_hint(self):
        return "array"


def is_nil(pointer):
    """Empty slots hold the nil object, which is known by its table of virtual functions, even in a stripped library."""
    if int(pointer) == 0:
        return True
    table = base(pointer.dereference(), "ZAV_Object")["_vptr.ZAV_Object"]
    return "vtable for ZAV_CltNil" in gdb.execute("info symbol %#x" % int(table), to_string=True)


def ordered(value):
    collection = base(value, "ZAV_OrderedCltn")
    return [collection["mContents"]["mArray"][i] for i in range(int(collection["mCount"]))]


def array(value):
    return [value["mArray"][i] for i in range(int(value["mLength"]))]


def hashed(value):
    contents = base(value, "ZAV_Set")["mContents"]
    return [p for p in (contents["mArray"][i] for i in range(int(contents["mLength"]))) if not is_nil(p)]


def linked(value):
    """Up to the nil link, which stands behind itself."""
    link, found = base(value, "ZAV_LinkedList")["mFirst"], []
    while int(link) and int(link["mNext"]) != int(link) and len(found) < MOST_LINKS:
        found.append(link)
        link = link["mNext"]
    return found


class Pairs:
    """A dictionary or bag: each key beside what it stands for."""

    def __init__(self, value, contents):
        self.name, self.contents = str(value.type.strip_typedefs().unqualified()), hashed(contents)

    def to_string(self):
        return "%s of %d" % (self.name, len(self.contents))

    def children(self):
        for index, pointer in enumerate(self.contents):
            association = object_at(pointer)
            try:
                key, what = shown(base(association, "ZAV_LookupKey")["mKey"]), association["mValue"]
            except gdb.error:
                key, what = shown(pointer), "<no association>"
            if not isinstance(what, str) and what.type.strip_typedefs().code == gdb.TYPE_CODE_PTR:
                what = shown(what)
            yield "key%d" % index, key
            yield "value%d" % index, what

    def display_hint(self):
        return "map"


class Association:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        what = self.value["mValue"]
        if what.type.strip_typedefs().code == gdb.TYPE_CODE_PTR:
            what = shown(what)
        text = what if isinstance(what, str) else what.format_string()
        return "%s => %s" % (shown_text(base(self.value, "ZAV_LookupKey")["mKey"]), text)


class Integer:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return str(int(self.value["mValue"]))


class LinkObject:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "link to " + shown_text(self.value["mObject"])


class Nil:
    def __init__(self, value):
        pass

    def to_string(self):
        return "NIL"


class Reference:
    """A handle: how many hold the body, and the body."""

    def __init__(self, value):
        self.name = str(value.type.strip_typedefs().unqualified())
        self.body = base(value, "ZAV_Ref")["mBody"]

    def to_string(self):
        body = object_at(self.body)
        if body is None:
            return "%s without a body" % self.name
        count = base(body, "ZAV_RefCount")["mRefCount"]
        for field in ("_M_i", "_M_base", "__a_", "__a_value"):
            try:
                count = count[field]
            except gdb.error:
                pass
        return "%s, held by %s" % (self.name, count)

    def children(self):
        if int(self.body):
            yield "body", self.body.cast(self.body.dynamic_type)


def four_letters(code):
    letters = (code & 0xFFFFFFFF).to_bytes(4, "big")
    return "'%s'" % letters.decode() if all(32 <= b < 127 for b in letters) else hex(code & 0xFFFFFFFF)


class Event:
    def __init__(self, value):
        self.name, self.event = str(value.type.strip_typedefs().unqualified()), base(value, "ZAV_Event")

    def to_string(self):
        destination = self.event["mDestination"]
        to = "not queued" if int(destination) == 0 else "for %s" % destination.dynamic_type.target()
        return "%s %s, priority %d, %s" % (
            self.name, four_letters(int(self.event["mType"])), int(self.event["mPriority"]), to)


class Message:
    """A message, and an error, which is one: its identifier and its arguments."""

    def __init__(self, value):
        self.message = base(value, "ZAV_I18nMsg")

    def to_string(self):
        return self.message["mId"]

    def children(self):
        arguments = self.message["mArgs"]
        for link in linked(arguments.dereference()) if int(arguments) else []:
            argument = object_at(link)
            yield text_of(argument["mTag"]), argument["mMsg"]


FILE_CODES = ("NoError", "FileNotFound", "InvalidFile", "OpenRdError", "OpenWrError", "OpenRdWrError", "ReadError",
              "WriteError", "SeekError", "TellError", "LockError", "Unknown")


class FileException:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        code = int(self.value["mCode"])
        name = FILE_CODES[code] if code < len(FILE_CODES) else str(code)
        return "file exception: %s, system error %d" % (name, int(self.value["mOsError"]))


def build():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("zavbase")

    def add(name, pattern, make):
        printers.add_printer(name, "^(%s)$" % pattern, make)

    add("text", "ZAV_Str|ZAV_(Clt)?(UTF)?String", Text)
    add("sub-text", "ZAV_SubStr|ZAV_(UTF)?SubString", SubText)
    add("system text", "ZAV_SystemString", SystemText)
    add("path", "ZAV_DictPath", Path)
    add("value", "ZAV_UVal(U?(Char|Short|Long)|Float|Double|(UTF)?String|Ptr)", Value)
    add("value dictionary", "ZAV_UValDict", ValueDict)
    add("value entry", "ZAV_AssocUVal", Entry)
    add("ordered", "ZAV_OrderedCltn|ZAV_Stack", lambda v: Elements(v, ordered))
    add("array", "ZAV_ArrayObj", lambda v: Elements(v, array))
    add("set", "ZAV_Set", lambda v: Elements(v, hashed))
    add("list", "ZAV_LinkedList|ZAV_I18nMsgArgList", lambda v: Elements(v, linked))
    add("dictionary", "ZAV_Dictionary|ZAV_DictAutoDel", lambda v: Pairs(v, v))
    add("bag", "ZAV_Bag", lambda v: Pairs(v, v["mContents"]))
    add("association", "ZAV_Assoc|ZAV_AssocInt", Association)
    add("integer", "ZAV_Integer", Integer)
    add("link to an object", "ZAV_LinkObj", LinkObject)
    add("nil", "ZAV_CltNil", Nil)
    add("reference", "ZAV_(SyncObj|EvHandler|Timer|AllocMem)?Ref", Reference)
    add("event", "ZAV_Event(Start|Stop|Sync|Timer)?", Event)
    add("message", "ZAV_I18nMsg|ZAV_Error", Message)
    add("file exception", "ZAV_FileException", FileException)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), build(), replace=True)
