"""A screen without a display, and what is on it."""

import mmap
import os
import struct
import subprocess
import tempfile
import time

import numpy
from pattern import HEIGHT, WIDTH, numberOf
from reading import TIMEOUT


class Screen:
    """An X server of WIDTH x HEIGHT whose memory is read; `with` ends it."""

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory()
        readEnd, writeEnd = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writeEnd), "-fbdir", self.folder.name, "-screen", "0", f"{WIDTH}x{HEIGHT}x24",
             "-nolisten", "tcp"], pass_fds=[writeEnd], stderr=subprocess.DEVNULL)
        os.close(writeEnd)
        with os.fdopen(readEnd) as said:
            self.display = ":" + said.readline().strip()  # written once it answers
        # ffplay draws with SDL, whose software renderer needs no OpenGL.
        self.environment = dict(os.environ, DISPLAY=self.display, SDL_RENDER_DRIVER="software",
                                LIBGL_ALWAYS_SOFTWARE="1")
        with open(os.path.join(self.folder.name, "Xvfb_screen0"), "rb") as file:
            self.memory = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        # An X window dump (XWDFile.h): big-endian words, of which the first is the header's size, the 13th the bytes
        # of a row and the 20th the number of colours, 12 bytes each.
        header = struct.unpack(">25I", self.memory[:100])
        self.pitch, self.start = header[12], header[0] + header[19] * 12
        return self

    def __exit__(self, *_):
        self.server.terminate()
        self.server.wait()
        self.memory.close()
        self.folder.cleanup()

    def pixels(self):
        rows = numpy.frombuffer(self.memory[self.start:self.start + HEIGHT * self.pitch], numpy.uint8)
        return rows.reshape(HEIGHT, self.pitch)[:, :WIDTH * 4].reshape(HEIGHT, WIDTH, 4)[..., 2::-1].copy()

    def waitForPicture(self, isWanted):
        """The screen once it shows a picture whose number satisfies isWanted; after TIMEOUT as it is then."""
        deadline = time.monotonic() + TIMEOUT
        while True:
            pixels = self.pixels()
            number = numberOf(pixels)
            if number is not None and isWanted(number) or time.monotonic() > deadline:
                return pixels
            time.sleep(0.02)  # else we take the processor from who is to draw
