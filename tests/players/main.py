"""Records, remuxes, lets each program read each file, and judges: see scripts/test-players."""

import argparse
import importlib
import inspect
import json
import sys
import tempfile
from pathlib import Path

import pattern
from reading import asOurLoaderConverts, rgbPictures, run
from table import KINDS, shown, write

ROOT = Path(__file__).resolve().parent.parent.parent
MINIHOST = ROOT / "build" / "release" / "minihost"
PROGRAMS = ["ffmpegs", "libraries", "mpv", "ffplay", "vlc", "chromium"]

# What a program does wrong with a file that says it right, measured as what it is.
THEIR_OWN = {
    # Takes the range that MP4's and MOV's colr box names for the limited one (1.22).
    ("GStreamer", "mp4", "colour"), ("GStreamer", "mov", "colour"),
    # A raw stream has no index: its pictures are played in order.
    ("mpv", "h264", "seeks"), ("OpenCV", "h264", "seeks"), ("VLC", "h264", "seeks"), ("Chromium", "h264", "opens"),
    # Draws with OpenGL as if the range were always the limited one (3.0); with X11 as it is.
    *(("VLC", file, "colour") for file in KINDS),
    # Begins with the picture behind the one at that time (3.0).
    ("VLC", "mkv", "seeks"),
}


class Truth:
    """What was recorded and what our loader makes of it; advice: the command lines of `info` for the raw file."""

    def __init__(self, folder):
        self.raw = folder / "raw.h264"
        self.recorded = [pattern.picture(number) for number in range(pattern.FRAMES)]
        run([MINIHOST, "record", "-q", "--quality", "10", "--input-format", "rawvideo", "--input-option",
             f"video_size={pattern.WIDTH}x{pattern.HEIGHT}", "--input-option", "pixel_format=rgb24", "--input-option",
             f"framerate={pattern.RATE}", "-", self.raw], input=b"".join(map(bytes, self.recorded)))
        self.decoded = rgbPictures(run([MINIHOST, "export", "-q", "--frames", "all", "--stream", "rgb24", "-o", "-",
                                        self.raw]))
        self.advice = json.loads(run([MINIHOST, "info", "--json", self.raw]))["otherPlayers"]

    def arePlanesOurs(self, planes):
        """Whether the planes of all pictures give, converted as the plug-in does it, the very bytes of our loader."""
        return len(planes) == len(self.decoded) and all(
            (asOurLoaderConverts(ours) == right).all() for ours, right in zip(planes, self.decoded))


def remuxed(truth, folder):
    """The files by their kind, "raw" first."""
    files = {"raw": truth.raw}
    for kind in KINDS[1:]:
        files[kind] = folder / f"remuxed.{kind}"
        run([MINIHOST, "remux", "-q", truth.raw, files[kind]])
    return files


def failures(reading, truth):
    """What is misread; of the raw file, which says nothing, only where the program was told."""
    if reading.file == "raw" and "," not in reading.program:
        return
    best = pattern.psnr(truth.decoded[-1], truth.recorded[-1])
    for aspect, isRight in {
            "opens": reading.opens,
            "frames": reading.frames in (None, pattern.FRAMES),
            "rate": reading.rate is None or abs(reading.rate / pattern.RATE - 1) < 0.001,  # times in milliseconds
            "colour": reading.colour is None or reading.colour <= pattern.TOLERANCE,
            "psnr": reading.psnr is None or reading.psnr >= best - 0.5,
            "seeks": reading.seeks is None or reading.seeks == len(pattern.SEEKS) or reading.file == "raw",
            "planes": reading.planes in (None, True), "tags": reading.tags in (None, True)}.items():
        if not isRight and (reading.program, reading.file, aspect) not in THEIR_OWN:
            yield f"{reading.program}, {reading.file}: {aspect} wrong: {reading}"


def main():
    parser = argparse.ArgumentParser(prog="test-players", description=__doc__)
    parser.add_argument("--record", action="store_true", help="puts the table into docs/players.md")
    parser.add_argument("programs", nargs="*", metavar="PROGRAM", help=", ".join(PROGRAMS))
    arguments = parser.parse_args()
    if set(arguments.programs) - set(PROGRAMS) or arguments.record and arguments.programs:
        parser.error(f"the programs are {', '.join(PROGRAMS)}; the table needs all of them")

    wrong, readings, versions = [], [], {}
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        truth = Truth(folder)
        error = pattern.colourError(truth.decoded[-1], truth.recorded[-1])
        if [pattern.numberOf(pixels) for pixels in truth.decoded] != list(range(pattern.FRAMES)) \
                or error > pattern.TOLERANCE:
            wrong.append(f"our own loader: colours off by {error}")
        files = remuxed(truth, folder)
        for program in arguments.programs or PROGRAMS:
            module = importlib.import_module(program)
            versions.update(module.versions())
            needed = [files, truth, folder][:len(inspect.signature(module.readings).parameters)]
            for reading in module.readings(*needed):
                print(shown(reading, versions), flush=True)
                readings.append(reading)
                wrong += failures(reading, truth)
    if arguments.record:
        write(ROOT / "docs" / "players.md", readings, versions)
    for line in wrong:
        print(f"test-players: {line}", file=sys.stderr)
    print(f"test-players: {'failed' if wrong else 'passed'}")
    return bool(wrong)


if __name__ == "__main__":
    sys.exit(main())
