"""mpv on a screen of its own, driven by its protocol."""

import json
import shlex
import socket
import subprocess

import cv2
from pattern import FRAMES, SEEKS, colourError, numberOf
from reading import TIMEOUT, Reading, version
from screen import Screen

OPTIONS = ["--no-config", "--ao=null", "--vo=gpu", "--gpu-api=opengl", "--gpu-context=x11egl", "--pause",
           "--keep-open=yes", "--osd-level=0", "--really-quiet"]


class Player:
    """A paused mpv, its picture drawn by OpenGL; `with` ends it."""

    def __init__(self, arguments, screen, folder):
        self.picture = folder / "mpv.png"
        ours, its = socket.socketpair()
        ours.settimeout(TIMEOUT)
        self.process = subprocess.Popen(["mpv", *OPTIONS, f"--input-ipc-client=fd://{its.fileno()}", *arguments],
                                        pass_fds=[its.fileno()], env=screen.environment)
        its.close()
        self.stream = ours.makefile("rw")
        self.request = 0

    def __enter__(self):
        self.waitFor("playback-restart")
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(TIMEOUT)

    def answers(self):
        for line in self.stream:
            yield json.loads(line)
        raise RuntimeError("mpv ended")

    def waitFor(self, event):
        next(answer for answer in self.answers() if answer.get("event") == event)

    def ask(self, *words):
        self.request += 1
        self.stream.write(json.dumps({"command": words, "request_id": self.request}) + "\n")
        self.stream.flush()
        return next(answer for answer in self.answers() if answer.get("request_id") == self.request)

    def command(self, *words):
        answer = self.ask(*words)
        if answer["error"] != "success":
            raise RuntimeError(f"mpv: {words}: {answer['error']}")

    def get(self, name):
        """A property; None where the file has none, as a raw stream has no duration."""
        return self.ask("get_property", name).get("data")

    def pixels(self):
        """The picture as the screen gets it."""
        self.command("screenshot-to-file", str(self.picture), "window")
        return cv2.imread(str(self.picture))[..., ::-1]

    def seek(self, number, rate):
        self.command("seek", number / rate, "absolute+exact")
        self.waitFor("playback-restart")


def reading(name, file, arguments, truth, folder):
    with Screen() as screen, Player(arguments, screen, folder) as player:
        rate = player.get("container-fps")
        duration = player.get("duration")
        seeks = 0
        for number in SEEKS:
            player.seek(number, rate)
            seeks += numberOf(player.pixels()) == number
        player.seek(FRAMES - 1, rate)
        error = colourError(player.pixels(), truth.decoded[FRAMES - 1])
        return Reading(name, file, rate=rate, seeks=seeks, colour=error,
                       frames=round(duration * rate) if duration else None)


def readings(files, truth, folder):
    for file, path in files.items():
        yield reading("mpv", file, [str(path)], truth, folder)
    advised = shlex.split(truth.advice["mpv"])[1:]
    yield reading("mpv, as `info` says", "raw", advised, truth, folder)


def versions():
    return {"mpv": version(["mpv", "--version"], r"mpv (\S+)")}
