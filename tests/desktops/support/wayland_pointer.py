"""A pointer for a Wayland compositor without one, by the protocol wlr-virtual-pointer-unstable-v1. It is there as long as
this object: clients that are to feel it have to know of it before."""

import socket
import struct
import time

DISPLAY, REGISTRY, MANAGER, POINTER = 1, 2, 3, 4  # Objects by their number, which the client gives them.
GET_REGISTRY, BIND, CREATE_POINTER = 1, 0, 0      # Requests by their place in the protocol.
MOTION_ABSOLUTE, BUTTON, FRAME = 1, 2, 4
BUTTONS = {1: 0x110, 2: 0x112, 3: 0x111}          # As linux/input-event-codes.h has them.
INTERFACE = b"zwlr_virtual_pointer_manager_v1\0"


def _now():
    """In milliseconds: programs tell a double click by it."""
    return time.monotonic_ns() // 1_000_000 & 0xffffffff


class WaylandPointer:
    def __init__(self, path):
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.settimeout(10)
        self._socket.connect(str(path))
        self._send(DISPLAY, GET_REGISTRY, struct.pack("=I", REGISTRY))
        name = self._announced()
        self._send(REGISTRY, BIND, struct.pack("=II", name, len(INTERFACE)) + INTERFACE + bytes(-len(INTERFACE) % 4)
                   + struct.pack("=II", 1, MANAGER))
        self._send(MANAGER, CREATE_POINTER, struct.pack("=II", 0, POINTER))

    def _send(self, target, request, arguments=b""):
        self._socket.sendall(struct.pack("=IHH", target, request, 8 + len(arguments)) + arguments)

    def _announced(self):
        """The number under which the compositor offers such pointers."""
        received = b""
        while True:
            received += self._socket.recv(4096)
            while len(received) >= 8 and len(received) >= (size := struct.unpack("=H", received[6:8])[0]):
                event, received = received[:size], received[size:]
                if event[16:16 + len(INTERFACE)] == INTERFACE:
                    return struct.unpack("=I", event[8:12])[0]

    def move(self, x, y, width, height):
        self._send(POINTER, MOTION_ABSOLUTE, struct.pack("=IIIII", _now(), x, y, width, height))
        self._send(POINTER, FRAME)

    def press(self, button, is_down):
        self._send(POINTER, BUTTON, struct.pack("=III", _now(), BUTTONS[button], is_down))
        self._send(POINTER, FRAME)

    def close(self):
        self._socket.close()
