#!/usr/bin/env python3
"""Writes the tables of records in docs/box.md from the catalog, or checks that they are up to date.

usage: oltctl list --json | scripts/record_tables.py [--update]

A table stands between "<!-- record NAME -->" and "<!-- end -->".
"""
import json
import pathlib
import re
import sys

PAGE = pathlib.Path(__file__).parent.parent / "docs" / "box.md"
BLOCK = re.compile(r"(<!-- record (\w+) -->\n).*?(<!-- end -->\n)", re.DOTALL)
NUMBERS = {1: "byte", 2: "half-word", 4: "word"}


def show(number):
    return str(number) if number < 0x10000 else hex(number)


def holds(field):
    kind, width = field["kind"], field["width"]
    texts = {
        "text": f"text, {width} bytes with its zero",
        "padded": f"text, {width} bytes",
        "listing": f"name of a listing, {width} bytes",
        "signed": f"{NUMBERS.get(width)} with a sign",
        "number": NUMBERS.get(width),
        "vlan": f"VLAN id, a {NUMBERS.get(width)}",
        "flags": f"bits of a {NUMBERS.get(width)}",
        "duration": "seconds, a word",
        "ports": "a bit for each port from 1",
        "numbers": f"{(width or 0) // 4} words",
        "vlans": f"{(width or 0) // 2} VLAN ids, half-words",
        "mac": "MAC address, 6 bytes",
        "ipv4": "IPv4 address, 4 bytes",
        "interface": "slot and port, 2 words",
        "ont": "slot, interface and ONU, 3 words",
        "version": f"version, {width} bytes",
        "bytes": f"{width} bytes" if width else "bytes to the end",
    }
    if kind == "records":
        inner = field["record"]
        names = ", ".join(f"{f['name']} ({holds(f)})" for f in inner["fields"])
        return f"records of {inner['size']} bytes to the end: {names}"
    text = texts[kind]
    if field["unit"]:
        text += f", in {field['unit']}"
    names = ", ".join(f"{show(value['value'])} {value['name']}" for value in field["values"])
    if names:
        text += f"; {names}"
    return text + ("; secret" if field["secret"] else "")


def table(record):
    rows = [(str(f["offset"]), f"`{f['name']}`", holds(f)) for f in record["fields"]
            if f["role"] != "reserved"]
    rows.insert(0, ("Offset", "Field", "Holds"))
    lines = ["| " + " | ".join(row) + " |" for row in rows]
    lines.insert(1, "|---|---|---|")
    return "\n".join(lines) + "\n"


def main():
    records = {record["name"]: record for record in json.load(sys.stdin)["records"]}
    page = PAGE.read_text(encoding="utf-8")

    def renewed(block):
        if block[2] not in records:
            sys.exit(f"record_tables.py: {PAGE.name} has a table of '{block[2]}'; expected a record of the catalog")
        return block[1] + table(records[block[2]]) + block[3]

    today = BLOCK.sub(renewed, page)
    if sys.argv[1:] == ["--update"]:
        PAGE.write_text(today, encoding="utf-8")
    elif sys.argv[1:]:
        sys.exit(f"record_tables.py: unknown argument '{sys.argv[1]}'; expected --update or none")
    elif today != page:
        sys.exit("record_tables.py: docs/box.md differs from the catalog; if this is intended: ./dev renew")


if __name__ == "__main__":
    main()
