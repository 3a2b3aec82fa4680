# Shared set-up of the Python module's tests: the package from the build tree (PYTHONPATH), its
# default plug-in, and the tolerances the tests name.
import pytest

import korvane

# Round trips through a reconstructed spectrum: the reconstruction is exact to rounding on every
# grid, and a conversion sums some 30..500 products of values of order 1, each rounded to
# 2^-53; 1e-12 leaves room for that and nothing more (an error of the method would be >1e-4).
ROUND_TRIP = 1e-12

# Published figures quoted to a given number of decimals: half a unit of the last decimal.
def published(decimals):
    return 0.5 * 10.0 ** -decimals


@pytest.fixture(autouse=True)
def fresh_state():
    """Every test starts with the default plug-in, the 2 degree observer and no reports."""
    korvane.load()
    korvane.set_observer(2)
    korvane.clear_reports()
    yield
    if korvane.is_loaded():
        korvane.set_observer(2)
