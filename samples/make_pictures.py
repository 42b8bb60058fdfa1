#!/usr/bin/env python3
"""Draws the invoice's pictures: harbour.jpg (with ImageMagick's convert) and dial.png."""
import math
import pathlib
import random
import struct
import subprocess
import zlib

HERE = pathlib.Path(__file__).parent


def mix(a, b, t):
    t = min(max(t, 0), 1)
    return tuple(x + (y - x) * t for x, y in zip(a, b))


def harbour(width=500, height=250):
    """Dusk over a bay: sky, sun, two ranges of hills with a lighthouse, rippled water."""
    horizon, sun = 152, (345, 128)
    ripple = random.Random(1)
    shift = [ripple.gauss(0, 1) for _ in range(height)]

    def hills(x, base, rise, phase):
        return base - rise * (1 + math.sin(x / 71 + phase) + .5 * math.sin(x / 29 + 3 * phase)
                              + .12 * math.sin(x / 5 + phase))

    def above(x, y):
        colour = mix((38, 58, 96), (236, 150, 92), (y / horizon) ** 1.7)
        distance = math.hypot(x - sun[0], (y - sun[1]) * 1.15)
        colour = mix(colour, (255, 214, 140), math.exp(-distance / 55))
        if distance < 13:
            colour = (255, 244, 214)
        if y > hills(x, 150, 11, 1.2):
            colour = mix((96, 84, 112), (190, 118, 96), math.exp(-abs(x - sun[0]) / 90))
        tower = abs(x - 205) < 4.5 - (y < 96) - (y < 88) and 84 < y < 140
        if tower or y > hills(x, 158, 9, 4.6) + 40 * (x > 230) * (x - 230) / 230:
            colour = (34, 38, 58)
        if math.hypot(x - 205, y - 90) < 3:
            colour = (255, 226, 150)
        return colour

    rows = bytearray()
    for y in range(height):
        for x in range(width):
            if y <= horizon:
                colour = above(x, y)
            else:
                depth = y - horizon
                sway = shift[y] * (1 + depth / 14) + 2 * math.sin(x / (6 + depth / 5) + y * 1.7)
                colour = mix(above(x + sway, horizon - depth * 1.25 + sway), (22, 40, 62),
                             .25 + depth / 220)
            rows += bytes(int(min(max(c, 0), 255)) for c in colour)
    subprocess.run(['convert', '-size', f'{width}x{height}', '-depth', '8', 'rgb:-',
                    '-quality', '90', str(HERE / 'harbour.jpg')], input=rows, check=True)


def dial(size=168, samples=3):
    """The dial of a tide clock, with a transparent ground."""
    def sample(x, y):
        x, y = x - .5, y - .5
        radius, angle = math.hypot(x, y), math.atan2(x, -y)
        if radius > .49:
            return None
        if radius > .42:
            return mix((112, 78, 30), (240, 208, 140), .5 + .5 * math.sin(angle * 2 + radius * 40))
        hour = (angle / (2 * math.pi) * 12 + .5) % 1 - .5
        if .34 < radius < .39 and abs(hour) * radius < .012:
            return (60, 50, 40)
        along = x * math.sin(.9) - y * math.cos(.9)  # the hand points between two and three
        across = abs(x * math.cos(.9) + y * math.sin(.9))
        if radius < .035 or (0 < along < .33 and across < .02 * (1 - along / .33) + .003):
            return (150, 40, 32)
        if y > .06 + .018 * math.sin(x * 42) and radius < .32:
            return mix((52, 120, 140), (20, 62, 84), (y - .06) / .25)
        return mix((252, 246, 230), (226, 212, 182), radius / .42)

    rows = bytearray()
    for row in range(size):
        line = bytearray()
        for column in range(size):
            hits = [colour for i in range(samples) for j in range(samples)
                    if (colour := sample((column + (i + .5) / samples) / size,
                                         (row + (j + .5) / samples) / size))]
            mean = [sum(c[k] for c in hits) // max(len(hits), 1) for k in range(3)]
            line += bytes(int(c) for c in mean) + bytes([255 * len(hits) // samples ** 2])
        rows += b'\1' + bytes((line[i] - (line[i - 4] if i >= 4 else 0)) & 255
                              for i in range(len(line)))

    def chunk(kind, data):
        return (struct.pack('>I', len(data)) + kind + data
                + struct.pack('>I', zlib.crc32(kind + data)))

    (HERE / 'dial.png').write_bytes(
        b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>2I5B', size, size, 8, 6, 0, 0, 0))
        + chunk(b'IDAT', zlib.compress(bytes(rows), 9)) + chunk(b'IEND', b''))


harbour()
dial()
