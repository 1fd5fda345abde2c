#!/usr/bin/env python3
"""Writes values.bin, the binary form of values.zav, from the description of the format alone."""
import struct


def atom(kind, data, size):
    count = len(data) // size
    return bytes([kind]) + data if count == 1 else bytes([kind | 0x10]) + struct.pack(">I", count) + data


def number(value):
    return atom(3, struct.pack("<H", value), 2)


def text(data):
    return number(len(data) + 1) + atom(2, data + b"\0", 1)


# type: (atom kind, element size, struct letter)
NUMBERS = {2: (1, 1, "b"), 3: (1, 1, "B"), 4: (3, 2, "h"), 5: (3, 2, "H"), 6: (4, 4, "i"), 7: (4, 4, "I"),
           8: (6, 4, "f"), 9: (7, 8, "d")}


def value(kind, data):
    is_array = isinstance(data, list)
    items = data if is_array else [data]
    head = number(kind) + atom(4, struct.pack("<i", len(items) if is_array else 0), 4)
    if kind == 12:
        return head
    if kind >= 10:
        return head + b"".join(text(item) for item in items)
    wire, size, letter = NUMBERS[kind]
    return head + atom(wire, b"".join(struct.pack("<" + letter, item) for item in items), size)


def dictionary(entries):
    out = number(len(entries))
    for key, entry in entries:
        out += text(key)
        if entry is None:
            out += number(0)
        elif entry[0] == 1:
            out += number(1) + dictionary(entry[1])
        else:
            out += value(*entry)
    return out


VALUES = [
    (b"char", (2, -56)), (b"uchars", (3, [0, 255])), (b"short", (4, -2)), (b"ushorts", (5, [65535])),
    (b"long", (6, -2147483648)), (b"ulong", (7, 4294967295)), (b"float", (8, 0.1)), (b"doubles", (9, [0.1, -1e300, 0.0])),
    (b"string", (10, b"a\0\xe9")), (b"strings", (10, [b"", b"x"])), (b"utf", (11, b"\xc3\xa9")), (b"ptr", (12, 0)),
    (b"ptrs", (12, [0, 0])), (b"none", None), (b"", (6, 1)), (b"a:b", (6, 2)), (b"k" * 64, (6, 3)),
    (b"sub", (1, [(b"empty", (1, [])), (b"longs", (6, list(range(200))))])),
]

if __name__ == "__main__":
    with open("values.bin", "wb") as f:
        f.write(atom(3, struct.pack("<H", 16), 2) + atom(2, b"UVALBINDUMP_2.0\0", 1) + dictionary(VALUES))
