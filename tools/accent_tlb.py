#!/usr/bin/env python3
"""Puts accented member names into a type library. Usage: accent_tlb.py IN.tlb OUT.tlb TABLE.h

widl reads ASCII names only. TABLE.h is the table of members: every accented identifier quoted there
replaces its ASCII spelling in the library's name table. The library stores a hash with each name,
computed over letters without accents, so that one byte per letter is all that changes. The moment
of the build, which widl writes as well, is blanked: the same interface gives the same file.
"""
import re
import struct
import sys
import unicodedata

HEADER_SIZE = 0x54
FLAG_HELP_DLL = 0x100
NAME_TABLE = 7  # its place among the segments


def without_accents(name):
    parts = unicodedata.normalize("NFD", name)
    return "".join(c for c in parts if not unicodedata.combining(c))


def accented_names(table):
    quoted = re.findall(r'"(\w+)"', table)
    return {
        without_accents(name).encode("ascii"): name.encode("cp1252")
        for name in quoted
        if not name.isascii()
    }


def rename(library, names):
    if library[:4] != b"MSFT":
        sys.exit("not a type library in MSFT format")
    (flags,) = struct.unpack_from("<I", library, 0x14)
    (types,) = struct.unpack_from("<I", library, 0x20)
    segments = HEADER_SIZE + (4 if flags & FLAG_HELP_DLL else 0) + 4 * types
    start, size = struct.unpack_from("<ii", library, segments + 16 * NAME_TABLE)
    place, done = start, set()
    while place < start + size:
        length = library[place + 8]
        text = slice(place + 12, place + 12 + length)
        accented = names.get(bytes(library[text]))
        if accented is not None:
            done.add(bytes(library[text]))
            library[text] = accented
        place += 12 + (length + 3) // 4 * 4
    if place != start + size:
        sys.exit("the name table has another form than expected")
    missing = set(names) - done
    if missing:
        sys.exit(f"members of the table that the library does not have: {sorted(missing)}")


def blank_time(library):
    mark = library.find(b"Created by WIDL version ")
    if mark < 0:
        return
    text = library.find(b" at ", mark) + 4
    stamp = b"Thu Jan  1 00:00:00 1970"
    library[text : text + len(stamp)] = stamp
    number = library.find(b"\x13\x00", text + len(stamp)) + 2
    library[number : number + 4] = bytes(4)


def main():
    source, target, table = sys.argv[1:]
    with open(source, "rb") as file:
        library = bytearray(file.read())
    with open(table, encoding="utf-8") as file:
        rename(library, accented_names(file.read()))
    blank_time(library)
    with open(target, "wb") as file:
        file.write(library)


main()
