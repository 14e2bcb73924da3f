"""Readings in words."""

from pattern import SEEKS, TOLERANCE

KINDS = ["raw", "h264", "mp4", "mov", "mkv"]
NAMES = {"raw": "raw", "h264": "`.h264`", "mp4": "MP4", "mov": "MOV", "mkv": "MKV"}


def rate(reading):
    if reading.rate is None:
        return ""
    return f"{reading.rate:.4g}" if reading.rate else "none"


def colour(reading):
    if reading.tags is not None:
        return reading.note
    if reading.colour is None:
        return ""
    quality = f", {reading.psnr:.1f} dB" if reading.psnr else ""
    return f"{'right' if reading.colour <= TOLERANCE else 'wrong'} ({reading.colour:.0f}{quality})"


def seeking(reading):
    return "" if reading.seeks is None else f"{reading.seeks} of {len(SEEKS)}"


def pictures(reading):
    if reading.frames is None:
        return ""
    return f"{reading.frames}{', ours' if reading.planes else ', not ours' if reading.planes is False else ''}"


def cells(reading):
    if not reading.opens:
        return ["does not open", "", "", ""]
    return [rate(reading), pictures(reading), colour(reading), seeking(reading)]


def shown(reading, versions):
    version = versions.get(reading.program.split(",")[0], "")
    row = [f"{reading.program} {version}", NAMES[reading.file].strip("`")] + cells(reading)
    return "  ".join(f"{cell:<{width}}" for cell, width in zip(row, (34, 5, 13, 9, 36, 8))).rstrip()
