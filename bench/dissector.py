#!/usr/bin/env python3
"""Measures the dissector in tshark: packets a second on a capture, repeated until it is long.

usage: bench/dissector.py OLTCTL CAPTURE [PACKETS [RUNS]]

Prints the median of the runs, in thousands of packets a second: of processor time without that of
the start, and of time as the clock shows it.
"""
import os
import resource
import statistics
import struct
import subprocess
import sys
import tempfile
import time

HEADER_AT = 28 + 12  # of a packet's block

WAYS = [
    ("listing", []),
    ("filter by operation", ["-Y", 'oltmgmt.operation == "get_olt_mac"']),
    ("filter by field", ["-Y", "oltmgmt.vlan == 100"]),
    ("filter that all fit, statistics", ["-q", "-z", "io,stat,0,oltmgmt.time"]),
    ("two passes, filter by link", ["-2", "-q", "-z", "io,stat,0,oltmgmt.answer_in"]),
    ("three fields", ["-T", "fields", "-e", "oltmgmt.operation", "-e", "oltmgmt.time", "-e",
                      "oltmgmt.vlan"]),
    ("JSON", ["-T", "json", "-J", "oltmgmt"]),
    ("all as text", ["-V"]),
]


def blocks_of(path):
    with open(path, "rb") as capture:
        data = capture.read()
    at = 0
    while at + 12 <= len(data):
        kind, length = struct.unpack_from("<II", data, at)
        if length > len(data) - at:
            return
        yield kind, data[at:at + length]
        at += length


def repeat(source, target, count):
    """Writes that many packets; each repetition is a run of its own, a second later."""
    head, packets = b"", []
    for kind, block in blocks_of(source):
        if kind == 6:
            packets.append(block)
        elif kind in (0x0A0D0D0A, 1):
            head += block
    if not packets:
        sys.exit("bench/dissector.py: %s: no packets; expected a capture of libolttrace" % source)
    with open(target, "wb") as out:
        out.write(head)
        written = 0
        while written < count:
            second = written // len(packets)
            for block in packets[:count - written]:
                block = bytearray(block)
                high, low = struct.unpack_from("<II", block, 12)
                at = (high << 32) + low + second * 10**9
                struct.pack_into("<II", block, 12, at >> 32, at & 0xFFFFFFFF)
                run = struct.unpack_from("<I", block, HEADER_AT + 8)[0]
                struct.pack_into("<I", block, HEADER_AT + 8, run + second)
                out.write(block)
                written += 1


def run(script, capture, options):
    """Processor time and time, in seconds."""
    before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
    subprocess.run(["tshark", "-X", "lua_script:" + script, "-r", capture, *options], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    elapsed, after = time.monotonic() - start, resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, elapsed


def main():
    if not 3 <= len(sys.argv) <= 5:
        sys.exit(__doc__)
    oltctl, source = sys.argv[1:3]
    packets, runs = (int(one) for one in (sys.argv[3:] + ["1000000", "3"][len(sys.argv) - 3:]))
    with tempfile.TemporaryDirectory() as folder:
        script, capture, short = (os.path.join(folder, name)
                                  for name in ("oltmgmt.lua", "long.pcapng", "short.pcapng"))
        subprocess.run([oltctl, "dissector", script], check=True)
        repeat(source, capture, packets)
        repeat(source, short, 2)
        print("%d packets, %d MB" % (packets, os.path.getsize(capture) // 10**6))
        print("%-33s %10s %10s" % ("thousands of packets a second", "processor", "clock"))
        for name, options in WAYS:
            start = statistics.median(run(script, short, options)[0] for _ in range(runs))
            times = [run(script, capture, options) for _ in range(runs)]
            print("%-33s %10.0f %10.0f" % (
                name, packets / 1e3 / (statistics.median(one for one, _ in times) - start),
                packets / 1e3 / statistics.median(one for _, one in times)), flush=True)


if __name__ == "__main__":
    main()
