#include "hostkit/field/SBFieldType.h"

namespace Korvane {

template class SBFieldType<double>;

} // namespace Korvane
