// Every tolerance the tests use, with the reason for its size.
#pragma once

namespace Korvane::Tol {

// Results that are exact by construction (copies, bit-exact round trips) are compared with ==.

} // namespace Korvane::Tol
