"""Korvane colour models for Python.

The colour-model plug-in, loaded through the host kit as any host loads it, with NumPy arrays in
and out: conversions between the models through their own ``ConvertColor``, spectra
reconstructed from RGB, resampling onto other grids, holders saved to and loaded from plug
files, and the colorimetry of spectra (``korvane.analyze``, the figures of the command-line
tool's ``analyze``). Every number is the library's own.

    >>> import korvane
    >>> korvane.models()
    ['UBW', 'StkBW', 'URGB', 'StkRGB', 'USpectr', 'StkSpectr', 'XYZ', 'XYY']
    >>> spectra = korvane.convert([[1, 1, 1], [0.2, 0.4, 0.6]], "URGB", "USpectr")
    >>> spectra.shape
    (2, 33)

The default plug-in is the one beside the package in the build tree, else the installed one;
``korvane.load(path)`` or the environment variable ``KORVANE_PLUGIN`` choose another.
Failures raise :class:`KorvaneError`, carrying the library's report text and code.
"""

from __future__ import annotations

import atexit as _atexit
from typing import NamedTuple as _NamedTuple
from typing import Optional as _Optional
from typing import Tuple as _Tuple

import numpy as _np
import numpy.typing as _npt

from ._korvane import (
    KorvaneError,
    _load_holder,
    analyze,
    clear_reports,
    convert,
    default_grid,
    default_plugin_path,
    is_loaded,
    load,
    models,
    observer,
    plugin_path,
    reports,
    reports_dropped,
    save_holder,
    set_observer,
    unload,
    version,
)

__all__ = [
    "Holder",
    "KorvaneError",
    "analyze",
    "clear_reports",
    "convert",
    "default_grid",
    "default_plugin_path",
    "grid",
    "is_loaded",
    "load",
    "load_holder",
    "models",
    "observer",
    "plugin_path",
    "reports",
    "reports_dropped",
    "resample",
    "rgb_to_spectrum",
    "save_holder",
    "set_observer",
    "unload",
    "version",
]

__version__ = "0.1.0"

# The plug-in's TermClasses runs while the interpreter and the host kit are still whole.
_atexit.register(unload)


def grid(first: float, last: float, step: float) -> _np.ndarray:
    """Wavelengths first, first + step, ... up to last (in nm), as a float64 array.

    Each wavelength is ``first + i * step`` (no running sum); ``last`` is included when it lies
    on the grid up to a rounding of one part in 10^9 of the step.
    """
    if not (step > 0 and last >= first):
        raise ValueError("grid needs first <= last and a positive step")
    count = int(_np.floor((last - first) / step + 1e-9)) + 1
    return first + step * _np.arange(count, dtype=_np.float64)


def rgb_to_spectrum(rgb: _npt.ArrayLike, grid: _Optional[_npt.ArrayLike] = None,
                    kind: str = "light") -> _np.ndarray:
    """Spectra of linear sRGB colours (one per row): light (a D65-shaped spectrum for white) or
    surface (a reflectance, 1 everywhere for white), as the unpolarized spectral model
    reconstructs them on ``grid`` (default: its own grid)."""
    return convert(rgb, "URGB", "USpectr", kind, grid)


def resample(values: _npt.ArrayLike, wavelengths: _npt.ArrayLike, grid: _npt.ArrayLike,
             kind: str = "light") -> _np.ndarray:
    """Spectra sampled on ``wavelengths`` (one per row) resampled onto ``grid`` through the
    spectral model's own conversion: linear between samples, held at the end values outside
    the source range."""
    return convert(values, "USpectr", "USpectr", kind, grid, source_grid=wavelengths)


class Holder(_NamedTuple):
    """A colour read from a holder's plug file."""

    type: str
    """The holder's plug type, e.g. ``"USpectrLgtColorHold"``."""
    model: str
    """The model identifier, e.g. ``"USpectr"`` (XYZ and xyY colours read back as ``"URGB"``)."""
    kind: str
    """``"light"``, ``"ray"``, ``"surface"`` or ``"scalar"``."""
    values: _np.ndarray
    """The colour; a spectral colour has as many samples as it stored."""
    xort: _Optional[_Tuple[float, float, float]]
    """A polarized ray colour's X orientation, else None."""


def load_holder(path: str) -> Holder:
    """Reads a light, ray, surface or scalar colour holder from a plug file (either format)."""
    d = _load_holder(path)
    xort = d["xort"]
    return Holder(d["type"], d["model"], d["kind"], d["values"],
                  None if xort is None else tuple(xort))

