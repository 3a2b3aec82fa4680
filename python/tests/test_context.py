# The plug-in context: loading, the models it registers, the observer, unloading and reloading.
import os
import re

import numpy as np
import pytest

import korvane

from conftest import published


def test_the_default_plugin_is_loaded_with_its_models_in_registration_order():
    assert korvane.is_loaded()
    assert korvane.plugin_path() == korvane.default_plugin_path()
    assert os.path.isfile(korvane.plugin_path())
    assert korvane.version() == 263237
    assert korvane.models() == ["UBW", "StkBW", "URGB", "StkRGB", "USpectr", "StkSpectr",
                                "XYZ", "XYY"]
    np.testing.assert_array_equal(korvane.default_grid(), np.arange(390.0, 711.0, 10.0))


def test_unload_runs_term_classes_and_the_next_call_loads_again():
    path = korvane.plugin_path()
    korvane.unload()
    assert not korvane.is_loaded()
    korvane.unload()  # a second unload does nothing
    assert korvane.models()[0] == "UBW"  # loads the default plug-in again
    assert korvane.plugin_path() == path
    korvane.load(path)  # the file already loaded: nothing happens
    assert korvane.is_loaded()


def test_a_file_that_is_not_a_plugin_is_refused_with_the_loaders_report(tmp_path):
    bogus = tmp_path / "not-a-plugin.so"
    bogus.write_bytes(b"\x7fELF but not really")
    for other in (bogus, tmp_path / "missing.so"):
        with pytest.raises(korvane.KorvaneError, match="unload it first") as busy:
            korvane.load(str(other))
        assert busy.value.code == -1
    korvane.unload()
    with pytest.raises(korvane.KorvaneError) as refused:
        korvane.load(str(bogus))
    assert refused.value.code == 3  # the loader's ErrorMessageEx
    assert str(bogus) in refused.value.text
    assert refused.value.index is None
    assert not korvane.is_loaded()
    korvane.load()
    assert korvane.is_loaded()


def test_the_observer_changes_every_model_and_switching_back_restores_the_numbers():
    white = korvane.rgb_to_spectrum([1.0, 1.0, 1.0])
    xyz2 = korvane.convert(white, "USpectr", "XYZ")
    korvane.set_observer(10)
    assert korvane.observer() == 10
    xy10 = korvane.convert(white, "USpectr", "XYY")
    # CIE 15:2004 table T.3: D65 under the 1964 observer is x = 0.31382, y = 0.33100; the
    # spectrum is D65 on 33 points of 390..710 nm, which moves the fourth decimal.
    np.testing.assert_allclose(xy10[:2], [0.31382, 0.33100], atol=2e-3)
    korvane.set_observer(2)
    np.testing.assert_array_equal(korvane.convert(white, "USpectr", "XYZ"), xyz2)
    with pytest.raises(ValueError, match="2 .CIE 1931. or 10"):
        korvane.set_observer(4)


def test_reports_keep_the_library_log_lines():
    korvane.unload()
    korvane.load()
    texts = [text for kind, text in korvane.reports() if kind == "log"]
    assert any(re.fullmatch(r"RGB color model \d+ is created", t) for t in texts)


def refuse_a_conversion():
    with pytest.raises(korvane.KorvaneError) as refused:
        korvane.convert([0.2, 0.4, 0.6], "URGB", "StkSpectr")
    return refused.value


def test_reports_keep_the_latest_256_and_count_the_ones_let_go():
    assert korvane.reports_dropped() == 0
    refuse_a_conversion()
    per_failure = len(korvane.reports())
    assert per_failure >= 1
    korvane.clear_reports()
    for _ in range(300):
        refuse_a_conversion()
    kept = korvane.reports()
    assert len(kept) == 256
    assert korvane.reports_dropped() == 300 * per_failure - 256
    assert kept[-1] == ("error", "Not supported spectral light color conversion")
    # A failure with the collector full still carries its own report.
    assert refuse_a_conversion().reports == ["Not supported spectral light color conversion"]
    assert korvane.reports_dropped() == 300 * per_failure - 256 + per_failure
    korvane.clear_reports()
    assert korvane.reports() == []
    assert korvane.reports_dropped() == 0
