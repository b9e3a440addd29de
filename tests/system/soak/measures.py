"""What is measured of a running host, and the figures made of it."""

import os
import time

PAGE = os.sysconf("SC_PAGE_SIZE")


class Samples:
    """Resident memory and open descriptors of a process, once a second."""

    def __init__(self, pid):
        self._pid = pid
        self._begin = time.monotonic()
        self.rows = []  # (seconds, bytes, descriptors)

    def take(self):
        with open(f"/proc/{self._pid}/statm", encoding="ascii") as file:
            memory = int(file.read().split()[1]) * PAGE
        descriptors = len(os.listdir(f"/proc/{self._pid}/fd"))
        self.rows.append((time.monotonic() - self._begin, memory, descriptors))

    def after(self, seconds):
        return [row for row in self.rows if row[0] >= seconds]


def slope(points):
    """Of the straight line with the least squares of distances, per unit of x."""
    mean_x = sum(x for x, _ in points) / len(points)
    mean_y = sum(y for _, y in points) / len(points)
    spread = sum((x - mean_x) ** 2 for x, _ in points)
    return sum((x - mean_x) * (y - mean_y) for x, y in points) / spread if spread else 0.0


def percentile(values, share):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(share * len(ordered)))] if ordered else 0.0
