"""VLC, through the library that its program is made of (the program itself refuses to run as root)."""

import ctypes
import os
import queue

import numpy
from pattern import FRAMES, HEIGHT, RATE, SEEKS, WIDTH, colourError, numberOf
from reading import Reading
from screen import Screen

OPTIONS = ["--no-audio", "--no-video-title-show", "--no-osd", "--no-spu", "--avcodec-hw=none", "--quiet",
           "--no-disable-screensaver", "--no-drop-late-frames", "--no-skip-frames", "--no-video-deco"]
ENDED = 6  # libvlc_state_t
LOCK = ctypes.CFUNCTYPE(ctypes.c_void_p, ctypes.c_void_p, ctypes.POINTER(ctypes.c_void_p))
DISPLAY = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_void_p)


def library():
    vlc = ctypes.CDLL("libvlc.so.5")
    for name, kind in {"new": ctypes.c_void_p, "media_new_path": ctypes.c_void_p, "get_version": ctypes.c_char_p,
                       "media_player_new_from_media": ctypes.c_void_p, "media_player_get_length": ctypes.c_int64,
                       "media_player_get_fps": ctypes.c_float}.items():
        getattr(vlc, "libvlc_" + name).restype = kind
    return vlc


class Player:
    """VLC with one file; `with` ends it."""

    def __init__(self, path, *options):
        self.vlc = library()
        words = [word.encode() for word in (*OPTIONS, *options)]
        self.instance = ctypes.c_void_p(self.vlc.libvlc_new(len(words), (ctypes.c_char_p * len(words))(*words)))
        self.media = ctypes.c_void_p(self.vlc.libvlc_media_new_path(self.instance, str(path).encode()))
        self.player = ctypes.c_void_p(self.vlc.libvlc_media_player_new_from_media(self.media))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.call("stop")
        self.call("release")
        self.vlc.libvlc_media_release(self.media)
        self.vlc.libvlc_release(self.instance)

    def call(self, name, *arguments):
        return getattr(self.vlc, "libvlc_media_player_" + name)(self.player, *arguments)

    def keepNumbers(self):
        """The queue that gets the number of each picture, when it is its turn to be shown."""
        numbers = queue.Queue()
        memory = numpy.zeros((HEIGHT, WIDTH, 4), numpy.uint8)

        def lock(_, planes):
            planes[0] = memory.ctypes.data

        def display(*_):
            numbers.put(numberOf(memory))

        self.callbacks = LOCK(lock), DISPLAY(display), memory  # alive as long as we
        self.vlc.libvlc_video_set_callbacks(self.player, self.callbacks[0], None, self.callbacks[1], None)
        self.vlc.libvlc_video_set_format(self.player, b"RV32", WIDTH, HEIGHT, WIDTH * 4)
        return numbers

    def next(self, numbers):
        """The next number of the queue; None when the end is reached without one."""
        while True:
            isAtEnd = self.call("get_state") == ENDED
            try:
                return numbers.get_nowait() if isAtEnd else numbers.get(timeout=1)
            except queue.Empty:
                if isAtEnd:
                    return None


def numberAfterSeek(path, number):
    """The first picture that is shown and does not go on with what was playing; None where all is played in order."""
    with Player(path) as player:
        numbers = player.keepNumbers()
        player.call("play")
        last = player.next(numbers)
        player.call("set_time", ctypes.c_int64(int((number + 0.5) * 1000 / RATE)))  # the middle of its time
        while last not in (None, FRAMES - 1):
            shown = player.next(numbers)
            if shown == number or shown not in (last, last + 1):
                return shown
            last = shown
        return None


def isFound(path, number):
    """A busy machine's VLC is now and then too late for a picture and begins with one behind it; it has three tries."""
    return any(numberAfterSeek(path, number) == number for _ in range(3))


def reading(name, file, path, truth, *options, vout="gl"):
    with Screen() as screen:
        os.environ.update(screen.environment)
        with Player(path, f"--vout={vout}", *options) as player:
            player.call("play")
            # Not the first, so that a picture half drawn shows the same colours in the other half.
            pixels = screen.waitForPicture(lambda number: number > 0)
            length, rate = player.call("get_length"), player.call("get_fps")
    return Reading(name, file, rate=rate, colour=colourError(pixels, truth.decoded[FRAMES - 1]),
                   frames=round(length * rate / 1000) or None)


def readings(files, truth):
    for file, path in files.items():
        drawn = reading("VLC", file, path, truth)
        drawn.seeks = sum(isFound(path, number) for number in SEEKS)
        yield drawn
    yield reading("VLC, `--vout xcb_x11`", "mp4", files["mp4"], truth, vout="xcb_x11")
    told = reading("VLC, `--h264-fps 30`", "raw", files["raw"], truth, "--h264-fps=30")
    told.colour = None  # there is nothing to tell it about the colours
    yield told


def versions():
    return {"VLC": library().libvlc_get_version().decode().split()[0]}
