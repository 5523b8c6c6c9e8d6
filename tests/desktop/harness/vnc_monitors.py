#!/usr/bin/python3
"""Gives a running Xvnc exactly these monitors, as outputs VNC-0, VNC-1, ... in this order.

vnc_monitors.py RFB-SOCKET WIDTHxHEIGHT+X+Y...

An output keeps its number while it stays in the list; one that fell out is disconnected, as if
unplugged. Ends with 0 when the server has agreed; the RandR events go on for about a quarter of a
second.
"""
import itertools
import re
import socket
import struct
import sys

RAW, DESKTOP_SIZE, EXTENDED_DESKTOP_SIZE = 0, -223, -308  # encodings of RFB 3.8
THIS_CLIENT = 1  # a reason for a change


class Client:
    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(5)
        self.socket.connect(path)
        self.file = self.socket.makefile("rb")

    def read(self, layout):
        return struct.unpack(">" + layout, self.file.read(struct.calcsize(">" + layout)))

    def send(self, layout, *values):
        self.socket.sendall(struct.pack(">" + layout, *values))

    def handshake(self):
        self.socket.sendall(self.file.read(12))  # the version
        self.file.read(*self.read("B"))  # the security types on offer
        self.send("B", 1)  # none
        if self.read("I") != (0,):
            sys.exit("the RFB server wants a password")
        self.send("B", 1)  # shared
        self.bytes_per_pixel = self.read("4xB15x")[0] // 8
        self.file.read(*self.read("I"))  # the desktop's name
        self.send("BxHiii", 2, 3, RAW, EXTENDED_DESKTOP_SIZE, DESKTOP_SIZE)

    def request(self, incremental):
        self.send("BBHHHH", 3, incremental, 0, 0, 1, 1)

    def layouts(self):
        """The reason, the status and the ids of the screens, each time that the server tells them."""
        while True:
            kind, = self.read("B")
            if kind == 1:  # SetColourMapEntries
                self.file.read(6 * self.read("3xH")[0])
            elif kind == 3:  # ServerCutText
                self.file.read(*self.read("3xI"))
            elif kind == 0:
                for _ in range(*self.read("xH")):
                    x, y, width, height, encoding = self.read("HHHHi")
                    if encoding == RAW:
                        self.file.read(width * height * self.bytes_per_pixel)
                    elif encoding == EXTENDED_DESKTOP_SIZE:
                        yield x, y, [self.read("I12x")[0] for _ in range(*self.read("B3x"))]


def main(path, *wanted):
    monitors = [tuple(map(int, re.findall(r"\d+", text))) for text in wanted]
    client = Client(path)
    client.handshake()
    layouts = client.layouts()
    client.request(False)
    ids = next(layouts)[2]
    # An invented one may be that of a monitor which is still there.
    ids += itertools.islice((new for new in itertools.count(1000) if new not in ids), len(monitors))
    client.send("BxHHBx", 251, max(x + width for width, _, x, _ in monitors),
                max(y + height for _, height, _, y in monitors), len(monitors))
    for number, (width, height, x, y) in zip(ids, monitors):
        client.send("IHHHHI", number, x, y, width, height, 0)
    client.request(True)
    status = next(status for reason, status, _ in layouts if reason == THIS_CLIENT)
    sys.exit(f"status {status}" if status else 0)


main(*sys.argv[1:])
