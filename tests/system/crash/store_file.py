"""The device's file as the model's State, and what must hold of any such file."""

import os
import shutil
import sqlite3

from model import Collection, PlayList, State

SUFFIXES = ("", "-journal")


def copy_of(database, folder):
    """A copy that may be opened, and thereby rolled back, without doing the device's work for it.
    Gives its name and whether a transaction was cut off."""
    copy = os.path.join(folder, "copy.sqlite")
    for suffix in SUFFIXES:
        if os.path.exists(copy + suffix):
            os.remove(copy + suffix)
        if os.path.exists(database + suffix):
            shutil.copyfile(database + suffix, copy + suffix)
    journal = copy + "-journal"
    return copy, os.path.exists(journal) and os.path.getsize(journal) > 0


def read(file):
    """The state, the tracks' stored fields by uid, and a list of what is broken."""
    connection = sqlite3.connect(file)
    try:
        return _read(connection)
    except sqlite3.DatabaseError as error:
        return State(), {}, [f"cannot be read: {error}"]
    finally:
        connection.close()


def _read(connection):
    rows = lambda sql: connection.execute(sql).fetchall()
    broken = []
    if rows("PRAGMA integrity_check") != [("ok",)]:
        broken.append(f"integrity_check: {rows('PRAGMA integrity_check')}")
    if rows("PRAGMA foreign_key_check"):
        broken.append(f"foreign_key_check: {rows('PRAGMA foreign_key_check')}")

    fields = {row[0]: row[1:] for row in rows(
        "SELECT uid, title, artist, album, artworkUrl, genre, durationSeconds, url, serviceId,"
        " orvoRoles FROM items")}
    entries = {}
    used = set()
    for playlist, item, number in rows(
            "SELECT playlist, item, sequenceNumber FROM playlists_items"
            " ORDER BY playlist, sequenceNumber"):
        of_list = entries.setdefault(playlist, [])
        if number != len(of_list):
            broken.append(f"playlist {playlist}: number {number} where {len(of_list)} is due")
        if item in used:
            broken.append(f"item {item} has two entries")
        used.add(item)
        of_list.append((item, fields.get(item, ("no such item",))[0]))
    lists = {uid: PlayList(name, shuffle == 1, repeat == 1, last, tuple(entries.get(uid, ())))
             for uid, name, shuffle, repeat, last in rows(
                 "SELECT uid, name, shuffle, repeatAll, lastPlayedIndex FROM playlists")}
    members = {}
    for collection, playlist in rows("SELECT collection, playlist FROM collections_playlists"):
        members.setdefault(collection, set()).add(playlist)
    collections = {uid: Collection(name, frozenset(members.get(uid, ())))
                   for uid, name in rows("SELECT uid, name FROM collections")}
    return State(lists, collections, frozenset(fields) - used), fields, broken
