# Holders in plug files: what is written, what reads back, and files that are not holders.
import numpy as np
import pytest

import korvane


def test_a_text_archive_holds_the_holder_type_and_the_colour_as_written(tmp_path):
    path = tmp_path / "rgb.txt"
    korvane.save_holder(str(path), [0.25, 0.5, 1.0], "URGB", format="text")
    lines = path.read_text().splitlines()
    assert lines[:7] == ['korvane-archive text 1', 'string "URGBLgtColorHold"', 'group "Color"',
                         '  double 0.25', '  double 0.5', '  double 1', 'endgroup "Color"']
    held = korvane.load_holder(str(path))
    assert (held.type, held.model, held.kind, held.xort) == ("URGBLgtColorHold", "URGB",
                                                             "light", None)
    np.testing.assert_array_equal(held.values, [0.25, 0.5, 1.0])


@pytest.mark.parametrize("fmt", ["binary", "text"])
def test_spectral_and_stokes_colours_read_back_bit_for_bit(tmp_path, fmt):
    grid = korvane.grid(380, 780, 5)
    spectrum = korvane.rgb_to_spectrum([0.1, 0.7, 0.3], grid=grid, kind="surface")
    korvane.save_holder(str(tmp_path / "s"), spectrum, "USpectr", "surface", grid, fmt)
    held = korvane.load_holder(str(tmp_path / "s"))
    assert (held.type, held.kind) == ("USpectrSurfColorHold", "surface")
    np.testing.assert_array_equal(held.values, spectrum)  # 81 samples: as many as stored

    mueller = np.arange(48.0).reshape(3, 4, 4) / 64.0
    korvane.save_holder(str(tmp_path / "m"), mueller, "StkRGB", "surface", format=fmt)
    held = korvane.load_holder(str(tmp_path / "m"))
    assert held.type == "StkRGBSurfColorHold"
    np.testing.assert_array_equal(held.values, mueller)


def test_xyz_colours_live_in_rgb_holders(tmp_path):
    korvane.save_holder(str(tmp_path / "xyz"), [0.95, 1.0, 1.09], "XYZ")
    held = korvane.load_holder(str(tmp_path / "xyz"))
    assert (held.type, held.model) == ("URGBLgtColorHold", "URGB")
    np.testing.assert_array_equal(held.values, [0.95, 1.0, 1.09])


def test_missing_damaged_and_truncated_files_are_errors_naming_the_file(tmp_path):
    with pytest.raises(korvane.KorvaneError, match="cannot open .*nowhere"):
        korvane.load_holder(str(tmp_path / "nowhere"))
    path = tmp_path / "rgb"
    korvane.save_holder(str(path), [0.25, 0.5, 1.0], "URGB")
    whole = path.read_bytes()
    path.write_bytes(whole[: len(whole) // 2])
    with pytest.raises(korvane.KorvaneError, match="rgb.*truncated or damaged") as truncated:
        korvane.load_holder(str(path))
    assert truncated.value.code == -1
    path.write_bytes(b"garbage" * 10)
    with pytest.raises(korvane.KorvaneError, match="rgb"):
        korvane.load_holder(str(path))


def test_a_holder_keeps_one_colour_and_an_unwritable_path_reports_the_hosts_error(tmp_path):
    with pytest.raises(ValueError, match="a holder keeps one colour"):
        korvane.save_holder(str(tmp_path / "two"), [[0.1, 0.2, 0.3]] * 2, "URGB")
    with pytest.raises(korvane.KorvaneError) as failed:
        korvane.save_holder(str(tmp_path / "no" / "such" / "dir"), [0.1, 0.2, 0.3], "URGB")
    assert failed.value.code == 3  # the host's ErrorMessageEx
    assert failed.value.text.startswith(f'PlugFile: cannot create "{tmp_path / "no"}')
