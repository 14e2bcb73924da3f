"""Chromium without a window: a page beside the file plays it, seeks in it and reads its pixels."""

import http.server
import json
import subprocess
import threading

import numpy
from pattern import FRAMES, HEIGHT, RATE, SEEKS, WIDTH, colourError, numberOf
from reading import TIMEOUT, Reading, version

# Pixels go back as they are. The page says what went wrong, too, so that nobody waits for it in vain.
PAGE = """<!DOCTYPE html><video id="video" muted preload="auto"></video><script>
const say = (what, body) => fetch("http://127.0.0.1:PORT/" + what, {method: "POST", mode: "no-cors", body});
const once = (name) => new Promise((resolve, reject) => {
    video.addEventListener(name, resolve, {once: true});
    video.addEventListener("error", () => reject(video.error.message || video.error.code), {once: true});
});
// "seeked" comes when the picture is decoded, which may be before it is the one that a canvas gets.
const presented = () => new Promise(resolve => video.requestVideoFrameCallback(resolve));
const canvas = document.createElement("canvas");
async function pixels() {
    canvas.width = video.videoWidth, canvas.height = video.videoHeight;
    const context = canvas.getContext("2d", {willReadFrequently: true});
    context.drawImage(video, 0, 0);
    await say("pixels", context.getImageData(0, 0, canvas.width, canvas.height).data);
}
async function all() {
    const loaded = [once("loadeddata"), presented()];
    video.src = "FILE";
    await loaded[0], await loaded[1];
    await say("duration", String(video.duration));
    for (const number of SEEKS) {
        const sought = [once("seeked"), presented()];
        video.currentTime = (number + 0.5) / RATE;
        await sought[0], await sought[1];
        await pixels();
    }
    const ended = once("ended");
    video.currentTime = 0;
    await video.play();
    await ended;
}
all().then(() => say("done", ""), error => say("failed", String(error)));
</script>"""


class Reports(http.server.ThreadingHTTPServer):
    """What the page says, in its order."""

    def __init__(self):
        super().__init__(("127.0.0.1", 0), Handler)
        self.said, self.isDone = [], threading.Event()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        what, body = self.path[1:], self.rfile.read(int(self.headers["Content-Length"]))
        self.server.said.append((what, body))
        self.send_response(204)
        self.end_headers()
        if what in ("done", "failed"):
            self.server.isDone.set()

    def log_message(self, *_):
        pass


def show(path, seeks, folder):
    """What the page said of the file."""
    with Reports() as reports:
        threading.Thread(target=reports.serve_forever, daemon=True).start()
        page = folder / "page.html"
        page.write_text(PAGE.replace("PORT", str(reports.server_port)).replace("FILE", path.name)
                        .replace("SEEKS", json.dumps(seeks)).replace("RATE", str(RATE)))
        # A page from the disk may read the pixels of a file from the disk only if told so.
        browser = subprocess.Popen(
            ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run", "--no-proxy-server",
             "--allow-file-access-from-files", "--autoplay-policy=no-user-gesture-required", "--disable-dev-shm-usage",
             "--disable-background-networking", "--disable-component-update", "--force-color-profile=srgb",
             f"--user-data-dir={folder / 'profile'}", page.as_uri()],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        isDone = reports.isDone.wait(TIMEOUT)
        browser.terminate()
        browser.wait(TIMEOUT)
        reports.shutdown()
        if not isDone:
            raise RuntimeError(f"Chromium: {path.name}: said only {[what for what, _ in reports.said]}")
        return reports.said


def readings(files, truth, folder):
    for file, path in files.items():
        said = show(path, SEEKS, folder)
        if said[-1][0] == "failed":
            yield Reading("Chromium", file, opens=False, note=said[-1][1].decode())
            continue
        pictures = [numpy.frombuffer(body, numpy.uint8).reshape(HEIGHT, WIDTH, 4)[..., :3]
                    for what, body in said if what == "pixels"]
        duration = float(dict(said)["duration"])
        seeks = sum(numberOf(picture) == number for picture, number in zip(pictures, SEEKS))
        yield Reading("Chromium", file, rate=FRAMES / duration, seeks=seeks, frames=round(duration * RATE),
                      colour=colourError(pictures[SEEKS.index(FRAMES - 1)], truth.decoded[FRAMES - 1]))


def versions():
    return {"Chromium": version(["chromium", "--version"], r"Chromium (\S+)")}
