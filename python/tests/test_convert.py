# Conversions through the models' ConvertColor, vectorised over rows: shapes, grids, round trips,
# published values and failures.
import time

import numpy as np
import pytest

import korvane

from conftest import ROUND_TRIP, published


@pytest.fixture
def rng():
    return np.random.default_rng(20261125)


def test_srgb_primaries_and_white_have_their_published_chromaticities():
    # IEC 61966-2-1: primaries (0.64, 0.33), (0.30, 0.60), (0.15, 0.06); white D65
    # (0.3127, 0.3290); Y of the primaries 0.2126, 0.7152, 0.0722 (ITU-R BT.709).
    xyy = korvane.convert(np.vstack([np.eye(3), np.ones(3)]), "URGB", "XYY")
    np.testing.assert_allclose(xyy[:, :2], [[0.64, 0.33], [0.30, 0.60], [0.15, 0.06],
                                            [0.3127, 0.3290]], atol=published(4))
    np.testing.assert_allclose(xyy[:3, 2], [0.2126, 0.7152, 0.0722], atol=published(4))


def test_shapes_one_colour_many_colours_and_flattened_stokes():
    one = korvane.convert([0.2, 0.4, 0.6], "URGB", "USpectr")
    assert one.shape == (33,) and one.dtype == np.float64
    many = korvane.convert([[0.2, 0.4, 0.6]] * 5, "URGB", "USpectr")
    assert many.shape == (5, 33)
    np.testing.assert_array_equal(many[3], one)
    stokes = korvane.convert([[0.2, 0.4, 0.6]] * 2, "URGB", "StkRGB")
    assert stokes.shape == (2, 3, 4)
    np.testing.assert_array_equal(stokes[1], [[0.2, 0, 0, 0], [0.4, 0, 0, 0], [0.6, 0, 0, 0]])
    # The same Stokes colours, flattened to one row of 12 doubles each, go back alike.
    back = korvane.convert(stokes.reshape(2, 12), "StkRGB", "URGB")
    np.testing.assert_array_equal(back, [[0.2, 0.4, 0.6]] * 2)
    assert korvane.convert(0.5, "UBW", "StkSpectr").shape == (33, 4)
    assert korvane.convert([0.5, 0.25], "UBW", "StkSpectr", kind="surface").shape == (2, 33, 4, 4)
    assert korvane.convert(np.zeros((0, 3)), "URGB", "XYZ").shape == (0, 3)


def test_values_of_the_wrong_shape_or_names_that_do_not_exist_are_refused():
    with pytest.raises(ValueError, match=r"one colour has shape \(3,\), many \(N, 3\)"):
        korvane.convert([[0.1, 0.2]], "URGB", "XYZ")
    with pytest.raises(ValueError, match='no colour model "RGB"'):
        korvane.convert([0.1, 0.2, 0.3], "RGB", "XYZ")
    with pytest.raises(ValueError, match='kind must be "light", "surface" or "scalar"'):
        korvane.convert([0.1, 0.2, 0.3], "URGB", "XYZ", kind="ray")
    with pytest.raises(ValueError, match="neither URGB nor XYZ is a spectral model"):
        korvane.convert([0.1, 0.2, 0.3], "URGB", "XYZ", grid=[400.0, 500.0])
    with pytest.raises(TypeError):
        korvane.convert([["a", "b", "c"]], "URGB", "XYZ")


@pytest.mark.parametrize("kind", ["light", "surface"])
def test_rgb_to_spectrum_and_back_is_exact_to_rounding_on_any_grid(rng, kind):
    # Colours away from the gamut's edge: their reconstructed light has no negative lobe that
    # the light clamp would remove.
    rgb = rng.uniform(0.2, 0.8, size=(2000, 3))
    for grid in (None, korvane.grid(380, 780, 5), korvane.grid(360, 830, 1)):
        spectra = korvane.rgb_to_spectrum(rgb, grid=grid, kind=kind)
        back = korvane.convert(spectra, "USpectr", "URGB", kind=kind, grid=grid)
        np.testing.assert_allclose(back, rgb, rtol=0, atol=ROUND_TRIP)


def test_xyz_and_xyy_round_trip_through_a_spectrum(rng):
    xyz = korvane.convert(rng.uniform(0.2, 0.8, size=(500, 3)), "URGB", "XYZ")
    spectra = korvane.convert(xyz, "XYZ", "USpectr", grid=korvane.grid(380, 780, 5))
    back = korvane.convert(spectra, "USpectr", "XYY", grid=korvane.grid(380, 780, 5))
    np.testing.assert_allclose(korvane.convert(back, "XYY", "XYZ"), xyz, atol=ROUND_TRIP)


def test_resampling_holds_end_values_and_keeps_xyz_on_a_finer_grid_with_the_same_ends():
    coarse = korvane.grid(380, 780, 20)
    spectrum = korvane.rgb_to_spectrum([0.3, 0.5, 0.2], grid=coarse)
    fine = korvane.grid(380, 780, 5)  # holds every coarse wavelength
    resampled = korvane.resample(spectrum, coarse, fine)
    np.testing.assert_array_equal(resampled[::4], spectrum)  # the samples themselves, bit for bit
    np.testing.assert_allclose(korvane.convert(resampled, "USpectr", "XYZ", grid=fine),
                               korvane.convert(spectrum, "USpectr", "XYZ", grid=coarse),
                               rtol=ROUND_TRIP)
    wider = korvane.resample(spectrum, coarse, [300.0, 380.0, 780.0, 900.0])
    np.testing.assert_array_equal(wider, spectrum[[0, 0, -1, -1]])


def test_a_refused_conversion_raises_with_the_models_report_text_and_code():
    with pytest.raises(korvane.KorvaneError) as refused:
        korvane.convert([[0.2, 0.4, 0.6]] * 3, "URGB", "StkSpectr")
    e = refused.value
    assert e.text == "Not supported spectral light color conversion"
    assert e.code == 3
    assert e.index == 0
    assert e.reports == ["Not supported spectral light color conversion"]
    assert "URGB to StkSpectr (colour 0)" in str(e)


def test_a_grid_that_cannot_show_three_colours_fails_the_reconstruction():
    with pytest.raises(korvane.KorvaneError) as failed:
        korvane.rgb_to_spectrum([0.2, 0.4, 0.6], grid=[550.0])
    assert failed.value.text == "Error converting RGB to spectrum"
    assert failed.value.code == 3


def test_a_grid_the_spectral_model_refuses_is_an_error_naming_why():
    with pytest.raises(korvane.KorvaneError, match="positive and increasing"):
        korvane.rgb_to_spectrum([0.2, 0.4, 0.6], grid=[500.0, 400.0, 600.0])


def test_a_million_colours_convert_without_per_colour_python_overhead(rng):
    rgb = rng.random((1_000_000, 3))
    start = time.process_time()
    spectra = korvane.convert(rgb, "URGB", "USpectr")
    cpu = time.process_time() - start
    assert spectra.shape == (1_000_000, 33)
    # 0.2 s of CPU for the conversions on the development machine, 0.2 to 1.3 s with the first
    # touch of the 264 MB result; a Python object per colour would cost several seconds more.
    # CPU time, not wall time, because the test machines are shared; the bound leaves room for
    # slower machines and debug builds.
    assert cpu < 5.0, f"{cpu:.2f} s of CPU for a million conversions"
    np.testing.assert_array_equal(spectra[123456], korvane.convert(rgb[123456], "URGB",
                                                                   "USpectr"))


def test_grids_longer_than_a_model_is_made_on_are_refused_before_any_work():
    with pytest.raises(ValueError, match="grid of 20001 wavelengths is longer than the 20000"):
        korvane.rgb_to_spectrum([0.2, 0.4, 0.6], grid=korvane.grid(300, 300 + 20000 * 0.02, 0.02))
