#include "plugin/models/NotAvailable.h"

#include "hostkit/base/User.h"

namespace Korvane {

int ReportNotAvailable(const char* model, const char* operation) {
    return User()->InternalError("%s::%s: not available yet", model, operation);
}

} // namespace Korvane
