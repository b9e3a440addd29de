"""A device under attack, and what is watched meanwhile: its memory, its log, how long another client waits."""

import collections
import concurrent.futures
import multiprocessing
import os
import resource
import threading
import time

from orvo_device import Connection, Device

MIB = 1 << 20
MAX_KEPT = 16 * MIB
# So that an attack that works harms the device and not the machine.
MAX_ADDRESS_SPACE = 6 << 30
CONNECTIONS_PER_ADDRESS = 300
TOKEN = "the-token-of-this-device"


def watch_waiting(device, longest, begin):
    """Another client: a small request every 20 ms. `begin` is that of the one that waits, 0 between two."""
    connection = None
    while True:
        begin.value = begin.value or time.monotonic()
        try:
            connection = connection or device.connect()
            if connection.ask("GET", "/api/value?path=gateway:port").status == 200:
                longest.value = max(longest.value, time.monotonic() - begin.value)
                begin.value = 0
            else:
                connection = None
        except OSError:
            connection = None
        time.sleep(0.02)


class AttackedDevice(Device):
    """One device for one attack. watched_start() begins to measure, finish() ends the device."""

    def __init__(self, host, folder, few=False, limited=False, token=False):
        super().__init__(host, folder, ["--audio-sink", "null"], token=TOKEN if token else None)
        if limited:
            self.limits[resource.RLIMIT_AS] = MAX_ADDRESS_SPACE
        self.host = host
        self.few = few
        self.problems = []
        self.answers = collections.Counter()
        self.figures = dict.fromkeys(("s", "wait", "before", "most", "after", "log"), 0)
        self._bystander = None

    def count(self, many, few):
        return few if self.few else many

    def require(self, fine, problem):
        if not fine:
            self.problems.append(problem)

    def note(self, answer):
        """Counts an answer as '200', '422 AnswerTooLarge' or 'closed'."""
        name = str(answer.status or "closed")
        if answer.status >= 400:
            try:
                name += f" {answer.json()['error']['name']}"
            except (ValueError, KeyError):
                pass
        self.answers[name] += 1
        return answer

    def ready_client(self):
        self.start()
        client = self.connect()
        self.wait_for_scan(client)
        return client

    def watched_start(self, warm_up=None):
        """`warm_up` is asked for before: caches that fill by any reading are not what an attack took."""
        client = self.ready_client()
        if warm_up:
            client.ask("GET", warm_up)
        context = multiprocessing.get_context("fork")
        self._longest, self._waits_since = context.Value("d", 0), context.Value("d", 0)
        self._bystander = context.Process(target=watch_waiting, args=(self, self._longest, self._waits_since),
                                          daemon=True)
        self._bystander.start()
        until = time.monotonic() + 5
        while not self._longest.value and time.monotonic() < until:
            time.sleep(0.005)
        self.figures["before"] = self._memory("VmRSS")
        with open(f"/proc/{self.pid}/clear_refs", "w", encoding="ascii") as file:
            file.write("5")  # the peak begins anew
        self._log_begin = os.path.getsize(self.log)
        self._begin = time.monotonic()
        return client

    def finish(self):
        """Ends the device politely, if it was watched; waits a little for memory that it gives back."""
        if not self._bystander:
            return
        figures = self.figures
        now = time.monotonic()
        figures["s"] = now - self._begin
        figures["wait"] = max(self._longest.value, now - (self._waits_since.value or now))
        self._bystander.kill()
        self._bystander.join()
        self._bystander = None
        time.sleep(0.2)  # a process that dies is given the time for it
        figures["log"] = os.path.getsize(self.log) - self._log_begin
        if not self.alive():
            self.problems.append(f"the device has ended: {self.status()}")
            return
        figures["most"] = self._memory("VmHWM")
        until = time.monotonic() + 5
        while (kept := self._memory("VmRSS")) > figures["before"] + MAX_KEPT and time.monotonic() < until:
            time.sleep(0.1)
        figures["after"] = kept
        status = self.end()
        self.require(status == 0, f"told to end, the device ended with {status}")

    def _memory(self, name):
        with open(f"/proc/{self.pid}/status", encoding="ascii") as file:
            return next((int(line.split()[1]) * 1024 for line in file if line.startswith(name + ":")), 0)

    def processor_seconds(self):
        with open(f"/proc/{self.pid}/stat", encoding="ascii") as file:
            return sum(map(int, file.read().rsplit(")", 1)[1].split()[11:13])) / os.sysconf("SC_CLK_TCK")

    def log_text(self):
        with open(self.log, encoding="utf-8", errors="replace") as file:
            return file.read()

    def stranger(self, number=0):
        """A connection from another address than other clients have."""
        return Connection(self.port, address=f"127.0.0.{2 + number // CONNECTIONS_PER_ADDRESS}")

    def exchange(self, requests):
        """Counts what strangers are answered who send these, each over a connection of its own: none sends its last
        byte before the others are so far."""
        together = threading.Barrier(len(requests))

        def ask(number, request):
            connection = self.stranger(number)
            connection.try_send(request[:-1])
            together.wait(60)
            connection.try_send(request[-1:])
            answer = connection.receive()
            connection.close()
            return answer

        with concurrent.futures.ThreadPoolExecutor(len(requests)) as pool:
            for answer in pool.map(ask, range(len(requests)), map(memoryview, requests)):
                self.note(answer)
