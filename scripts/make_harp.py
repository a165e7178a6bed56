#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes harp.aif, the completion sound: a broken chord on plucked strings.

Each string is a short loop of noise that is averaged as it goes round (Karplus and Strong, 1983): the noise dies
away and leaves the pitch. The same bytes come out every time. Usage: make_harp.py OUTPUT
"""

import random
import struct
import sys

RATE = 44100  # frames a second
SECONDS = 1.6
CHORD = (392.00, 493.88, 587.33, 783.99)  # g' b' d'' g''
BETWEEN_NOTES = 0.09  # seconds
FADE = 0.25  # seconds at the end
PEAK = 0.7


def pluck(frequency, frames, rng):
    """One string, as `frames` numbers around 0."""
    loop = [rng.uniform(-1.0, 1.0) for _ in range(round(RATE / frequency))]
    for _ in range(2):  # a softer finger: less of the highest overtones
        loop = [(loop[i] + loop[i - 1]) / 2 for i in range(len(loop))]
    samples = []
    at = 0
    for _ in range(frames):
        following = at + 1 if at + 1 < len(loop) else 0
        samples.append(loop[at])
        loop[at] = 0.4985 * (loop[at] + loop[following])
        at = following
    return samples


def chord():
    """All strings, one after the other, as 16-bit samples."""
    rng = random.Random(1)
    frames = round(RATE * SECONDS)
    mix = [0.0] * frames
    for number, frequency in enumerate(CHORD):
        start = round(RATE * BETWEEN_NOTES * number)
        for i, sample in enumerate(pluck(frequency, frames - start, rng)):
            mix[start + i] += sample
    fade = round(RATE * FADE)
    for i in range(fade):
        mix[frames - 1 - i] *= i / fade
    scale = PEAK * 32767 / max(abs(sample) for sample in mix)
    return [round(sample * scale) for sample in mix]


def extended(number):
    """A whole number as the 80-bit floating point that AIFF wants for its rate."""
    exponent = number.bit_length() - 1
    return struct.pack(">HQ", 16383 + exponent, number << (63 - exponent))


def chunk(name, data):
    return name + struct.pack(">I", len(data)) + data + b"\0" * (len(data) % 2)


def aiff(samples):
    """A mono AIFF file (Audio Interchange File Format 1.3) of 16-bit samples."""
    common = struct.pack(">hIh", 1, len(samples), 16) + extended(RATE)
    sound = struct.pack(">II", 0, 0) + struct.pack(">%dh" % len(samples), *samples)
    return chunk(b"FORM", b"AIFF" + chunk(b"COMM", common) + chunk(b"SSND", sound))


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: make_harp.py OUTPUT")
    with open(sys.argv[1], "wb") as output:
        output.write(aiff(chord()))


if __name__ == "__main__":
    main()
