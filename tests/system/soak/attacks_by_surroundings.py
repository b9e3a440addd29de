"""Attacks by what is played, by files of the data folder, by other processes, by few descriptors."""

import contextlib
import http.server
import os
import random
import resource
import shutil
import sqlite3
import threading
import time

import sounds
from orvo_device import DeviceError, external_item, write_silence

# What a track on the disk has to begin, and to give more, and some room.
PLAY_PATIENCE_S = 20


def state(client):
    return client.ask("GET", "/api/value?path=player:state").json()["value"]["string"]


def play(device, client, url, patience=PLAY_PATIENCE_S):
    """Plays it to its end. Gives the error that is published, "" when it was heard, None when it hangs."""
    device.require(client.command("playlists:pl/addExternalItems", {
        "plid": 0, "mode": 0, "items": [external_item(1, url)]}).status == 200, f"{url} was not added")
    # The command is answered before the player has it.
    begin = time.monotonic()
    while state(client) == "stopped" and time.monotonic() < begin + 0.2:
        pass
    until = begin + patience
    while state(client) != "stopped":
        if time.monotonic() > until:
            client.command("player:stop", {})
            return None
        time.sleep(0.002)
    published = client.ask("GET", "/api/value?path=player:data").json()["value"]
    return published.get("streamerError", {}).get("message", "")


def cut_sounds(device):
    files = sounds.make(device.music, device.count(500, 8), 1, damages=["cut"])
    client = device.watched_start()
    for file in files:
        error = play(device, client, f"file://{file}")
        device.answers["hangs" if error is None else "fails" if error else "ends"] += 1
        if error is None:
            print(f"hangs: {file}")


def quick_plays(device):
    sounds.make(device.music, 3, 1, damages=["torn"])
    client = device.watched_start()
    for file in sorted(os.listdir(device.music)):
        client.command("playlists:pl/addExternalItems", {"plid": 0, "mode": 2, "items": [
            external_item(1, f"file://{device.music}/{file}")]})
    dice = random.Random(1)
    for _ in range(device.count(8000, 300)):
        device.note(client.command("playlists:pl/play", {"plid": 0}))
        time.sleep(dice.choice((0, 0, 0, 0.01)))
    log = device.log_text()
    device.require("CRITICAL" not in log and "GStreamer-" not in log, "GStreamer complains")


class Elsewhere(http.server.BaseHTTPRequestHandler):
    """A small server: /text, /file/PATH leads into the file system, /rounds/N to /rounds/N+1, the rest is missing."""

    rounds = 0

    def do_GET(self):  # pylint: disable=invalid-name
        kind, _, rest = self.path[1:].partition("/")
        Elsewhere.rounds += kind == "rounds"
        self.send_response({"text": 200, "file": 302, "rounds": 302}.get(kind, 404))
        if kind in ("file", "rounds"):
            self.send_header("Location", f"file:///{rest}" if kind == "file" else f"/rounds/{int(rest) + 1}")
        self.end_headers()
        if kind == "text":
            with contextlib.suppress(ConnectionError):
                self.wfile.write(b"only a text")

    def log_message(self, *_):
        pass


def foreign_sounds(device):
    outside = os.path.join(device.folder, "outside")
    write_silence(os.path.join(outside, "sound.wav"), 1)
    with open(os.path.join(outside, "text"), "w", encoding="ascii") as file:
        file.write("only a text")
    os.symlink(os.path.join(outside, "sound.wav"), os.path.join(device.music, "link.wav"))
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Elsewhere)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    there = f"http://127.0.0.1:{server.server_port}"
    client = device.watched_start()
    errors = {url: play(device, client, url) for url in (
        f"file://{outside}/sound.wav", f"file://{outside}/text", f"file://{outside}/missing", "file:///etc/shadow",
        f"file://{device.music}/link.wav", f"file://{device.music}/../outside/sound.wav",
        f"{there}/text", f"{there}/missing", f"{there}/rounds/0", f"{there}/file{outside}/sound.wav",
        "http://127.0.0.1:1/closed", "ftp://127.0.0.1/x", "data:audio/wav,x")}
    server.shutdown()
    for error in errors.values():
        device.answers["hangs" if error is None else error or "was played"] += 1
    device.require(Elsewhere.rounds <= 6, f"{Elsewhere.rounds - 1} redirects were followed")


def false_play_logics(device):
    client = device.watched_start()
    for path in ("player:next", "player:", "gateway:port", "playlists:pl/create", "player:playContainer"):
        roles = {"type": 3, "title": "t", "mediaData": {"metaData": {"playLogicPath": path}}}
        device.note(client.command("player:playContainer", {"mediaRoles": roles, "trackRoles": {}, "index": 0,
                                                            "type": 1}))
    before = device.processor_seconds()
    time.sleep(1)
    device.require(device.processor_seconds() < before + 0.2, "a processor is busy with nothing")


@contextlib.contextmanager
def reader_of(device):
    """Another process' read transaction: nothing can be committed while it lasts."""
    with contextlib.closing(sqlite3.connect(device.database, isolation_level=None)) as store:
        store.execute("BEGIN")
        store.execute("SELECT count(*) FROM playlists").fetchall()
        yield


def store_is_read(device):
    client = device.watched_start()
    client.command("playlists:pl/create", {"name": "Party"})
    with reader_of(device):
        client.send("POST", "/api/data", {"path": "playlists:pl/addExternalItems", "value": {
            "plid": 1, "items": [external_item(1, "file:///t.wav")]}})
        time.sleep(1)
        begin = time.monotonic()
        device.require(device.end(30) == 0, "told to end, the device does not")
        seconds = time.monotonic() - begin
        device.require(seconds < 2, f"it took {seconds:.1f} s to end")
        device.note(client.receive())
    client = device.ready_client()
    device.require(client.rows("playlists:pl/items/1") == [], "what was refused is there")


def reader_at_the_start(device):
    client = device.watched_start()
    client.command("playlists:pl/addExternalItems", {"plid": 0, "items": [external_item(1, "file:///t.wav")]})
    device.end()
    with reader_of(device):
        device.spawn()
        time.sleep(2)
        device.require(device.alive(), "a start does not wait for the store")
    device.wait_until_ready()
    device.answers["starts when the reader ends"] += 1
    device.end()
    if device.few:
        device.ready_client()
        return
    with reader_of(device):
        device.spawn()
        begin = time.monotonic()
        device.wait_for_end(30)
        seconds = time.monotonic() - begin
        device.require(9 < seconds < 15, f"the start ended after {seconds:.1f} s")
        device.require(device.status() == 1, f"the start ended with {device.status()}")
        device.answers["ends when the reader does not"] += 1
    device.ready_client()


def few_descriptors(device):
    write_silence(os.path.join(device.music, "silence.wav"), 1)
    device.limits[resource.RLIMIT_NOFILE] = 64
    device.watched_start()
    silent = []
    with contextlib.suppress(OSError):
        for _ in range(200):
            silent.append(device.stranger())
    client = device.connect()
    error = play(device, client, f"file://{device.music}/silence.wav")
    device.answers["hangs" if error is None else error or "was played"] += 1
    device.note(client.command("playlists:pl/create", {"name": "Party"}))
    for each in silent:
        each.close()


def pipes(device):
    for name in ("device/settings.json", "token"):
        file = os.path.join(device.folder, name)
        os.makedirs(os.path.dirname(file), exist_ok=True)
        with contextlib.suppress(FileNotFoundError):
            os.unlink(file)
        os.mkfifo(file, 0o600)
        device.spawn()
        try:
            device.wait_until_ready(10)
            device.answers["starts"] += 1
        except DeviceError:
            device.wait_for_end(1)
            device.answers["blocks" if device.alive() else "refuses to start"] += 1
        device.kill()
        os.unlink(file)


def removed_lock(device):
    device.watched_start()
    os.unlink(os.path.join(device.data, "orvo-host.lock"))
    second = type(device)(device.host, os.path.join(device.folder, "second"), device.few)
    second.data = device.data
    try:
        second.start()
        device.problems.append("a second host uses the folder")
    except DeviceError:
        device.answers["in use" if "in use" in second.log_text() else "ended"] += 1
    second.close()
    shutil.rmtree(second.folder)
