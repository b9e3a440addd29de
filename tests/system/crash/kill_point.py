"""The test's end of KillAt.cpp: at which operation on the store's files the host ends."""

import mmap
import struct


class KillPoint:
    LAYOUT = struct.Struct("iii")  # done, count, torn

    def __init__(self, library, file):
        with open(file, "wb") as out:
            out.write(bytes(self.LAYOUT.size))
        with open(file, "r+b") as shared:
            self._memory = mmap.mmap(shared.fileno(), self.LAYOUT.size)
        self.environment = {"LD_PRELOAD": library, "ORVO_KILL_AT": file}

    def done(self):
        """How many operations there were so far."""
        return self.LAYOUT.unpack(self._memory)[0]

    def arm(self, count, torn):
        """The host ends at the `count`-th operation from now on; torn: a write by half."""
        self._memory[4:12] = struct.pack("ii", count, torn)

    def reached(self):
        """Whether the host has ended there (or is about to)."""
        return self.LAYOUT.unpack(self._memory)[1] == 0

    def disarm(self):
        self.arm(0, False)
