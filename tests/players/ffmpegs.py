"""FFmpeg's tools: ffprobe's facts and ffmpeg's default reading."""

import json

from pattern import colourError, psnr
from reading import Reading, asOurLoaderConverts, rgbPictures, run, version, yuvPictures

RIGHT_TAGS = {"color_range": "pc", "color_space": "smpte170m", "color_primaries": "bt709",
              "color_transfer": "iec61966-2-1"}


def probe(file, path):
    facts = json.loads(run(["ffprobe", "-v", "error", "-count_frames", "-show_streams", "-of", "json", path]))
    stream = facts["streams"][0]
    numerator, denominator = map(int, stream["avg_frame_rate"].split("/"))
    said = {key: stream.get(key) for key in RIGHT_TAGS}
    return Reading("ffprobe", file, frames=int(stream["nb_read_frames"]), rate=numerator / denominator,
                   tags=said == RIGHT_TAGS, note=", ".join(value for value in said.values() if value) or "says none")


def decode(file, path, truth):
    command = ["ffmpeg", "-v", "error", "-i", path, "-fps_mode", "passthrough", "-f", "rawvideo"]
    planes = yuvPictures(run(command + ["-"]))
    rgb = rgbPictures(run(command + ["-pix_fmt", "rgb24", "-"]))
    return Reading("ffmpeg", file, frames=len(rgb), colour=colourError(rgb[-1], truth.decoded[-1]),
                   psnr=psnr(rgb[-1], truth.recorded[-1]), planes=truth.arePlanesOurs(planes))


def decodeAsTold(path, truth):
    """The raw file with the options that docs/players.md names."""
    rgb = rgbPictures(run(["ffmpeg", "-v", "error", "-framerate", "30", "-i", path, "-vf",
                           "setparams=range=pc:colorspace=smpte170m", "-f", "rawvideo", "-pix_fmt", "rgb24", "-"]))
    return Reading("ffmpeg, as above", "raw", frames=len(rgb), colour=colourError(rgb[-1], truth.decoded[-1]),
                   psnr=psnr(rgb[-1], truth.recorded[-1]))


def readings(files, truth):
    for file, path in files.items():
        yield probe(file, path)
        yield decode(file, path, truth)
    yield decodeAsTold(files["raw"], truth)


def versions():
    return {"ffprobe": version(["ffprobe", "-version"], r"version (\S+?)-"),
            "ffmpeg": version(["ffmpeg", "-version"], r"version (\S+?)-")}
