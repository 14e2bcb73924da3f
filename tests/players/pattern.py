"""The pictures that are recorded: each tells its number and shows colours whose right values are known."""

import numpy

WIDTH, HEIGHT = 1280, 720  # above standard definition, where players count on BT.709
FRAMES = 60
RATE = 30
# Neither key frames (every fifth is one) nor the order in which they are played; the first and the last too.
SEEKS = [30, 7, 52, 0, 59, 13, 12, 11, 44, 45, 3, 58, 29, 1, 36, 21, 20, 49, 9, 40]

# How far a colour may be off, of 255. The plug-in's own conversion differs from BT.601's exact factors by up to 2
# (per-mille factors, quotients cut off), and players add 1 to 2 of rounding. A misread range is off by 16 and more,
# a misread matrix by 20 and more.
TOLERANCE = 5

BIT, BITS = 160, 8  # blocks of the number: one row as it is, one inverted
PATCHES = [
    (0, 0, 0), (255, 255, 255), (255, 0, 0), (0, 255, 0), (0, 0, 255), (0, 255, 255), (255, 0, 255), (255, 255, 0),
    (8, 8, 8), (16, 16, 16), (64, 64, 64), (128, 128, 128), (235, 235, 235), (247, 247, 247), (210, 160, 130),
    (90, 110, 40),
]
PATCH, PATCHES_TOP, RAMP_TOP, STEP = 160, 160, 480, 5


def picture(number):
    """Picture NUMBER as HEIGHT x WIDTH x 3 bytes, red first."""
    pixels = numpy.zeros((HEIGHT, WIDTH, 3), numpy.uint8)
    for bit in range(BITS):
        isSet = number >> bit & 1
        pixels[:BIT // 2, bit * BIT:(bit + 1) * BIT] = 255 * isSet
        pixels[BIT // 2:BIT, bit * BIT:(bit + 1) * BIT] = 255 * (1 - isSet)
    for i, colour in enumerate(PATCHES):
        top, left = PATCHES_TOP + i // 8 * PATCH, i % 8 * PATCH
        pixels[top:top + PATCH, left:left + PATCH] = colour
    pixels[RAMP_TOP:] = numpy.repeat(numpy.arange(256, dtype=numpy.uint8), STEP)[None, :, None]
    return pixels


def numberOf(pixels):
    """The number that a shown picture tells, however its colours are read; None where it is no such picture."""
    if pixels is None or pixels.shape[:2] != (HEIGHT, WIDTH):
        return None
    number = 0
    for bit in range(BITS):
        block = slice(bit * BIT + BIT // 4, (bit + 1) * BIT - BIT // 4)
        upper, lower = pixels[20:60, block].mean(), pixels[100:140, block].mean()
        if abs(upper - lower) < 128:
            return None
        number |= (upper > lower) << bit
    return number


def samples(pixels):
    """The mean colour of the inside of each patch and of each step of the ramp."""
    inside = PATCH // 4
    patches = [pixels[PATCHES_TOP + i // 8 * PATCH + inside:PATCHES_TOP + (i // 8 + 1) * PATCH - inside,
                      i % 8 * PATCH + inside:(i % 8 + 1) * PATCH - inside].reshape(-1, 3).mean(0)
               for i in range(len(PATCHES))]
    return numpy.array(patches + list(pixels[RAMP_TOP + 40:HEIGHT - 40, STEP // 2::STEP].mean(0)))


def colourError(pixels, right):
    """By how much of 255 the worst of the colours differs from those of the picture RIGHT."""
    return float(numpy.abs(samples(pixels) - samples(right)).max())


def psnr(pixels, right):
    error = ((pixels.astype(float) - right.astype(float)) ** 2).mean()
    return float("inf") if error == 0 else float(10 * numpy.log10(255 ** 2 / error))
