#!/usr/bin/env python3
"""Renders `korvane plot` to PNG with rsvg-convert and checks the picture is not blank: enough
pixels differ from the background, in enough distinct colours (the loci, the labels), and each
spectrum's own colour is there (its linear sRGB as `korvane analyze` reports it, at full strength
and encoded here) on enough pixels for its curve, legend swatch and point.
Usage: plot_check.py KORVANE OUTDIR SPECTRUM_FILE..."""
import collections
import json
import os
import struct
import subprocess
import sys
import zlib


def decode_png(path):
    """Width, height and rows of RGBA bytes of an 8-bit RGB or RGBA PNG (standard library)."""
    data = open(path, "rb").read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", "not a PNG"
    pos, idat, width = 8, b"", 0
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
            assert depth == 8 and colour in (2, 6), (depth, colour)
            channels = 4 if colour == 6 else 3
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    raw = zlib.decompress(idat)
    stride = width * channels
    rows, prev, i = [], bytearray(stride), 0
    for _ in range(height):
        f, line = raw[i], bytearray(raw[i + 1:i + 1 + stride])
        i += 1 + stride
        for x in range(stride):
            a = line[x - channels] if x >= channels else 0
            b = prev[x]
            c = prev[x - channels] if x >= channels else 0
            if f == 1:
                line[x] = (line[x] + a) & 255
            elif f == 2:
                line[x] = (line[x] + b) & 255
            elif f == 3:
                line[x] = (line[x] + (a + b) // 2) & 255
            elif f == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                line[x] = (line[x] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 255
        rows.append(bytes(line))
        prev = line
    return width, height, channels, rows


def own_colour(linear):
    """A light's colour as the plot paints it: its linear sRGB scaled to the largest channel,
    encoded by the sRGB curve (IEC 61966-2-1), to 8 bits."""
    top = max(linear)
    out = []
    for v in linear:
        v = min(max(v / top, 0.0), 1.0)
        v = 12.92 * v if v <= 0.0031308 else 1.055 * v ** (1 / 2.4) - 0.055
        out.append(round(v * 255))
    return tuple(out)


def main():
    tool, outdir, files = sys.argv[1], sys.argv[2], sys.argv[3:]
    os.makedirs(outdir, exist_ok=True)
    run = subprocess.run([tool, "analyze", "--json", *files], capture_output=True, text=True)
    assert run.returncode == 0, run.stderr
    expected = {s["name"]: own_colour(s["sRGB_linear"]) for s in json.loads(run.stdout)["spectra"]}
    svg, png = os.path.join(outdir, "plot.svg"), os.path.join(outdir, "plot.png")
    for ucs in ([], ["--ucs"]):
        run = subprocess.run([tool, "plot", *files, "-o", svg, *ucs], capture_output=True, text=True)
        assert run.returncode == 0, run.stderr
        count = f"{len(expected)} spectr{'um' if len(expected) == 1 else 'a'}"
        assert run.stdout == f"wrote {svg} ({count})\n", run.stdout
        subprocess.run(["rsvg-convert", "-o", png, svg], check=True)
        width, height, channels, rows = decode_png(png)
        assert (width, height) == (1100, 540), (width, height)
        background = rows[0][:3]
        colours, ink = collections.Counter(), 0
        for row in rows:
            for x in range(0, width * channels, channels):
                px = row[x:x + 3]
                colours[px] += 1
                if px != background:
                    ink += 1
        # A blank page has one colour; the figure has axes, grids, loci, labels and the spectra
        # in their colours: at least 5 % of the pixels inked and hundreds of colours.
        assert ink > 0.05 * width * height, ink
        assert len(colours) > 200, len(colours)
        # Each spectrum's colour, to a step of rounding per channel: at least 300 pixels (the
        # swatch is about 100, the point 60, the curve hundreds).
        for name, rgb in expected.items():
            near = sum(n for px, n in colours.items() if all(abs(px[c] - rgb[c]) <= 1
                                                             for c in range(3)))
            assert near >= 300, f"{name}: #{bytes(rgb).hex()} on {near} pixels"
        print(f"{' '.join(ucs) or 'xy'}: {ink} inked pixels of {width * height}, "
              f"{len(colours)} colours")


if __name__ == "__main__":
    main()
