"""ffplay on a screen of its own: the last picture stays, and a filter behind its own lists the pictures."""

import re
import shlex
import subprocess

from pattern import FRAMES, HEIGHT, WIDTH, colourError
from reading import TIMEOUT, Reading, version
from screen import Screen


def reading(name, file, arguments, truth, folder):
    words = list(arguments)
    if "-vf" in words:
        words[words.index("-vf") + 1] += ",showinfo"
    else:
        words[:0] = ["-vf", "showinfo"]
    with Screen() as screen, open(folder / "ffplay.log", "w+") as said:
        player = subprocess.Popen(["ffplay", "-an", "-noborder", "-left", "0", "-top", "0", "-x", str(WIDTH), "-y",
                                   str(HEIGHT), "-nostats",
                                   "-noframedrop", *words], stdin=subprocess.DEVNULL,
                                  stderr=said, env=screen.environment)
        pixels = screen.waitForPicture(lambda number: number == FRAMES - 1)
        player.terminate()
        player.wait(TIMEOUT)
        said.seek(0)
        text = said.read()
    numerator, denominator = map(int, re.findall(r"config in .*frame_rate: (\d+)/(\d+)", text)[-1])
    return Reading(name, file, rate=numerator / denominator, frames=len(re.findall(r" pts_time:", text)),
                   colour=colourError(pixels, truth.decoded[FRAMES - 1]))


def readings(files, truth, folder):
    for file, path in files.items():
        yield reading("ffplay", file, [str(path)], truth, folder)
    yield reading("ffplay, as `info` says", "raw", shlex.split(truth.advice["ffplay"])[1:], truth, folder)


def versions():
    return {"ffplay": version(["ffplay", "-version"], r"version (\S+?)-")}
