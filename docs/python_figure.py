"""Makes docs/python_figure.png: spectra that the spectral model reconstructs from three sRGB
colours, beside their chromaticities (and CCTs where they have one) in the CIE 1931 xy diagram.
Every number comes from the library through the module korvane.

    PYTHONPATH=build/default/python /usr/bin/python3 docs/python_figure.py [OUT.png]
"""
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402

import korvane  # noqa: E402

out = sys.argv[1] if len(sys.argv) > 1 else "docs/python_figure.png"

# Three light colours in linear sRGB, reconstructed as spectra on 380..780 nm at 5 nm.
colours = {"white": [1.0, 1.0, 1.0], "orange": [0.9, 0.35, 0.05], "teal": [0.05, 0.45, 0.4]}
grid = korvane.grid(380, 780, 5)
spectra = korvane.rgb_to_spectrum(np.array(list(colours.values())), grid=grid)
records = korvane.analyze(grid, spectra)  # the colorimetry of `korvane analyze`, per spectrum

# The spectral locus: the chromaticity of a unit spike at each wavelength of a 1 nm grid
# (each row of the identity matrix is one spike).
fine = korvane.grid(380, 700, 1)
locus = korvane.convert(np.eye(fine.size), "USpectr", "XYY", grid=fine)[:, :2]
# The sRGB gamut: the chromaticities of the three primaries.
gamut = korvane.convert(np.eye(3), "URGB", "XYY")[:, :2]

fig, (left, right) = plt.subplots(1, 2, figsize=(11, 4.6))
for (name, rgb), spectrum in zip(colours.items(), spectra):
    shown = np.clip(rgb, 0, 1) ** (1 / 2.2)  # a display colour for the curve
    left.plot(grid, spectrum, color=shown if name != "white" else "0.4", label=name)
left.set_xlabel("wavelength (nm)")
left.set_ylabel("spectral radiance (relative)")
left.set_title("Spectra reconstructed from sRGB (light)")
left.legend()

right.plot(locus[:, 0], locus[:, 1], color="black", linewidth=1)
right.plot(locus[[0, -1], 0], locus[[0, -1], 1], color="black", linewidth=1, linestyle=":")
for nm in (460, 480, 500, 520, 540, 560, 580, 600, 620):
    x, y = locus[nm - 380]
    right.annotate(f"{nm}", (x, y), textcoords="offset points", xytext=(4, 2), fontsize=7)
right.fill(gamut[:, 0], gamut[:, 1], facecolor="none", edgecolor="0.5", linestyle="--",
           label="sRGB gamut")
for (name, rgb), record in zip(colours.items(), records):
    x, y = record["xy"]
    cct = f", {record['CCT']:.0f} K" if record["CCT"] is not None else ""
    right.plot(x, y, "o", color=record["hex"], markeredgecolor="black")
    dx, dy, align = {"white": (8, -12, "left"), "teal": (-8, 6, "right")}.get(name, (6, 6, "left"))
    right.annotate(f"{name} ({x:.4f}, {y:.4f}{cct})", (x, y), textcoords="offset points",
                   xytext=(dx, dy), ha=align, fontsize=8)
right.set_xlim(0, 0.8)
right.set_ylim(0, 0.9)
right.set_aspect("equal")
right.set_xlabel("x")
right.set_ylabel("y")
right.set_title("CIE 1931 xy chromaticity")
right.legend(loc="upper right")
fig.tight_layout()
fig.savefig(out, dpi=110)
print(f"wrote {out}")
