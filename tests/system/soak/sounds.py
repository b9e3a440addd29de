#!/usr/bin/env python3
"""Makes sound files that were cut off or garbled, as a full disk, a broken download or a stranger leaves them.

    sounds.py FOLDER [--each N] [--formats ogg,wav] [--damage cut] [--seed N]

writes N files of each format, named FORMAT-NUMBER-DAMAGE.FORMAT. The same seed gives the same files. Needs sox.
"""

import argparse
import random
import subprocess
from pathlib import Path

FORMATS = ["ogg", "flac", "mp3", "wav"]
SECONDS = "0.7"


def cut(sound, chance):
    """Only its beginning is there. Headers are short: a third of the cuts goes into them."""
    most = len(sound) if chance.random() < 0.67 else min(len(sound), 6000)
    return sound[:chance.randrange(most)]


def beheaded(sound, chance):
    return sound[chance.randrange(1, len(sound)):]


def sprinkled(sound, chance):
    """Single bytes are wrong."""
    garbled = bytearray(sound)
    for _ in range(chance.choice([1, 3, 30, 300])):
        garbled[chance.randrange(len(garbled))] = chance.randrange(256)
    return bytes(garbled)


def overwritten(sound, chance):
    """A piece is noise, or zeros as a file system leaves them after a crash."""
    begin = chance.randrange(len(sound))
    end = min(len(sound), begin + chance.choice([8, 512, 4096, len(sound)]))
    piece = chance.choice([bytes, chance.randbytes])(end - begin)
    return sound[:begin] + piece + sound[end:]


def torn(sound, chance):
    """A piece is missing."""
    begin = chance.randrange(len(sound))
    return sound[:begin] + sound[begin + chance.choice([1, 100, 4096]):]


DAMAGES = {"cut": cut, "beheaded": beheaded, "sprinkled": sprinkled, "overwritten": overwritten, "torn": torn}


def whole_sounds(folder):
    """Half a second or so of noise in every format."""
    sounds = {}
    for form in FORMATS:
        file = Path(folder) / f"whole.{form}"
        subprocess.run(["sox", "-R", "-n", "-r", "44100", "-c", "2", str(file), "synth", SECONDS, "pinknoise"],
                       check=True)
        sounds[form] = file.read_bytes()
        file.unlink()
    return sounds


def make(folder, each, seed, formats=None, damages=None):
    """Returns the new files."""
    Path(folder).mkdir(parents=True, exist_ok=True)
    chance = random.Random(seed)
    damages = damages or list(DAMAGES)
    files = []
    for form, sound in whole_sounds(folder).items():
        if form not in (formats or FORMATS):
            continue
        for number in range(each):
            damage = damages[number % len(damages)]
            file = Path(folder) / f"{form}-{number:04}-{damage}.{form}"
            file.write_bytes(DAMAGES[damage](sound, chance))
            files.append(file)
    return files


def names(known):
    def read(text):
        chosen = text.split(",")
        if not set(chosen) <= set(known):
            raise argparse.ArgumentTypeError(f"these are {', '.join(known)}")
        return chosen
    return read


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder")
    parser.add_argument("--each", type=int, default=200)
    parser.add_argument("--formats", type=names(FORMATS), default=FORMATS)
    parser.add_argument("--damage", type=names(DAMAGES), default=list(DAMAGES))
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    make(options.folder, options.each, options.seed, options.formats, options.damage)


if __name__ == "__main__":
    main()
