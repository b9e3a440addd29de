"""Clients that edit what others edit, too: a command may be refused, and nothing else."""

import random
import threading
import time

from orvo_device import external_item

# A command's refusal; a list that another client has just deleted.
REFUSED = (422, 404)
# The store must not grow, or memory would grow with it.
MOST_TRACKS = 300
MOST_COLLECTIONS = 8


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

    def _collection(self, clid, plid):
        path, value = self._rng.choice([
            ("cl/create", {"name": f"shelf {self._rng.randrange(99)}"}),
            ("cl/addItem", {"clid": clid, "plid": plid}),
            ("cl/removeItem", {"clid": clid, "plid": plid}), ("cl/delete", {"clid": clid})])
        answer = self._command("playlists:" + path, value)
        if path == "cl/create" and answer.result() > MOST_COLLECTIONS:
            self._command("playlists:cl/delete", {"clid": answer.result()})

    def _step(self):
        rng = self._rng
        lists = self._lists()
        plid, other = rng.choice(lists), rng.choice(lists)
        size = self._size(plid)
        some = lambda: rng.sample(range(size), min(size, rng.randint(1, 5)))
        choice = rng.random()
        if len(lists) < 8 and choice < 0.3:
            self._made += 1
            self._command("playlists:pl/create", {"name": f"{self._number} ♪ {self._made}"})
        elif len(lists) > 20:
            self._command("playlists:pl/delete", {"plid": max(lists)})
        elif size > MOST_TRACKS:
            self._command("playlists:pl/removeItems", {"plid": plid, "items": list(range(150))})
        elif choice < 0.35:
            items = [external_item(rng.randrange(10000), self._silence_url)
                     for _ in range(rng.randint(1, 20))]
            self._command("playlists:pl/addExternalItems",
                          {"plid": plid, "items": items, "mode": rng.randint(0 if choice < 0.1 else 1, 2)})
        elif choice < 0.42:
            self._command("playlists:pl/addItems",
                          {"plid": plid, "mode": 1,
                           "items": [f"files:tree/{rng.randint(1, 6):02}%20silence.wav"]})
        elif choice < 0.55 and size:
            self._command("playlists:pl/moveItems",
                          {"plid": plid, "items": some(), "to": rng.randrange(size)})
        elif choice < 0.65 and size:
            self._command("playlists:pl/removeItems", {"plid": plid, "items": some()})
        elif choice < 0.70:
            self._command("playlists:pl/setShuffle", {"plid": plid, "mode": rng.randint(0, 1)})
            self._command("playlists:pl/setRepeat", {"plid": plid, "mode": rng.choice([0, 2])})
        elif choice < 0.74:
            self._command("playlists:pl/setName", {"plid": plid, "name": f"renamed {rng.randrange(99)}"})
        elif choice < 0.76:
            self._command("playlists:pl/addItems", {"plid": other, "fromPlid": plid})
        elif choice < 0.77:
            self._command("playlists:pl/clear", {"plid": plid})
        elif choice < 0.83:
            self._collection(rng.randint(1, MOST_COLLECTIONS), plid)
        elif choice < 0.87:
            self._command("playlists:pl/play", {"plid": plid})
        elif choice < 0.92:
            self._command(rng.choice(["player:next", "player:previous", "player:pause",
                                      "player:resume"]), {})
        else:
            self._ask("GET", f"/api/rows?path=playlists:pl/context%3Fplid%3D{plid}")
