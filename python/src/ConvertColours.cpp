#include "python/src/ConvertColours.h"

#include "python/src/Session.h"

namespace Korvane::Py {

void ConvertColours(const ColorModel& source, const ColorModel& target, Kind kind, const double* in,
                    std::size_t count, double* out) {
    ColourSlot from(source, kind);
    ColourSlot to(target, kind);
    const auto inStep = static_cast<std::size_t>(from.Doubles());
    const auto outStep = static_cast<std::size_t>(to.Doubles());
    const ReportCollector& reports = Session::Reports();
    const unsigned long long mark = reports.Mark();
    for (std::size_t i = 0; i < count; ++i) {
        from.Set(in + i * inStep);
        const int status = to.ConvertFrom(from);
        if (status != 0)
            ThrowFailure(reports, mark,
                         std::string("converting a ") + KindWord(kind) + " colour from " +
                             source.Name() + " to " + target.Name(),
                         status, static_cast<long long>(i));
        to.Get(out + i * outStep);
    }
}

} // namespace Korvane::Py
