"""Captures of libolttrace as blocks."""
import struct

SECTION, INTERFACE, PACKET = 0x0A0D0D0A, 1, 6


def blocks_of(path):
    """Each whole block with its kind."""
    with open(path, "rb") as capture:
        data = capture.read()
    at = 0
    while at + 12 <= len(data):
        kind, length = struct.unpack_from("<II", data, at)
        if length > len(data) - at:
            return
        yield kind, data[at:at + length]
        at += length


def packets_of(path):
    """What a capture begins with, and the blocks of its packets."""
    head, packets = b"", []
    for kind, block in blocks_of(path):
        if kind == PACKET:
            packets.append(block)
        elif kind in (SECTION, INTERFACE):
            head += block
    return head, packets


def packet_in(block):
    captured = struct.unpack_from("<I", block, 20)[0]
    return block[28:28 + captured]
