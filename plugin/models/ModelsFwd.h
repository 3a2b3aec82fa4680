// The colour models, declared ahead: colour values, distributions and holders are keyed by the
// model they belong to and need no more of it than its name.
#pragma once

namespace Korvane {

template <class Pol>
class BWModel;
template <class Pol>
class RGBModel;
template <class Pol>
class SpectralModel;
class XYZModel;
class XYYModel;

} // namespace Korvane
