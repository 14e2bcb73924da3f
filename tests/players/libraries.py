"""Libraries that other programs read videos with: GStreamer, FFMS2, OpenCV."""

import ctypes
import ctypes.util
import re

import cv2
import numpy
from pattern import FRAMES, HEIGHT, SEEKS, WIDTH, colourError, numberOf
from reading import Reading, asOurLoaderConverts, rgbPictures, run, version, yuvPictures

DEMUXERS = {"raw": [], "h264": [], "mp4": ["qtdemux", "!"], "mov": ["qtdemux", "!"], "mkv": ["matroskademux", "!"]}


def gstreamer(file, path, truth):
    """openh264dec's planes, and what decodebin and videoconvert make of it."""
    source = ["gst-launch-1.0", "-q", "filesrc", f"location={path}", "!"]
    planes = yuvPictures(run(source + DEMUXERS[file] + ["h264parse", "!", "openh264dec", "!", "video/x-raw,format=I420",
                                                        "!", "fdsink"]))
    rgb = rgbPictures(run(source + ["decodebin", "!", "videoconvert", "!", "video/x-raw,format=RGB", "!", "fdsink"]))
    said = run(["gst-launch-1.0", "-v", "filesrc", f"location={path}", "!", "decodebin", "!", "fakesink"]).decode()
    numerator, denominator = map(int, re.findall(r"video/x-raw.*framerate=\(fraction\)(\d+)/(\d+)", said)[-1])
    return Reading("GStreamer", file, frames=len(rgb), rate=numerator / denominator,
                   colour=colourError(rgb[-1], truth.decoded[-1]), planes=truth.arePlanesOurs(planes))


def gstreamerAsTold(path, truth):
    """The raw file with the pipeline that docs/players.md names."""
    rgb = rgbPictures(run(["gst-launch-1.0", "-q", "filesrc", f"location={path}", "!", "h264parse", "!", "openh264dec",
                           "!", "capssetter", "caps=video/x-raw,framerate=30/1,colorimetry=(string)1:4:7:1", "!",
                           "videoconvert", "!", "video/x-raw,format=RGB", "!", "fdsink"]))
    return Reading("GStreamer, as above", "raw", frames=len(rgb), colour=colourError(rgb[-1], truth.decoded[-1]))


class ErrorInfo(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("subType", ctypes.c_int), ("size", ctypes.c_int), ("text", ctypes.c_char_p)]


class Frame(ctypes.Structure):  # the first fields of FFMS_Frame
    _fields_ = [("data", ctypes.POINTER(ctypes.c_uint8) * 4), ("linesize", ctypes.c_int * 4)]


class VideoProperties(ctypes.Structure):  # the first fields of FFMS_VideoProperties
    _fields_ = [("fpsDenominator", ctypes.c_int), ("fpsNumerator", ctypes.c_int), ("rff", ctypes.c_int * 2),
                ("frames", ctypes.c_int)]


class Ffms2:
    """One file, opened with FFMS2."""

    def __init__(self, path):
        self.library = library = ctypes.CDLL(ctypes.util.find_library("ffms2"))
        for name, kind in {"FFMS_CreateIndexer": ctypes.c_void_p, "FFMS_DoIndexing2": ctypes.c_void_p,
                           "FFMS_CreateVideoSource": ctypes.c_void_p, "FFMS_GetFrame": ctypes.POINTER(Frame),
                           "FFMS_GetVideoProperties": ctypes.POINTER(VideoProperties)}.items():
            getattr(library, name).restype = kind
        library.FFMS_Init(0, 0)
        self.error = ErrorInfo(0, 0, 1024, ctypes.cast(ctypes.create_string_buffer(1024), ctypes.c_char_p))
        name = str(path).encode()
        indexer = self.checked(library.FFMS_CreateIndexer(name, ctypes.byref(self.error)))
        index = self.checked(library.FFMS_DoIndexing2(ctypes.c_void_p(indexer), 0, ctypes.byref(self.error)))
        track = library.FFMS_GetFirstTrackOfType(ctypes.c_void_p(index), 0, ctypes.byref(self.error))
        self.source = ctypes.c_void_p(self.checked(library.FFMS_CreateVideoSource(
            name, track, ctypes.c_void_p(index), 1, 1, ctypes.byref(self.error))))
        library.FFMS_DestroyIndex(ctypes.c_void_p(index))
        self.properties = library.FFMS_GetVideoProperties(self.source).contents

    def checked(self, result):
        if not result:
            raise RuntimeError(f"FFMS2: {self.error.text.decode()}")
        return result

    def frame(self, number):
        return self.checked(self.library.FFMS_GetFrame(self.source, number, ctypes.byref(self.error))).contents

    def planes(self, number):
        frame = self.frame(number)
        rows = [numpy.ctypeslib.as_array(frame.data[i], (height, frame.linesize[i]))[:, :width].ravel()
                for i, (width, height) in enumerate([(WIDTH, HEIGHT)] + 2 * [(WIDTH // 2, HEIGHT // 2)])]
        return numpy.concatenate(rows)

    def convertToRgb(self):
        formats = (ctypes.c_int * 2)(self.library.FFMS_GetPixFmt(b"rgb24"), -1)
        bicubic = 4
        if self.library.FFMS_SetOutputFormatV2(self.source, formats, WIDTH, HEIGHT, bicubic, ctypes.byref(self.error)):
            self.checked(0)

    def rgb(self, number):
        frame = self.frame(number)
        row = numpy.ctypeslib.as_array(frame.data[0], (HEIGHT, frame.linesize[0]))[:, :WIDTH * 3]
        return row.reshape(HEIGHT, WIDTH, 3).copy()


def ffms2(file, path, truth):
    source = Ffms2(path)
    properties = source.properties
    planes = [source.planes(number) for number in range(properties.frames)]
    seeks = sum(numberOf(asOurLoaderConverts(source.planes(number))) == number for number in SEEKS)
    source.convertToRgb()
    return Reading("FFMS2", file, frames=properties.frames, rate=properties.fpsNumerator / properties.fpsDenominator,
                   colour=colourError(source.rgb(FRAMES - 1), truth.decoded[-1]), seeks=seeks,
                   planes=truth.arePlanesOurs(planes))


def opencv(file, path, truth):
    video = cv2.VideoCapture(str(path), cv2.CAP_FFMPEG)
    pictures = []
    while True:
        isRead, pixels = video.read()
        if not isRead:
            break
        pictures.append(pixels[..., ::-1])
    seeks = 0
    for number in SEEKS:
        video.set(cv2.CAP_PROP_POS_FRAMES, number)
        isRead, pixels = video.read()
        seeks += isRead and numberOf(pixels) == number
    return Reading("OpenCV", file, frames=len(pictures), rate=video.get(cv2.CAP_PROP_FPS), seeks=seeks,
                   colour=colourError(pictures[-1], truth.decoded[-1]),
                   note=f"counts {video.get(cv2.CAP_PROP_FRAME_COUNT):.0f}")


def readings(files, truth):
    for file, path in files.items():
        for library in gstreamer, ffms2, opencv:
            yield library(file, path, truth)
    yield gstreamerAsTold(files["raw"], truth)


def versions():
    ffms = ctypes.CDLL(ctypes.util.find_library("ffms2")).FFMS_GetVersion()
    return {"GStreamer": version(["gst-launch-1.0", "--version"], r"version (\S+)"),
            "FFMS2": f"{ffms >> 24}.{ffms >> 16 & 255}", "OpenCV": cv2.__version__}
