"""Readings in words, and as the table of docs/players.md."""

from pattern import SEEKS, TOLERANCE

KINDS = ["raw", "h264", "mp4", "mov", "mkv"]
BEGIN, END = "<!-- scripts/test-players --record writes from here -->", "<!-- to here -->"
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


def named(program, versions):
    """With its version; what it was told, if anything, comes behind a comma."""
    name, comma, told = program.partition(",")
    return f"{name} {versions[name]}{comma}{told}"


def shown(reading, versions):
    row = [named(reading.program, versions), NAMES[reading.file].strip("`")] + cells(reading)
    return "  ".join(f"{cell:<{width}}" for cell, width in zip(row, (36, 5, 13, 9, 36, 8))).rstrip()


def write(path, readings, versions):
    """Puts the table between its marks; files that a program reads alike share a row."""
    rows = []
    names = list(dict.fromkeys(reading.program for reading in readings))
    for reading in sorted(readings, key=lambda reading: names.index(reading.program)):
        row = [reading.program, NAMES[reading.file], *cells(reading)]
        same = next((old for old in rows if old[0] == row[0] and old[2:] == row[2:]), None)
        if same:
            same[1] += ", " + row[1]
        else:
            rows.append(row)
    lines = ["| program | file | rate | pictures | colours | seeking |", "|---|---|---|---|---|---|"]
    for i, (program, *rest) in enumerate(rows):
        isRepeated = i > 0 and rows[i - 1][0] == program
        lines.append("| " + " | ".join(["" if isRepeated else named(program, versions), *rest]) + " |")
    text = path.read_text()
    before, rest = text.split(BEGIN)
    after = rest.split(END)[1]
    path.write_text(before + BEGIN + "\n\n" + "\n".join(lines) + "\n\n" + END + after)
