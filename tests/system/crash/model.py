"""The plain model that a killed device is compared with.

A State is what the file holds. For every command the model gives the states that the file passes
through: one per transaction, from the state before the command to the one that is acknowledged. A
device that is killed in the middle of a command must be found in one of exactly these.
"""

from dataclasses import dataclass, field, replace

QUEUE = 0


@dataclass(frozen=True)
class PlayList:
    name: str
    shuffle: bool = False
    repeat: bool = False
    last: int = -1  # the last played entry's number
    entries: tuple = ()  # (uid of the item, title)


@dataclass(frozen=True)
class Collection:
    name: str
    members: frozenset = frozenset()


@dataclass(frozen=True)
class State:
    lists: dict = field(default_factory=lambda: {QUEUE: PlayList("PlayQueue")})
    collections: dict = field(default_factory=dict)  # in the order in which the device has them
    unused: frozenset = frozenset()  # items that no entry refers to

    def changed(self, uid, **changes):
        return replace(self, lists={**self.lists, uid: replace(self.lists[uid], **changes)})

    def changed_collection(self, uid, members):
        new = replace(self.collections[uid], members=frozenset(members))
        return replace(self, collections={**self.collections, uid: new})

    def items(self):
        """The uids of all items."""
        return {uid for pl in self.lists.values() for uid, _ in pl.entries} | self.unused

    def new_items(self, titles):
        """Entries for these tracks, with the uids that SQLite will give them."""
        first = max(self.items(), default=0) + 1
        return tuple((first + i, title) for i, title in enumerate(titles))


def next_uid(rows):
    return max([0, *rows]) + 1


def create(state, name):
    new = {**state.lists, next_uid(state.lists): PlayList(name)}
    return [state, replace(state, lists=new)]


def set_field(state, uid, **changes):
    return [state, state.changed(uid, **changes)]


def delete(state, uid):
    """Each membership goes by itself, in the order of the collections, then the playlist with its
    entries and items."""
    states = [state]
    for clid, collection in state.collections.items():
        if uid in collection.members:
            states.append(states[-1].changed_collection(clid, collection.members - {uid}))
    lists = {other: pl for other, pl in states[-1].lists.items() if other != uid}
    states.append(replace(states[-1], lists=lists, unused=frozenset()))
    return states


def clear(state, uid):
    """The entries go first, their items after them."""
    entries = state.lists[uid].entries
    if not entries:
        return [state]
    emptied = replace(state.changed(uid, entries=()),
                      unused=state.unused | {item for item, _ in entries})
    return [state, emptied, replace(emptied, unused=frozenset())]


def remove_items(state, uid, indices):
    """The entries and their items go together, then the last played number follows."""
    pl = state.lists[uid]
    left = tuple(e for i, e in enumerate(pl.entries) if i not in set(indices))
    states = [state, replace(state.changed(uid, entries=left), unused=frozenset())]
    before = sum(1 for i in indices if i < pl.last)
    if before:
        states.append(states[-1].changed(uid, last=pl.last - before))
    return states


def move_item(state, uid, source, target):
    """One entry moves, then the last played number follows."""
    if source == target:
        return [state]
    pl = state.lists[uid]
    entries = list(pl.entries)
    entries.insert(target, entries.pop(source))
    moved = state.changed(uid, entries=tuple(entries))
    if target <= pl.last < source:
        last = pl.last + 1
    elif pl.last == source:
        last = target
    elif source < pl.last <= target:
        last = pl.last - 1
    else:
        return [state, moved]
    return [state, moved, moved.changed(uid, last=last)]


def moves_of(indices, target):
    """The moves of one each: those from before the target, then those from behind it."""
    indices = sorted(set(indices))
    front = [i for i in indices if i <= target]
    behind = [i for i in indices if i > target]
    moves = [(i - moved, target) for moved, i in enumerate(front)]
    moves += [(i, target + k + (1 if front else 0)) for k, i in enumerate(behind)]
    return [(source, place) for source, place in moves if source != place]


def move_items(state, uid, indices, target):
    """One alone moves by itself. Several move together with the last played number, as if one moved
    after the other."""
    moves = moves_of(indices, target)
    if len(moves) == 1:
        return move_item(state, uid, *moves[0])
    moved = state
    for source, place in moves:
        moved = move_item(moved, uid, source, place)[-1]
    return [state, moved] if moves else [state]


def set_order(state, uid, order):
    """All at once, with the last played number."""
    pl = state.lists[uid]
    entries = tuple(pl.entries[i] for i in order)
    last = order.index(pl.last) if pl.last in order else pl.last
    if entries == pl.entries:
        return [state]
    return [state, state.changed(uid, entries=entries, last=last)]


def place_of_new(pl, mode):
    behind_last = mode != 2 and 0 <= pl.last < len(pl.entries)
    return pl.last + 1 if behind_last else len(pl.entries)


def add_items(state, uid, titles, mode):
    """All at once."""
    pl = state.lists[uid]
    place = place_of_new(pl, mode)
    entries = pl.entries[:place] + state.new_items(titles) + pl.entries[place:]
    return [state, state.changed(uid, entries=entries)]


def add_items_at(state, uid, titles, places):
    """All at once, each at its place, with the last played number."""
    pl = state.lists[uid]
    entries = list(pl.entries)
    last = pl.last
    for place, entry in zip(places, state.new_items(titles)):
        entries.insert(place, entry)
        if 0 <= pl.last < len(pl.entries) and place <= last:
            last += 1
    return [state, state.changed(uid, entries=tuple(entries), last=last)]


def merge(state, source, target, mode):
    """The tracks are added to the target, then the source goes as a deleted playlist does. The
    play queue, and a playlist that is its own target, stay."""
    states = add_items(state, target, [title for _, title in state.lists[source].entries], mode)
    if source not in (target, QUEUE):
        states += delete(states[-1], source)[1:]
    return states


def create_collection(state, name):
    new = {**state.collections, next_uid(state.collections): Collection(name)}
    return [state, replace(state, collections=new)]


def delete_collection(state, uid):
    left = {other: cl for other, cl in state.collections.items() if other != uid}
    return [state, replace(state, collections=left)]


def set_member(state, clid, plid, member):
    members = state.collections[clid].members
    return [state, state.changed_collection(clid, members | {plid} if member else members - {plid})]


def start(state):
    """A start empties the play queue and removes what a clear left behind that was cut off."""
    states = clear(state, QUEUE)
    by_name = lambda pair: pair[1].name.encode()
    queue = (QUEUE, states[-1].lists[QUEUE])
    others = [pair for pair in states[-1].lists.items() if pair[0] != QUEUE]
    return states + [State(lists=dict([queue, *sorted(others, key=by_name)]),
                           collections=dict(sorted(state.collections.items(), key=by_name)))]
