"""Clients that edit what others edit, too: a command may be refused, and nothing else."""

import random
import threading
import time

from orvo_device import external_item

# A command's refusal; a list that another client has just deleted.
REFUSED = (422, 404)
# The store must not grow, or memory would grow with it.
MAX_TRACKS = 300
MAX_COLLECTIONS = 8
MAX_LISTS = 20  # of all clients together; each makes none where there are enough
ENOUGH_LISTS = 8


class Client(threading.Thread):
    """One connection with commands at random times, about four in a second."""

    def __init__(self, device, number, seed, silence_url, end):
        super().__init__(daemon=True)
        self._rng = random.Random(f"{seed} {number}")
        self._connection = device.connect()
        self._number = number
        self._silence_url = silence_url
        self._end = end
        self._made = 0
        self.answered = []  # seconds
        self.refused = 0
        self.errors = []

    def run(self):
        try:
            while not self._end.is_set():
                time.sleep(self._rng.expovariate(4))
                self._step()
        except Exception as error:  # pylint: disable=broad-except
            self.errors.append(repr(error))

    def _ask(self, method, target, body=None):
        begin = time.perf_counter()
        answer = self._connection.ask(method, target, body)
        self.answered.append(time.perf_counter() - begin)
        if answer.status in REFUSED:
            self.refused += 1
        elif answer.status != 200:
            self.errors.append(f"{method} {target} {str(body)[:200]}: {answer.status}"
                               f" {answer.body[:200]!r}")
        return answer

    def _command(self, path, value):
        return self._ask("POST", "/api/data", {"path": path, "value": value})

    def _lists(self):
        rows = self._ask("GET", "/api/rows?path=playlists:pl/list&roles=path").json()["rows"]
        return [0] + [int(row["path"].rsplit("/", 1)[1]) for row in rows if "items/" in row["path"]]

    def _size(self, plid):
        path = f"playlists:pl/items/{plid}" if plid else "playlists:pq/items"
        answer = self._ask("GET", f"/api/rows?path={path}&from=0&to=49&roles=title,path,type")
        return answer.json().get("rowsCount", 0) if answer.status == 200 else 0

    def _step(self):
        lists = self._lists()
        plid = self._rng.choice(lists)
        size = self._size(plid)
        if len(lists) > MAX_LISTS:
            self._command("playlists:pl/delete", {"plid": max(lists)})
        elif size > MAX_TRACKS:
            self._command("playlists:pl/removeItems", {"plid": plid, "items": list(range(150))})
        else:
            weights, steps = zip(*STEPS)
            self._rng.choices(steps, weights)[0](self, plid, size, lists)

    def _some(self, size):
        return self._rng.sample(range(size), min(size, self._rng.randint(1, 5)))

    def _create(self, plid, size, lists):
        if len(lists) >= ENOUGH_LISTS:
            self._add_external(plid, size, lists)
            return
        self._made += 1
        self._command("playlists:pl/create", {"name": f"{self._number} ♪ {self._made}"})

    def _add_external(self, plid, _size, _lists):
        items = [external_item(self._rng.randrange(10000), self._silence_url)
                 for _ in range(self._rng.randint(1, 20))]
        mode = self._rng.choices((0, 1, 2), (2, 9, 9))[0]
        self._command("playlists:pl/addExternalItems", {"plid": plid, "items": items, "mode": mode})

    def _add_file(self, plid, _size, _lists):
        path = f"files:tree/{self._rng.randint(1, 6):02}%20silence.wav"
        self._command("playlists:pl/addItems", {"plid": plid, "mode": 1, "items": [path]})

    def _move(self, plid, size, _lists):
        if size:
            self._command("playlists:pl/moveItems",
                          {"plid": plid, "items": self._some(size), "to": self._rng.randrange(size)})

    def _remove(self, plid, size, _lists):
        if size:
            self._command("playlists:pl/removeItems", {"plid": plid, "items": self._some(size)})

    def _set_modes(self, plid, _size, _lists):
        self._command("playlists:pl/setShuffle", {"plid": plid, "mode": self._rng.randint(0, 1)})
        self._command("playlists:pl/setRepeat", {"plid": plid, "mode": self._rng.choice([0, 2])})

    def _rename(self, plid, _size, _lists):
        self._command("playlists:pl/setName", {"plid": plid, "name": f"renamed {self._rng.randrange(99)}"})

    def _merge(self, plid, _size, lists):
        self._command("playlists:pl/addItems", {"plid": self._rng.choice(lists), "fromPlid": plid})

    def _clear(self, plid, _size, _lists):
        self._command("playlists:pl/clear", {"plid": plid})

    def _edit_collection(self, plid, _size, _lists):
        clid = self._rng.randint(1, MAX_COLLECTIONS)
        path, value = self._rng.choice([
            ("cl/create", {"name": f"shelf {self._rng.randrange(99)}"}),
            ("cl/addItem", {"clid": clid, "plid": plid}),
            ("cl/removeItem", {"clid": clid, "plid": plid}), ("cl/delete", {"clid": clid})])
        answer = self._command("playlists:" + path, value)
        if path == "cl/create" and answer.result() > MAX_COLLECTIONS:
            self._command("playlists:cl/delete", {"clid": answer.result()})

    def _play(self, plid, _size, _lists):
        self._command("playlists:pl/play", {"plid": plid})

    def _steer(self, _plid, _size, _lists):
        self._command(self._rng.choice(["player:next", "player:previous", "player:pause", "player:resume"]), {})

    def _read_menu(self, plid, _size, _lists):
        self._ask("GET", f"/api/rows?path=playlists:pl/context%3Fplid%3D{plid}")


# Of a hundred.
STEPS = (
    (30, Client._create), (5, Client._add_external), (7, Client._add_file), (13, Client._move), (10, Client._remove),
    (5, Client._set_modes), (4, Client._rename), (2, Client._merge), (1, Client._clear),
    (6, Client._edit_collection), (4, Client._play), (5, Client._steer), (8, Client._read_menu))
