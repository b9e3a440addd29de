"""A random mix of all commands, each with the states that the model lets the file pass through."""

from dataclasses import dataclass

import model
from orvo_device import external_item

NOW, AFTER_CURRENT, APPEND = 0, 1, 2
OK, OUTDATED, REFUSED = 200, 409, 422

# What the random state may grow to; beyond it only what makes it smaller is sent.
MAX_ITEMS = 1500
MAX_LISTS = 12

# Edits that hold for one state of a list or give tracks their places: the crash test sees to it that
# enough kills fall into these.
SEVERAL, ORDER, AT, AT_PATHS = "moveItems of several", "setOrder", "addExternalItems at", "addItems at"
PLACED = (SEVERAL, ORDER, AT, AT_PATHS)
WITH_REVISION = " with revision"
REVISABLE = ("removeItems", "moveItems", "clear", "delete", "addExternalItems", "addItems", *PLACED)


def is_placed(name):
    return name in PLACED or name.endswith(WITH_REVISION)


@dataclass
class Request:
    """One request of a command. `reached` is the index of the state that its answer promises."""

    method: str
    target: str
    body: dict
    reached: int
    status: int = OK
    revision_of: int = None  # the list whose present revision the command is to name


@dataclass
class Command:
    name: str
    requests: list
    states: list  # from before the command to after it
    creates: int = 0  # the id that the answer must name


def data(path, value, reached, status=OK):
    return Request("POST", "/api/data", {"path": path, "value": value}, reached, status)


def single(name, path, value, states, creates=0):
    return Command(name, [data("playlists:" + path, value, len(states) - 1)], states, creates)


class Mix:
    """Draws commands that fit the state. `files` are the paths of the music folder's tracks with
    their titles; `tracks` learns the stored fields of every track that is sent."""

    def __init__(self, rng, files, silence_url, tracks):
        self._rng = rng
        self._files = files
        self._silence_url = silence_url
        self._tracks = tracks
        self._number = 0
        self._table = [
            (4, self._create), (3, self._rename), (2, self._shuffle), (2, self._repeat),
            (2, self._delete), (2, self._clear), (7, self._remove_items), (9, self._move_items), (6, self._set_order),
            (9, self._add_external), (6, self._add_at), (2, self._add_files_at), (4, self._add_files),
            (4, self._add_entries), (3, self._merge), (2, self._play), (1, self._prepare), (2, self._create_collection),
            (1, self._delete_collection), (4, self._add_member), (2, self._remove_member),
            (1, self._refused), (1, self._outdated), (1, self._vacuum)]
        self._placed = [(3, self._move_several), (3, self._set_order), (3, self._add_at), (1, self._add_files_at),
                        (3, self._revisable)]
        self._shrinking = [(2, self._delete), (2, self._clear), (4, self._remove_items)]

    def file_paths(self):
        return [path for path, _ in self._files]

    def name_files(self, titles):
        """In place of those that were given: the files module may know them by others."""
        self._files = list(zip(self.file_paths(), titles))

    def draw(self, state):
        full = len(state.items()) > MAX_ITEMS
        command = self._draw_of(self._shrinking if full else self._table, state)
        return self._with_revision(command) if self._rng.random() < 0.2 else command

    def draw_placed(self, state):
        """One of those that is_placed() names."""
        while True:
            command = self._draw_of(self._placed, state)
            if is_placed(command.name):
                return command

    def _draw_of(self, table, state):
        while True:
            make = self._rng.choices([row[1] for row in table], [row[0] for row in table])[0]
            command = make(state)
            if command:
                return command

    def _with_revision(self, command):
        """The same edit, for the present state of its list alone."""
        request = command.requests[0]
        if command.name in REVISABLE:
            request.revision_of = request.body["value"]["plid"]
            command.name += WITH_REVISION
        return command

    def _revisable(self, state):
        return self._with_revision(self.draw(state))

    def _name(self, kind):
        self._number += 1
        word = self._rng.choice(["Ä", "b", 'C "x"', "♪", kind])
        return f"{word} {self._number}"

    def _list(self, state, with_queue=True, with_entries=False):
        fitting = [uid for uid, pl in state.lists.items()
                   if (with_queue or uid) and (pl.entries or not with_entries)]
        return self._rng.choice(fitting) if fitting else None

    def _positions(self, state, uid, most):
        size = len(state.lists[uid].entries)
        return self._rng.sample(range(size), self._rng.randint(1, min(size, most)))

    def _create(self, state):
        if len(state.lists) > MAX_LISTS:
            return None
        name = self._name("list")
        uid = model.next_uid(state.lists)
        return single("create", "pl/create", {"name": name}, model.create(state, name), uid)

    def _rename(self, state):
        uid = self._list(state, with_queue=False)
        if uid is None:
            return None
        name = self._name("named")
        return single("setName", "pl/setName", {"plid": uid, "name": name},
                      model.set_field(state, uid, name=name))

    def _shuffle(self, state):
        uid, on = self._list(state), self._rng.random() < 0.5
        return single("setShuffle", "pl/setShuffle", {"plid": uid, "mode": 1 if on else 0},
                      model.set_field(state, uid, shuffle=on))

    def _repeat(self, state):
        uid, mode = self._list(state), self._rng.randint(0, 3)
        return single("setRepeat", "pl/setRepeat", {"plid": uid, "mode": mode},
                      model.set_field(state, uid, repeat=mode == 2))

    def _delete(self, state):
        uid = self._list(state, with_queue=False)
        if uid is None:
            return None
        return single("delete", "pl/delete", {"plid": uid}, model.delete(state, uid))

    def _clear(self, state):
        uid = self._list(state)
        return single("clear", "pl/clear", {"plid": uid}, model.clear(state, uid))

    def _remove_items(self, state):
        uid = self._list(state, with_entries=True)
        if uid is None:
            return None
        positions = self._positions(state, uid, 60)
        return single("removeItems", "pl/removeItems", {"plid": uid, "items": positions},
                      model.remove_items(state, uid, positions))

    def _move_items(self, state):
        uid = self._list(state, with_entries=True)
        if uid is None:
            return None
        positions = self._positions(state, uid, 8)
        to = self._rng.randrange(len(state.lists[uid].entries))
        moves = model.moves_of(positions, to)
        return single(SEVERAL if len(moves) > 1 else "moveItems", "pl/moveItems",
                      {"plid": uid, "items": positions, "to": to},
                      model.move_items(state, uid, positions, to))

    def _move_several(self, state):
        command = self._move_items(state)
        return command if command and command.name == SEVERAL else None

    def _set_order(self, state):
        uid = self._list(state, with_entries=True)
        if uid is None:
            return None
        order = list(range(len(state.lists[uid].entries)))
        self._rng.shuffle(order)
        return single(ORDER, "pl/setOrder", {"plid": uid, "order": order},
                      model.set_order(state, uid, order))

    def _added(self, name, path, value, uid, mode, states):
        """An add; "now" also plays the first new track, and is stopped again at once, so that the
        last played number does not go on by itself."""
        value = {"plid": uid, **value}
        if mode != APPEND or self._rng.random() < 0.5:
            value["mode"] = mode
        command = single(name, path, value, states)
        if mode == NOW:
            # Where the command was sent, a merge into itself or of the source included.
            place = model.place_of_new(states[0].lists[uid], mode)
            states.append(states[-1].changed(uid, last=place))
            command.requests.append(data("player:stop", {}, len(states) - 1))
        return command

    def _mode(self):
        return self._rng.choice([NOW, AFTER_CURRENT, AFTER_CURRENT, APPEND, APPEND])

    def _external_items(self):
        items = []
        for _ in range(self._rng.choice([1, 3, 10, 40, 150])):
            self._number += 1
            item = external_item(self._number, self._silence_url)
            self._tracks[item["title"]] = item
            items.append(item)
        return items

    def _at(self, size, count):
        """The argument "at", and the places that it means."""
        if self._rng.random() < 0.5:
            at = self._rng.randint(0, size)
            return at, [at + i for i in range(count)]
        places = sorted(self._rng.sample(range(size + count), count))
        return places, places

    def _add_at(self, state):
        uid, items = self._list(state), self._external_items()
        at, places = self._at(len(state.lists[uid].entries), len(items))
        return single(AT, "pl/addExternalItems", {"plid": uid, "items": items, "at": at},
                      model.add_items_at(state, uid, [item["title"] for item in items], places))

    def _add_files_at(self, state):
        uid = self._list(state)
        chosen = self._rng.sample(self._files, self._rng.randint(1, len(self._files)))
        at, places = self._at(len(state.lists[uid].entries), len(chosen))
        return single(AT_PATHS, "pl/addItems",
                      {"plid": uid, "items": [path for path, _ in chosen], "at": at},
                      model.add_items_at(state, uid, [title for _, title in chosen], places))

    def _add_external(self, state):
        uid, mode = self._list(state), self._mode()
        items = self._external_items()
        titles = [item["title"] for item in items]
        return self._added("addExternalItems", "pl/addExternalItems", {"items": items}, uid, mode,
                           model.add_items(state, uid, titles, mode))

    def _add_files(self, state):
        uid, mode = self._list(state), self._mode()
        chosen = self._rng.sample(self._files, self._rng.randint(1, len(self._files)))
        return self._added("addItems", "pl/addItems", {"items": [path for path, _ in chosen]},
                           uid, mode,
                           model.add_items(state, uid, [title for _, title in chosen], mode))

    def _add_entries(self, state):
        """Entries of a playlist, copied to another."""
        source = self._list(state, with_entries=True)
        if source is None:
            return None
        uid, mode = self._list(state), self._mode()
        entries = [state.lists[source].entries[i] for i in self._positions(state, source, 20)]
        return self._added("addItems of entries", "pl/addItems",
                           {"items": [f"playlists:item/{item}" for item, _ in entries]}, uid, mode,
                           model.add_items(state, uid, [title for _, title in entries], mode))

    def _merge(self, state):
        source = self._list(state, with_entries=True)
        if source is None:
            return None
        uid, mode = self._list(state), self._mode()
        return self._added("merge", "pl/addItems", {"fromPlid": source}, uid, mode,
                           model.merge(state, source, uid, mode))

    def _play(self, state):
        uid = self._list(state, with_entries=True)
        if uid is None:
            return None
        return Command("play", [data("playlists:pl/play", {"plid": uid}, 0),
                                data("player:stop", {}, 1)],
                       [state, state.changed(uid, last=0)])

    def _prepare(self, state):
        items = sorted(state.items())[:5]
        return single("prepareItems", "prepareItems", [f"playlists:item/{uid}" for uid in items],
                      [state]) if items else None

    def _create_collection(self, state):
        if len(state.collections) > MAX_LISTS:
            return None
        name = self._name("collection")
        uid = model.next_uid(state.collections)
        return single("create collection", "cl/create", {"name": name},
                      model.create_collection(state, name), uid)

    def _collection(self, state, fits=lambda collection: True):
        fitting = [uid for uid, collection in state.collections.items() if fits(collection)]
        return self._rng.choice(fitting) if fitting else None

    def _delete_collection(self, state):
        uid = self._collection(state)
        if uid is None:
            return None
        return single("delete collection", "cl/delete", {"clid": uid},
                      model.delete_collection(state, uid))

    def _add_member(self, state):
        plid = self._list(state)
        clid = self._collection(state, lambda collection: plid not in collection.members)
        if clid is None:
            return None
        return single("add to collection", "cl/addItem", {"clid": clid, "plid": plid},
                      model.set_member(state, clid, plid, True))

    def _remove_member(self, state):
        clid = self._collection(state, lambda collection: collection.members)
        if clid is None:
            return None
        plid = self._rng.choice(sorted(state.collections[clid].members))
        return single("remove from collection", "cl/removeItem", {"clid": clid, "plid": plid},
                      model.set_member(state, clid, plid, False))

    def _refused(self, state):
        path, value = self._rng.choice([
            ("pl/create", {"name": ""}), ("pl/delete", {"plid": 0}), ("pl/clear", {"plid": 99999}),
            ("pl/removeItems", {"plid": 0, "items": [0, 99999]}),
            ("pl/addExternalItems", {"plid": 0, "items": [{"orvoRoles": '{"type":1}'}]}),
            ("cl/addItem", {"clid": 99999, "plid": 0})])
        return Command("refused", [data("playlists:" + path, value, 0, REFUSED)], [state])

    def _outdated(self, state):
        """An edit made for another state of the list than the present one."""
        uid = self._list(state)
        path, value = self._rng.choice([
            ("clear", {}), ("removeItems", {"items": [0]}), ("setOrder", {"order": []}),
            ("moveItems", {"items": [0, 1], "to": 0}),
            ("addExternalItems", {"items": [external_item(0, self._silence_url)], "at": 0})])
        return Command("outdated", [data("playlists:pl/" + path,
                                         {"plid": uid, "revision": 1, **value}, 0, OUTDATED)],
                       [state])

    def _vacuum(self, state):
        """The power manager's step that lets an owed VACUUM run."""
        put = lambda target: Request("PUT", "/api/value",
                                     {"path": "powermanager:target", "value": target}, 0)
        return Command("vacuum", [put(1), put(2)], [state])
