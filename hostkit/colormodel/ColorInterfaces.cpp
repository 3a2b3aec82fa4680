#include "hostkit/colormodel/ColorInterfaces.h"

namespace Korvane {

ColorCurves::~ColorCurves() = default;

} // namespace Korvane
