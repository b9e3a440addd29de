#!/usr/bin/env python3
"""Prints a library of made-up words, for orvo_bench_tag_files:  music.py TRACKS [untagged]"""

import random
import sys

TRACKS_PER_ALBUM, ALBUMS_PER_ARTIST = 12, 5
SYLLABLES = "ba den kol la mir no par quil ri sa tor ven wu xe yl zém".split()


def words(count, kind, number):
    dice = random.Random(f"{kind} {number}")
    return " ".join("".join(dice.choices(SYLLABLES, k=dice.randint(2, 3))) for _ in range(count))


def tags(track, album, artist):
    return (f"\tTITLE={words(3, 'title', track)}\tTRACKNUMBER={track % TRACKS_PER_ALBUM + 1}"
            f"\tARTIST={words(2, 'artist', artist)}\tALBUMARTIST={words(2, 'artist', artist)}"
            f"\tALBUM={words(2, 'album', album)}\tDATE={1960 + album % 60}"
            f"\tGENRE={words(1, 'genre', artist % 20)}\tCOMPOSER={words(2, 'composer', album % 1000)}")


for each in range(int(sys.argv[1])):
    its_album = each // TRACKS_PER_ALBUM
    its_artist = its_album // ALBUMS_PER_ARTIST
    print(f"{its_artist}/{its_album}/{each}.flac" + ("" if sys.argv[2:] else tags(each, its_album, its_artist)))
