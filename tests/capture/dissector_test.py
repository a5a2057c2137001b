#!/usr/bin/env python3
"""The dissector in tshark, on captures that libolttrace records here and now."""
import argparse
import collections
import json
import os
import random
import re
import struct
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
from pcapng import packet_in, packets_of

ARGUMENTS = None
FOLDER = None

HEADER_AT = 12
RECORD_AT = HEADER_AT + 64

# Filters that the dissector has beside those of the catalog's fields.
OF_EVERY_PACKET = {"run", "process", "thread", "exchange", "module", "type", "timeout",
                   "record_length"}
OF_THE_REST = {"operation", "no_reply", "masked", "request", "reply", "request_in", "answer_in",
               "result", "status", "failed", "time"}

# The names that fields of the catalog do not have alone: the dissector's own, and those of another
# type than the first field of the name.
OTHER_NAMES = {("operation", "number"): "field.operation", ("target", "numbers"): "target.number"}


def run(command, environment=None, data=None):
    inherited = {key: value for key, value in os.environ.items() if key != "LD_PRELOAD"}
    return subprocess.run(command, input=data, capture_output=True, timeout=120,
                          env={**inherited, **(environment or {})}, check=False)


def text(data):
    return data.decode("utf-8", "replace")


def record(name, command, data=None):
    """Runs a program with libolttrace in front. Returns what it prints, and the capture's path."""
    folder = os.path.join(FOLDER, name)
    os.mkdir(folder)
    done = run(command, {"LD_PRELOAD": ARGUMENTS.recorder, "XDG_STATE_HOME": folder,
                         "OLT_CAPTURE": os.path.join(folder, "%p.pcapng")}, data)
    captures = [one for one in os.listdir(folder) if one.endswith(".pcapng")]
    assert done.returncode == 0 and len(captures) == 1, text(done.stderr)
    return text(done.stdout), os.path.join(folder, captures[0])


def write(name, data):
    path = os.path.join(FOLDER, name)
    with open(path, "wb") as out:
        out.write(data)
    return path


def script(*options):
    """The dissector's path."""
    done = run([ARGUMENTS.oltctl, *options, "dissector"])
    assert done.returncode == 0, text(done.stderr)
    return write("dissector%d.lua" % len(os.listdir(FOLDER)), done.stdout)


def tshark(*arguments, home=None):
    """Without the user's own plugins and configuration."""
    home = home or os.path.join(FOLDER, "home")
    os.makedirs(home, exist_ok=True)
    done = run([ARGUMENTS.tshark, *arguments],
               {"HOME": home, "XDG_CONFIG_HOME": home, "LC_ALL": "C.UTF-8"})
    lines = text(done.stderr).splitlines(keepends=True)
    errors = "".join(line for line in lines if "Running as user" not in line)
    return done.returncode, text(done.stdout), errors


def block_of(packet, milliseconds, length=None):
    """An enhanced packet block; length is that before the packet was cut."""
    size = 32 + len(packet) + -len(packet) % 4
    return (struct.pack("<IIIIIII", 6, size, 0, *divmod(milliseconds * 10**6, 2**32),
                        len(packet), length or len(packet)) + packet +
            bytes(-len(packet) % 4) + struct.pack("<I", size))


def counts(path, filters, *options):
    """How many packets each filter takes, all from one run."""
    code, output, errors = tshark("-X", "lua_script:" + SCRIPT, "-r", path, "-q", *options, "-z",
                                  "io,stat,0," + ",".join(filters))
    assert code == 0 and errors == "", errors
    row = [line for line in output.splitlines() if "<>" in line and "Dur" not in line]
    assert len(row) == 1, output
    return [int(cell.split()[0]) for cell in row[0].strip("| ").split("|")[1::2]]


def dissected(path, script_path, *options):
    """The layers of each packet."""
    code, output, errors = tshark("-X", "lua_script:" + script_path, "-r", path, "-T", "json", "-x",
                                  "--no-duplicate-keys", "-J", "oltmgmt", *options)
    assert code == 0 and errors == "", errors
    return [packet["_source"]["layers"]["oltmgmt"] for packet in json.loads(output)]


def as_list(value):
    return value if isinstance(value, list) else [value]


def items_in(layer):
    """Each item as filter, bytes, offset, width and value, in no order."""
    found = []
    for key, value in layer.items():
        if key.endswith("_tree"):
            for tree in as_list(value):
                found += items_in(tree)
        if not key.startswith("oltmgmt.") or key.endswith(("_raw", "_tree")):
            continue
        values = as_list(value)
        for tree in values:  # items without a value
            found += items_in(tree) if isinstance(tree, dict) else []
        raw = layer.get(key + "_raw", [])
        raw = raw if raw and isinstance(raw[0], list) else [raw] * len(values)
        # An item without bytes has no raw form.
        places = [tuple(one[:3]) if one else ("", None, 0) for one in raw]
        found += [(key[len("oltmgmt."):], *place, "" if isinstance(one, dict) else one)
                  for place, one in zip(places, values)]
    return found


def filter_of(field, suffix=None):
    other = OTHER_NAMES.get((field["name"], field["kind"]))
    if suffix:
        before = "field." if field["name"] == "operation" else ""
        return before + field["name"] + "." + suffix
    return other or field["name"]


def little(data):
    return int.from_bytes(data, "little")


def expected_items(field, data, at):
    """What the dissector must show of a field, whose bytes begin at that offset of the packet."""
    def item(name, value, part=data, place=at):
        return name, part.hex(), place, len(part), value

    def words(width):
        return [(data[i:i + width], at + i) for i in range(0, len(data) - width + 1, width)]

    kind = "bytes" if field["role"] == "reserved" else field["kind"]
    own = filter_of(field)
    if kind in ("number", "vlan"):
        names = {one["value"]: one["name"] for one in field["values"]}
        items = [item(own, str(little(data)))]
        if little(data) in names:
            items.append(item(filter_of(field, "name"), names[little(data)]))
        return items
    if kind == "duration":
        return [item(own, str(little(data)))]
    if kind == "signed":
        return [item(own, str(int.from_bytes(data, "little", signed=True)))]
    if kind in ("text", "padded", "listing"):
        return [item(own, data.split(b"\0")[0].decode())]
    if kind in ("mac", "bytes"):
        return [item(own, data.hex(":"))]
    if kind == "ipv4":
        return [item(own, ".".join(map(str, data)))]
    if kind == "ont":
        parts = [item(filter_of(field, name), str(little(word)), word, place)
                 for name, (word, place) in zip(("slot", "interface", "onu"), words(4))]
        return [item(own, "/".join(str(little(word)) for word, _ in words(4))), *parts]
    count = filter_of(field, "count")
    if kind in ("numbers", "vlans"):
        items = words(4 if kind == "numbers" else 2)
        while kind == "vlans" and items and little(items[-1][0]) == 0:
            items.pop()
        names = [own, "vlan"] if kind == "vlans" else [own]
        return [item(count, str(len(items))),
                *[item(name, str(little(word)), word, place)
                  for word, place in items for name in names]]
    if kind == "ports":
        ports = [port + 1 for port in range(8 * len(data)) if little(data) >> port & 1]
        return [item(count, str(len(ports))), *[item(own, str(port)) for port in ports]]
    assert kind == "records", kind
    size = field["record"]["size"]
    items = [item(count, str(len(data) // size))]
    for start in range(0, len(data) - size + 1, size):
        one = data[start:start + size]
        items.append(item(filter_of(field, "record"), "", one, at + start))
        for inner in field["record"]["fields"]:
            part = one[inner["offset"]:inner["offset"] + inner["width"]]
            shown = expected_items(inner, part, at + start + inner["offset"])
            items += shown
            if inner["kind"] == "vlan" and little(part):
                items.append(("vlan", *shown[0][1:]))
    if len(data) % size:
        rest = len(data) - len(data) % size
        items.append(item("rest", data[rest:].hex(":"), data[rest:], at + rest))
    return items


class EveryOperation(unittest.TestCase):
    """Scattered bytes in every request and reply."""

    @classmethod
    def setUpClass(cls):
        output, cls.capture = record("every", [ARGUMENTS.every_operation])
        cls.names = output.split()
        cls.packets = [packet_in(block) for block in packets_of(cls.capture)[1]]
        cls.layers = dissected(cls.capture, SCRIPT)
        catalog = json.loads(run([ARGUMENTS.oltctl, "--json", "list"]).stdout)
        cls.operations = {one["name"]: one for one in catalog["operations"]}

    def test_has_each_operation_that_sends(self):
        self.assertEqual(176, len(set(self.names)))
        self.assertEqual(178, len(self.names))
        self.assertEqual(2 * 178 + 2, len(self.packets))
        self.assertEqual(len(self.packets), len(self.layers))

    def test_shows_each_field_of_the_catalog_and_no_other(self):
        fields = 0
        for i, name in enumerate(self.names):
            for side, at in (("request", 2 * i), ("reply", 2 * i + 1)):
                with self.subTest(name + " " + side):
                    fields += self.compare(self.operations[name][side], self.packets[at],
                                           self.layers[at])
        self.assertGreater(fields, 2000)

    def compare(self, message, packet, layer):
        expected = []
        for field in message["fields"]:
            begin = RECORD_AT + field["offset"]
            end = begin + field["width"] if field["width"] is not None else len(packet)
            if begin < len(packet):
                self.assertLessEqual(end, len(packet), field["name"])
                expected += expected_items(field, packet[begin:end], begin)
        of_head = OF_EVERY_PACKET | OF_THE_REST
        shown = [item for item in items_in(layer) if item[0] not in of_head]
        self.assertEqual(collections.Counter(expected), collections.Counter(shown))
        return len(shown)

    def test_shows_the_header(self):
        at = {"run": 8, "process": 12, "thread": 16, "exchange": 20, "module": 24, "type": 28,
              "timeout": 32, "record_length": 36}
        for i, layer in enumerate(self.layers):
            shown = {name: (raw, place, value) for name, raw, place, _, value in items_in(layer)
                     if name in OF_EVERY_PACKET | OF_THE_REST}
            for name, offset in at.items():
                data = self.packets[i][HEADER_AT + offset:HEADER_AT + offset + 4]
                self.assertEqual((data.hex(), HEADER_AT + offset, str(little(data))), shown[name])
            if i < 2 * len(self.names):
                self.assertEqual(self.names[i // 2], shown["operation"][2])
            if i % 2 == 0:
                self.assertIn("request", shown)
                self.assertFalse({"result", "status", "time", "request_in"} & shown.keys())
                continue
            duration = little(self.packets[i][HEADER_AT + 48:HEADER_AT + 56])
            self.assertEqual("%d.%09d" % divmod(duration, 10**9), shown["time"][2])
            self.assertEqual(("00000000", HEADER_AT + 40, "0x00000000"), shown["result"])
            self.assertEqual(("0000", HEADER_AT + 44, "0"), shown["status"])
            self.assertEqual(str(i), shown["request_in"][2])

    def test_marks_what_no_operation_sends(self):
        last = len(self.packets) - 1
        self.assertEqual([1, 1, 1, 2], counts(self.capture, [
            "oltmgmt.cut && oltmgmt.unknown && frame.number == %d" % last, "oltmgmt.cut",
            "oltmgmt.record_length == 140000", "oltmgmt.unknown && oltmgmt.type == 60000"]))

    def test_damaged_packets_raise_no_error(self):
        """Packets cut at every byte, also as if by a limit of the capture, and damaged ones."""
        head = packets_of(self.capture)[0]
        parts = [head]
        for packet in self.varied_packets():
            for size in range(HEADER_AT, len(packet)):
                parts.append(block_of(packet[:size], len(parts)))
                parts.append(block_of(packet[:size], len(parts), len(packet)))
        chance = random.Random(1)
        for _ in range(6000):
            packet = bytearray(chance.choice(self.packets[:-2]))
            for _ in range(chance.choice((1, 1, 4))):
                at = HEADER_AT + chance.randrange(len(packet) - HEADER_AT)
                packet[at] = chance.choice((0, 1, 2, 255, chance.randrange(256)))
            size = chance.randrange(HEADER_AT, len(packet) + 1)
            parts.append(block_of(bytes(packet[:size]), len(parts)))
        path = write("damaged.pcapng", b"".join(parts))
        code, output, errors = tshark("-X", "lua_script:" + SCRIPT, "-r", path, "-V")
        self.assertEqual((0, ""), (code, errors))
        self.assertEqual(len(parts) - 1, len(re.findall(r"^Frame \d+:", output, re.M)))
        self.assertNotIn("Lua Error", output)
        self.assertEqual([0, len(parts) - 1],
                         counts(path, ["_ws.lua.error && oltmgmt.slot", "oltmgmt"]))
        self.assertEqual([0], counts(path, ["_ws.lua.error"]))
        code, output, errors = tshark("-X", "lua_script:" + SCRIPT, "-r", path, "-T", "json", "-J",
                                      "oltmgmt _ws.lua")
        self.assertEqual((0, ""), (code, errors))
        self.assertEqual(len(parts) - 1, len(json.loads(output)))
        self.assertNotIn("Lua Error", output)
        code, output, errors = tshark(
            "-X", "lua_script:" + SCRIPT, "-r", path, "-o", 'gui.column.format:"VLAN",'
            '"%Cus:oltmgmt.vlan","Name","%Cus:oltmgmt.state.name","Error","%Cus:_ws.lua.error"')
        self.assertEqual((0, ""), (code, errors))
        self.assertNotIn("Lua Error", output)

    def test_layouts_without_meanings_raise_no_error(self):
        code, output, errors = tshark("-X", "lua_script:" + script("--layout", "none"), "-r",
                                      self.capture, "-V")
        self.assertEqual((0, ""), (code, errors))
        self.assertNotIn("Lua Error", output)
        self.assertIn("\n    Status: 0\n", output)

    def varied_packets(self):
        """One request and one reply of each kind of field."""
        seen = set()
        for i, name in enumerate(self.names):
            for side, at in (("request", 2 * i), ("reply", 2 * i + 1)):
                kinds = {field["kind"] for field in self.operations[name][side]["fields"]}
                if not kinds <= seen and len(self.packets[at]) < 500:
                    seen |= kinds
                    yield self.packets[at]

    def test_errors_would_be_found(self):
        with open(SCRIPT, encoding="utf-8") as source:
            broken = source.read().replace("local function add_head(tree, tvb, p, wants)\n",
                                           "local function add_head() error('planted')\n")
        path = write("broken.lua", broken.encode())
        _, output, _ = tshark("-X", "lua_script:" + path, "-r", self.capture, "-V", "-c", "1")
        self.assertIn("Lua Error", output)
        self.assertIn("planted", output)


SESSION = b"""\
get_olt_mac
get_olt_mac
fault add type=get_olt_mac status=5 count=1
get_olt_mac
fault add type=get_olt_mac action=drop count=1
get_olt_mac
add_vlan_list vlans=100,200-210
get_vlan_all
get_vlan_information_file_bylist vlans=100
add_user_level someone hidden-word 1 2
set_port_enable --zero slot=0 port=99 port_enable=on
Cl_Set_SntpCfg_apply enabled=on server_first=192.0.2.123 server_second=0.0.0.0 \
interval=1h utc_offset=-90
process_trunk_vlan slot=1 port=1 vlans=10,20-25 trunk_value=1
process_snmp_onubasicinfo ont=1/2/3 slot=1
add_authallowed_mac_loid iface_a=1 iface_b=1 \
entries='mac=02:00:00:00:00:01 loid=site-17 password=secret;\
mac=00:11:22:33:44:55 loid=site-18 password=other'
get_rstp_brief slot=1 port=1
add_ont_port_muticastvlan ont=1/2/3:4 vlans=10,20-25
set_system_loglevel value=debug
"""

# Filters, and how many of the session's 38 packets they take.
FILTERS = [
    ("oltmgmt", 38),
    ('oltmgmt.operation == "get_olt_mac"', 8),
    ('oltmgmt.operation matches "vlan"', 10),
    ('oltmgmt.operation == "get_vlan_all"', 2),
    ("oltmgmt.module == 23", 2),
    ("oltmgmt.module in {22 .. 23}", 4),
    ('oltmgmt.module == "rstp"', 2),
    ("oltmgmt.type == 23", 4),
    ("oltmgmt.exchange == 7", 2),
    ("oltmgmt.run && oltmgmt.process && oltmgmt.thread && oltmgmt.timeout", 38),
    ("oltmgmt.timeout == 10 && oltmgmt.failed", 3),
    ("oltmgmt.record_length == 6", 2),
    ("oltmgmt.request", 19),
    ("oltmgmt.reply", 8),
    ("oltmgmt.request_in", 19),
    ("oltmgmt.no_reply && oltmgmt.request", 9),
    ("oltmgmt.no_reply == 1", 18),
    ("oltmgmt.no_reply && oltmgmt.failed", 2),
    ("oltmgmt.status == 0", 15),
    ("oltmgmt.status != 0", 3),
    ('oltmgmt.status == "not found"', 2),
    ("oltmgmt.result != 0", 1),
    ("oltmgmt.result == 0x30000", 1),
    ("oltmgmt.failed", 4),
    ('oltmgmt.failed contains "not found"', 2),
    ("oltmgmt.refused", 3),
    ("oltmgmt.transport_failure", 1),
    ("oltmgmt.masked", 2),
    ("oltmgmt.masked == 1", 2),
    ("oltmgmt.unknown", 4),
    ("oltmgmt.cut || oltmgmt.short || oltmgmt.lost || oltmgmt.malformed", 0),
    ("oltmgmt.time < 5", 19),
    ("oltmgmt.time >= 5", 0),
    ("_ws.expert", 8),
    ("_ws.expert.severity == error", 1),
    ("_ws.lua.error", 0),
    ("oltmgmt.first == 100", 2),
    ("oltmgmt.first in {15 .. 150}", 3),
    ("oltmgmt.vlans.record", 3),
    ("oltmgmt.vlan == 100", 2),
    ("oltmgmt.vlan in {200 .. 210}", 1),
    ("oltmgmt.vlan == 22", 1),
    ("oltmgmt.vlan == 0", 0),
    ("oltmgmt.vlans == 22", 1),
    ("oltmgmt.vlans.count == 7", 1),
    ("oltmgmt.vlans.count == 2", 2),
    ("oltmgmt.mac == 02:00:00:00:00:01", 2),
    ("oltmgmt.mac == 2a:2a:2a:2a:2a:2a", 1),
    ("oltmgmt.mac[0:2] == 02:20", 1),
    ("oltmgmt contains 02:20:02:00:03:01", 1),
    ("oltmgmt.reply contains 02:20", 1),
    ("oltmgmt.state == 3", 1),
    ('oltmgmt.state.name == "up"', 1),
    ('oltmgmt.state.name == "forwarding"', 1),
    ('oltmgmt.kind.name == "list"', 1),
    ('oltmgmt.value.name == "debug"', 2),
    ('oltmgmt.enabled == "on"', 1),
    ("oltmgmt.port_enable == 1", 1),
    ("oltmgmt.server_first == 192.0.2.0/24", 1),
    ("oltmgmt.interval == 3600", 1),
    ("oltmgmt.utc_offset < 0", 1),
    ('oltmgmt.target == "1/2/3"', 2),
    ("oltmgmt.target.onu == 3", 2),
    ('oltmgmt.loid contains "site"', 1),
    ('oltmgmt.loid matches "^onu-"', 1),
    ("oltmgmt.slot == 1 && oltmgmt.port == 1", 3),
    ("any oltmgmt.port == 1 && oltmgmt.slot & 1", 3),
    ("!(oltmgmt.operation == get_olt_mac)", 30),
    ("oltmgmt.mac[5] == 01", 3),
    ("len(oltmgmt.reply) == 6", 2),
    ("upper(oltmgmt.loid) contains SITE", 1),
    ("oltmgmt.exchange > 3 and oltmgmt.exchange < 6", 4),
    ("oltmgmt.port > 50", 1),
    ('oltmgmt.user_password contains "***"', 1),
    ("oltmgmt.entries.count == 2", 1),
]

LAYOUT = {
    "version": 1, "name": "acme", "statuses": {"4": 'no such "thing"'},
    "records": {"olt_system_network": [
        {"name": "address", "offset": 0, "kind": "ipv4"},
        {"name": "mode", "offset": 4, "width": 4, "kind": "number",
         "values": {"0": "dhcp", "1": "fixed"}},
        {"name": "level", "offset": 8, "width": 2, "kind": "signed", "decimals": 2, "unit": "dBm"},
        {"name": "key", "offset": 12, "width": 16, "kind": "padded", "secret": True},
        {"name": "routes", "offset": 28, "width": 16, "kind": "records", "record": {"fields": [
            {"name": "to", "offset": 0, "kind": "ipv4"},
            {"name": "hops", "offset": 4, "width": 4, "kind": "number", "unit": "KiB"}]}},
        {"name": "features", "offset": 44, "width": 1, "kind": "flags",
         "values": {"1": "igmp", "2": "dba", "12": "both"}},
        {"name": "tagged", "offset": 48, "width": 2, "kind": "ports"},
        {"name": "native", "offset": 50, "width": 2, "kind": "vlan", "values": {"0": "none"}},
        {"name": "uplink", "offset": 52, "kind": "interface"},
        {"name": "software", "offset": 60, "width": 3, "kind": "version"},
        {"name": "onu", "offset": 64, "kind": "ont"},
        {"name": "ids", "offset": 76, "width": 8, "kind": "vlans"},
        {"name": "counters", "offset": 84, "width": 8, "kind": "numbers"},
        {"name": "lease", "offset": 92, "width": 4, "kind": "duration"},
        {"name": "temperature", "offset": 96, "width": 1, "kind": "signed"},
        {"name": "module", "offset": 100, "width": 4, "kind": "number"},
        {"name": "Place", "offset": 104, "width": 16, "kind": "text"},
    ]},
}

# What a call with that layout shows: the values of each filter.
OF_LAYOUT = {
    "address": ["192.0.2.1"], "mode": ["1"], "mode.name": ["fixed"], "level": ["-12.5"],
    "key": ["opened"], "routes.count": ["2"], "routes.record": ["", ""],
    "to": ["10.0.0.0", "10.0.0.1"], "hops": ["2", "3"], "features": ["0x0000000e"],
    "features.name": ["dba", "both"], "tagged.count": ["3"], "tagged": ["1", "2", "16"],
    "native": ["0"], "native.name": ["none"], "uplink": ["1/2"], "uplink.slot": ["1"],
    "uplink.port": ["2"], "software": ["1.2.3"],
    "onu": ["4/5/6"], "onu.slot": ["4"], "onu.interface": ["5"], "onu.onu": ["6"],
    "ids.count": ["3"], "ids": ["10", "20", "21"], "vlan": ["10", "20", "21"],
    "counters.count": ["2"], "counters": ["7", "4294967295"], "lease": ["90061"], "temperature": ["-40"],
    "field.module": ["77"], "module": ["2"], "Place": ["Zürich"],
}


class Session(unittest.TestCase):
    """What a session of oltctl with a simulated box has recorded."""

    @classmethod
    def setUpClass(cls):
        _, cls.capture = record("session", [
            "sh", "-c", '"$0" --yes --keep-going -f - >"$1" 2>&1; test $? -eq 1', ARGUMENTS.oltctl,
            os.path.join(FOLDER, "session.txt")], SESSION)

    def test_filters(self):
        found = counts(self.capture, [one for one, _ in FILTERS])
        self.assertEqual(FILTERS, [(one, count) for (one, _), count in zip(FILTERS, found)])

    def test_documented_filters_are_valid(self):
        with open(ARGUMENTS.document, encoding="utf-8") as document:
            table = document.read().split("### Filters")[1].split("\n\n")[2]
        filters = re.findall(r"`(oltmgmt[^`]*)`", table)
        self.assertGreater(len(filters), 25)
        self.assertEqual(len(filters), len(counts(self.capture, filters)))

    def test_a_filter_alone_takes_the_same_packets(self):
        for one, expected in (
                ("oltmgmt.vlans == 22", [["33", "OLTMGMT", "add_ont_port_muticastvlan"]]),
                ("oltmgmt.refused", [
                    ["8", "OLTMGMT", "get_olt_mac: refused, status 5: exists already"],
                    ["22", "OLTMGMT", "set_port_enable: refused, status 4: not found"],
                    ["26", "OLTMGMT", "process_trunk_vlan: refused, status 4: not found"]]),
                ('oltmgmt.state.name == "up"', [
                    ["28", "OLTMGMT", "process_snmp_onubasicinfo: ok"]])):
            code, output, errors = tshark(
                "-X", "lua_script:" + SCRIPT, "-r", self.capture, "-Y", one, "-o",
                'gui.column.format:"No.","%m","Protocol","%p","Info","%i"')
            self.assertEqual((0, ""), (code, errors))
            self.assertEqual(expected, [line.split(maxsplit=2) for line in output.splitlines()])

    def test_names_that_are_ambiguous_are_refused(self):
        code, output, errors = tshark("-X", "lua_script:" + SCRIPT, "-r", self.capture, "-Y",
                                      'oltmgmt.state == "up"')
        self.assertNotEqual(0, code)
        self.assertEqual("", output)
        self.assertIn('"up"', errors)

    def test_links_and_losses(self):
        """Without the last answer, and with three exchanges lost before the second one."""
        head, blocks = packets_of(self.capture)
        packets = [packet_in(block) for block in blocks]
        packets[2] = packets[2][:HEADER_AT + 56] + b"\3" + packets[2][HEADER_AT + 57:]
        blocks = [block_of(packet, i) for i, packet in enumerate(packets[:-1])]
        path = write("links.pcapng", head + b"".join(blocks))
        self.assertEqual([18, 18, 1, 1, 1], counts(path, [
            "oltmgmt.answer_in", "oltmgmt.request_in", "oltmgmt.unanswered",
            "oltmgmt.unanswered && frame.number == 37", "oltmgmt.lost && frame.number == 3"], "-2"))

    def test_links_of_exchanges_at_the_same_time(self):
        """As in merged captures. The fourth exchange has its answer first, which links nothing."""
        head, blocks = packets_of(self.capture)
        order = [0, 2, 1, 3, 4, 5, 7, 6, 8, 10, 12, 13, 9, 11]
        path = write("merged.pcapng", head + b"".join(
            block_of(packet_in(blocks[place]), i) for i, place in enumerate(order)))
        code, output, errors = tshark(
            "-X", "lua_script:" + SCRIPT, "-r", path, "-2", "-T", "fields", "-E", "separator=,", "-e",
            "oltmgmt.answer_in", "-e", "oltmgmt.request_in", "-e", "oltmgmt.exchange")
        self.assertEqual((0, ""), (code, errors))
        self.assertEqual(["3,,1", "4,,2", ",1,1", ",2,2", "6,,3", ",5,3", ",,4", ",,4", "13,,5",
                          "14,,6", "12,,7", ",11,7", ",9,5", ",10,6"], output.split())
        self.assertEqual([1], counts(path, ["oltmgmt.unanswered && frame.number == 8"], "-2"))

    def test_answers_far_from_their_requests(self):
        """3,000 requests of each of two operations of one message type in turn, then their answers."""
        head, blocks = packets_of(self.capture)
        exchanges = []
        for operation in ("get_vlan_all", "get_vlan_information_file_bylist"):
            frames = tshark("-X", "lua_script:" + SCRIPT, "-r", self.capture, "-Y",
                            'oltmgmt.operation == "%s"' % operation, "-T", "fields", "-e",
                            "frame.number")[1].split()
            exchanges.append([packet_in(blocks[int(frame) - 1]) for frame in frames])
        parts = [head]
        for is_answer in (0, 1):
            for number in range(6000):
                packet = exchanges[number % 2][is_answer]
                parts.append(block_of(packet[:HEADER_AT + 20] + struct.pack("<I", number + 1) +
                                      packet[HEADER_AT + 24:], len(parts)))
        path = write("far.pcapng", b"".join(parts))
        first = 'oltmgmt.operation == "get_vlan_all"'
        second = 'oltmgmt.operation == "get_vlan_information_file_bylist"'
        for options in ([], ["-2"]):
            self.assertEqual([6000, 6000, 6000, 6000, 6000], counts(path, [
                "oltmgmt.request_in", first, first + " && oltmgmt.exchange & 1 == 1",
                second, second + " && oltmgmt.exchange & 1 == 0"], *options))

    def test_packets_cut_by_editcap(self):
        path = os.path.join(FOLDER, "cut.pcapng")
        done = run(["editcap", "-s", "100", self.capture, path])
        self.assertEqual(0, done.returncode, text(done.stderr))
        longer = sum(len(packet_in(block)) > 100 for block in packets_of(self.capture)[1])
        self.assertEqual([0, longer, longer, 38], counts(path, [
            "_ws.lua.error", "oltmgmt.cut", "frame.cap_len < frame.len", "oltmgmt.operation ||"
            " oltmgmt.unknown"]))

    def test_loads_from_the_personal_folder(self):
        home = os.path.join(FOLDER, "personal")
        plugins = os.path.join(home, ".local", "lib", "wireshark", "plugins")
        os.makedirs(plugins)
        done = run([ARGUMENTS.oltctl, "dissector", os.path.join(plugins, "oltmgmt.lua")])
        self.assertEqual((0, b"", b""), (done.returncode, done.stdout, done.stderr))
        code, output, errors = tshark("-r", self.capture, "-c", "1", home=home)
        self.assertEqual((0, ""), (code, errors))
        self.assertIn(" OLTMGMT 76 get_olt_mac\n", output)
        _, _, errors = tshark("-X", "lua_script:" + SCRIPT, "-r", self.capture, "-c", "1",
                              home=home)
        self.assertIn("oltmgmt.lua is loaded twice; expected one copy", errors)

    def test_a_file_that_cannot_be_written_is_one_error_line(self):
        path = os.path.join(FOLDER, "none", "oltmgmt.lua")
        done = run([ARGUMENTS.oltctl, "dissector", path])
        self.assertEqual((1, "", "dissector: cannot write %s: No such file or directory\n" % path),
                         (done.returncode, text(done.stdout), text(done.stderr)))
        done = run([ARGUMENTS.oltctl, "dissector", path, "more"])
        self.assertEqual(
            (2, "", "dissector: 'more' is one argument too many; expected at most one\n"),
            (done.returncode, text(done.stdout), text(done.stderr)))

    def test_the_build_makes_the_one_of_the_box(self):
        with open(ARGUMENTS.built, encoding="utf-8") as built, \
                open(SCRIPT, encoding="utf-8") as printed:
            self.assertEqual(built.read(), printed.read())

    def test_has_the_fields_of_the_layout_in_use(self):
        layout = write("acme.json", json.dumps(LAYOUT).encode())
        _, capture = record("layout", [
            ARGUMENTS.oltctl, "--layout", layout, "--zero", "--yes", "set_system_ipaddress",
            "address=192.0.2.1", "mode=fixed", "level=-12.5", "key=opened",
            "routes={to=10.0.0.0 hops=2} {to=10.0.0.1 hops=3}", "features=dba,both",
            "tagged=1,2,16", "uplink=1/2", "software=1.2.3", "onu=4/5/6", "ids=10,20,21",
            "counters=7,4294967295", "lease=1d1h1m1s", "temperature=-40", "module=77",
            "Place=Zürich"])
        shown = collections.defaultdict(list)
        for name, _, _, _, value in items_in(dissected(capture, script("--layout", layout))[0]):
            shown[name].append(value)
        of_head = (OF_EVERY_PACKET | OF_THE_REST) - {"module"}
        self.assertEqual(OF_LAYOUT, {name: values for name, values in shown.items()
                                     if name not in of_head and not name.startswith("reserved_")})


def main():
    global ARGUMENTS, FOLDER, SCRIPT
    parser = argparse.ArgumentParser()
    for name in ("tshark", "oltctl", "recorder", "every-operation", "built", "document"):
        parser.add_argument("--" + name, required=True)
    ARGUMENTS, rest = parser.parse_known_args()
    with tempfile.TemporaryDirectory() as FOLDER:
        SCRIPT = script()
        unittest.main(argv=[sys.argv[0], *rest])


if __name__ == "__main__":
    main()
