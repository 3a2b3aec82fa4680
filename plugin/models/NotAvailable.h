// The answer of a model operation that this build of the library does not offer yet: an internal
// error naming the model and the operation ("BWModel<Unpolarized>::LgtEnergy: not available
// yet"), and a neutral result: the report's code for a status, otherwise zero, false or null.
// Nothing is written to the colours passed in.
#pragma once

#include <type_traits>

namespace Korvane {

// Reports the missing operation; returns the code of the report.
int ReportNotAvailable(const char* model, const char* operation);

template <class R = int>
R NotAvailable(const char* model, const char* operation) {
    const int code = ReportNotAvailable(model, operation);
    if constexpr (std::is_same_v<R, int>)
        return code;
    else if constexpr (!std::is_void_v<R>)
        return R{};
}

} // namespace Korvane
