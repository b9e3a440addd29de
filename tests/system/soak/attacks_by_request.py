"""Attacks by what is sent: sizes, counts, forms."""

import json
import os
import sqlite3

from attacked_device import MIB
from orvo_device import write_silence

FIRST_ITEM = "playlists:item/1"
PATHS = "GET /api/paths HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n"
BROKEN_HEADS = (
    "Transfer-Encoding: chunked\r\nContent-Length: 4\r\n", "Content-Length: 4\r\nContent-Length: 4\r\n",
    "Content-Length: 4\r\nContent-Length: 5\r\n", "Content-Length: 4, 4\r\n", "Content-Length : 4\r\n",
    "Content-Length: +4\r\n", "Content-Length: 4\r\nX: a\x01b\r\n", "Content-Length: 4\r\nX: a\rb\r\n",
    "Content-Length: 4\r\nX: a\0b\r\n", "Content-Length: 4\r\nX: a\r\n b\r\n")
BROKEN_HOSTS = ("localhost\0.evil.com", "local\x01host", "localhost\x7f")


def post(target, body):
    return (f"POST {target} HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n"
            f"Content-Length: {len(body)}\r\n\r\n").encode() + body


def roles(size):
    return json.dumps({"type": 3, "title": "t" * size})


def write_old_items(device, size, count):
    """A playlist with items as files have them that were written before items had a limit."""
    device.start()
    device.end()
    store = sqlite3.connect(device.database)
    with store:
        store.execute("INSERT INTO playlists (uid, name) VALUES (1, 'Old')")
        for number in range(count):
            store.execute("INSERT INTO items (uid, title, url, serviceId, orvoRoles)"
                          " VALUES (?, 't', 'file:///t.wav', 'test', ?)", (number + 1, roles(size)))
            store.execute("INSERT INTO playlists_items VALUES (1, ?, ?)", (number + 1, number))
    store.close()


def prepare_largest(device):
    client = device.watched_start()
    client.command("playlists:pl/create", {"name": "Party"})
    for size, due in ((500_000, 422), (250_000, 200)):  # around the limit of 256 KiB
        item = {"title": "t", "url": "file:///t.wav", "serviceId": "test", "orvoRoles": roles(size)}
        status = client.command("playlists:pl/addExternalItems", {"plid": 1, "items": [item]}).status
        device.require(status == due, f"an item of {size} bytes: {status}")
    device.note(client.command("playlists:prepareItems", [FIRST_ITEM] * 5000))


def command(path, value, old_item=0):
    """The attack with one command, beside an old item of that many bytes."""
    def attack(device):
        if old_item:
            write_old_items(device, old_item, 1)
        device.note(device.watched_start().command(path, value))
    return attack


def rows_of_old(device):
    write_old_items(device, 7_000_000, device.count(330, 20))
    rows = "/api/rows?path=playlists:pl/items/1"
    device.note(device.watched_start(warm_up=rows + "&from=0&to=2").ask("GET", rows))


def bodies(target, many):
    def attack(device):
        device.watched_start()
        body = b'{"token": "' + b"x" * (8 * MIB - 13) + b'"}'
        device.exchange([post(target, body)] * device.count(many, 30))
    return attack


def tiny_values(device):
    begin, end = b'{"path":"playlists:pl/create","value":[0', b"]}"
    device.watched_start()
    device.exchange([post("/api/data", begin + b",0" * ((8 * MIB - len(begin) - len(end)) // 2) + end)])


def made_up_modules(device):
    client = device.watched_start()
    client.command("playlists:pl/create", {"name": "Party"})
    for many in (600_000, 20_000):  # a body may have 250,000 values
        items = [f"{number:x}:x" for number in range(many)]
        device.note(client.command("playlists:pl/addItems", {"plid": 1, "items": items}))


def unread_pictures(device):
    cover = os.path.join(device.music, "cover.png")
    write_silence(cover, 1)
    os.truncate(cover, 16 * MIB)
    device.watched_start()
    readers = [device.stranger() for _ in range(device.count(300, 60))]
    for reader in readers:
        reader.send("GET", f"/api/artwork?uri=file://{cover}")
    for reader in readers:
        device.answers[reader.first_line()] += 1
    for reader in readers:
        reader.close()


def broken_heads(device):
    device.watched_start()
    heads = [f"POST /api/data HTTP/1.1\r\nHost: 127.0.0.1\r\n{fields}\r\n0\r\n\r\n" for fields in BROKEN_HEADS]
    for head in heads + [PATHS.replace("127.0.0.1", host) for host in BROKEN_HOSTS]:
        connection = device.stranger()
        connection.try_send((head + PATHS).encode())
        device.note(connection.receive())
        device.require(connection.receive().status == 0, f"more was answered behind {head!r}")


def guessed_tokens(device):
    device.watched_start()
    for _ in range(device.count(3000, 300) // 30):
        device.exchange([post("/api/login", b'{"token": "a-made-up-token-of-a-stranger"}')] * 30)
    guessed = device.answers["401 Unauthorized"]
    device.require(guessed == 10, f"{guessed} tokens were compared within a minute")
    device.require("127.0.0.2" in device.log_text(), "the log does not say who guesses")
    device.require("a-made-up" not in device.log_text(), "a token is in the log")
