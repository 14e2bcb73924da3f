"""What one program makes of one file, and running programs."""

import re
import subprocess
from dataclasses import dataclass

import numpy
from pattern import HEIGHT, WIDTH

TIMEOUT = 120  # seconds for anything that a program does: it hangs, however loaded the machine is


@dataclass
class Reading:
    """None is what was not or could not be measured."""
    program: str  # as in the table
    file: str  # the file's kind
    opens: bool = True
    frames: int = None
    rate: float = None  # pictures a second
    colour: float = None  # colourError()
    psnr: float = None  # of its RGB, against the pictures that were recorded
    seeks: int = None  # how many of SEEKS gave the picture asked for
    tags: bool = None  # the file's description is right; NOTE is what it says
    planes: bool = None  # decoded planes are those of our loader
    note: str = ""


def run(command, **options):
    """Standard output of a program that has to succeed."""
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          timeout=TIMEOUT, **options)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}: exit code {done.returncode}\n{done.stderr.decode()}")
    return done.stdout


def version(command, pattern):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIMEOUT)
    found = re.search(pattern, done.stdout.decode())
    return found.group(1) if found else "?"


def rgbPictures(data):
    return numpy.frombuffer(data, numpy.uint8).reshape(-1, HEIGHT, WIDTH, 3)


def yuvPictures(data):
    return numpy.frombuffer(data, numpy.uint8).reshape(-1, HEIGHT * WIDTH * 3 // 2)


def asOurLoaderConverts(planes):
    """A picture of planes (I420, in one row) as the plug-in turns it into RGB: what proves planes equal to its own."""
    luma = WIDTH * HEIGHT
    y = planes[:luma].reshape(HEIGHT, WIDTH).astype(numpy.int32) * 1000
    u, v = (plane.reshape(HEIGHT // 2, WIDTH // 2).astype(numpy.int32).repeat(2, 0).repeat(2, 1) - 128
            for plane in (planes[luma:luma * 5 // 4], planes[luma * 5 // 4:]))
    # Quotients are cut off toward zero; what is below zero becomes zero anyway.
    rgb = numpy.stack([y + 1400 * v, y - 343 * u - 711 * v, y + 1765 * u], 2).clip(0) // 1000
    return rgb.clip(0, 255).astype(numpy.uint8)
