#!/usr/bin/env python3
"""Measures the dissector in tshark: packets a second in long captures.

usage: bench/dissector.py BUILD [PACKETS [RUNS [WAY...]]]

Records three captures with the programs of BUILD, repeats their packets until there are PACKETS
(1000000), and prints the median of RUNS (3): thousands of packets for each second of processor
time, without that of the start. The floor is a dissector that adds one item to each packet. WAYs are
rows of the table, such as "filter by field"; without any, all are measured.
"""
import os
import pathlib
import resource
import statistics
import struct
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "capture"))
sys.dont_write_bytecode = True
from pcapng import packets_of

HEADER_AT = 28 + 12  # of a packet's block

# Some 120 bytes a packet.
SMALL = """\
get_olt_mac
get_vlan_all
set_port_enable --zero slot=1 port=1 port_enable=on
set_port_enable --zero slot=0 port=99 port_enable=on
get_user_level admin admin
add_user_level someone hidden-word 1 2
add_authallowed_mac_loid iface_a=1 iface_b=1 \
entries='mac=02:00:00:00:00:01 loid=site-17 password=secret;\
mac=00:11:22:33:44:55 loid=site-18 password=other'
"""

# Many records in a message, and pieces of a firmware update.
LARGE = """\
add_vlan_list vlans=%s
add_authallowed_mac_loid iface_a=1 iface_b=1 entries='%s'
""" % (",".join("%d-%d" % (vlan, vlan + 1) for vlan in range(100, 196, 3)),
       ";".join("mac=02:00:00:00:00:%02x loid=site-%d password=secret" % (i, i)
                for i in range(16))) + "".join(
    "do_handle_epon_updatestream request=%s\n" % struct.pack("<II4096x", 3 * 4096, i * 4096).hex()
    for i in range(3))

FLOOR = """\
local olt = Proto("olt", "One item")
function olt.dissector(tvb, info, root)
  root:add(olt, tvb())
  return tvb:len()
end
"""

WAYS = [
    ("list", []),
    ("filter by operation", ["-Y", 'oltmgmt.operation == "get_olt_mac"']),
    ("filter by field", ["-Y", "oltmgmt.vlan == 100"]),
    ("statistics of answers", ["-q", "-z", "io,stat,0,oltmgmt.time"]),
    ("two passes, filter by link", ["-2", "-q", "-z", "io,stat,0,oltmgmt.answer_in"]),
    ("three fields", ["-T", "fields", "-e", "oltmgmt.operation", "-e", "oltmgmt.time", "-e",
                      "oltmgmt.vlan"]),
    ("JSON of oltmgmt", ["-T", "json", "-J", "oltmgmt"]),
    ("JSON of all layers", ["-T", "json"]),
    ("all as text", ["-V"]),
]
FLOORS = [
    ("floor of a filter", ["-Y", "frame.number == 0"]),
    ("floor of JSON, one layer", ["-T", "json", "-J", "olt"]),
    ("floor of JSON, all layers", ["-T", "json"]),
]


def record(build, folder, name, command, text):
    """Returns the beginning of the capture and its packets."""
    folder = os.path.join(folder, name)
    os.mkdir(folder)
    capture = os.path.join(folder, "%p.pcapng")
    recorder = os.path.join(os.path.abspath(build), "capture", "libolttrace.so")
    # Some commands fail, as they do in the field.
    subprocess.run([os.path.join(build, *command[0].split("/")), *command[1:]], input=text.encode(),
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False,
                   env={**os.environ, "XDG_STATE_HOME": folder, "OLT_CAPTURE": capture,
                        "LD_PRELOAD": recorder})
    captures = list(pathlib.Path(folder).glob("*.pcapng"))
    if len(captures) != 1:
        sys.exit("bench/dissector.py: %s: no capture; expected a build with its tests" % build)
    return packets_of(captures[0])


def repeat(head, packets, target, count):
    """Writes that many packets; each repetition is a run of its own, a second later."""
    with open(target, "wb") as out:
        out.write(head)
        for i in range(count):
            second, place = divmod(i, len(packets))
            block = bytearray(packets[place])
            high, low = struct.unpack_from("<II", block, 12)
            at = (high << 32) + low + second * 10**9
            struct.pack_into("<II", block, 12, at >> 32, at & 0xFFFFFFFF)
            run = struct.unpack_from("<I", block, HEADER_AT + 8)[0]
            struct.pack_into("<I", block, HEADER_AT + 8, run + second)
            out.write(block)


def time_of(script, capture, options):
    """Processor time in seconds."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(["tshark", "-X", "lua_script:" + script, "-r", capture, *options], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def measure(script, ways, captures, packets, runs):
    for name, options in ways:
        row = "%-28s" % name
        for capture, short in captures:
            start = statistics.median(time_of(script, short, options) for _ in range(runs))
            whole = statistics.median(time_of(script, capture, options) for _ in range(runs))
            row += " %8.1f" % (packets / 1e3 / (whole - start))
        print(row, flush=True)


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    build = sys.argv[1]
    counts = sys.argv[2:4] + ["1000000", "3"][len(sys.argv[2:4]):]
    if not all(one.isdecimal() and int(one) > 0 for one in counts):
        sys.exit("bench/dissector.py: '%s' given for PACKETS and RUNS; expected two numbers above 0" %
                 " ".join(counts))
    packets, runs = map(int, counts)
    chosen = sys.argv[4:] or [name for name, _ in WAYS + FLOORS]
    unknown = set(chosen) - {name for name, _ in WAYS + FLOORS}
    if unknown:
        sys.exit("bench/dissector.py: no way '%s'; expected one of %s" %
                 (min(unknown), "; ".join(name for name, _ in WAYS + FLOORS)))
    with tempfile.TemporaryDirectory() as folder:
        script, floor = os.path.join(folder, "oltmgmt.lua"), os.path.join(folder, "floor.lua")
        subprocess.run([os.path.join(build, "cli", "oltctl"), "dissector", script], check=True)
        pathlib.Path(floor).write_text(FLOOR, encoding="ascii")
        session = ["cli/oltctl", "--yes", "--keep-going", "-f", "-"]
        sources = [record(build, folder, "small", session, SMALL),
                   record(build, folder, "large", session, LARGE),
                   record(build, folder, "every", ["tests/capture/every_operation"], "")]
        del sources[2][1][-2:]  # an exchange of 128 KiB that no operation makes
        captures = []
        for head, blocks in sources:
            paths = [os.path.join(folder, "%d-%s.pcapng" % (len(captures), length))
                     for length in ("long", "short")]
            repeat(head, blocks, paths[0], packets)
            repeat(head, blocks, paths[1], 2)
            captures.append(paths)
        print("%-28s %8s %8s %8s" % ("thousands of packets", "small", "large", "every"))
        print("%-28s" % "bytes a packet" + "".join(
            " %8d" % (sum(struct.unpack_from("<I", block, 20)[0] for block in blocks) / len(blocks))
            for _, blocks in sources))
        measure(script, [way for way in WAYS if way[0] in chosen], captures, packets, runs)
        measure(floor, [way for way in FLOORS if way[0] in chosen], captures, packets, runs)


if __name__ == "__main__":
    main()
