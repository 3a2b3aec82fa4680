// The colour models, declared ahead: colour values, distributions and holders are keyed by the
// model they belong to and need no more of it than its name. The declarations carry the export
// mark of the definitions: a class template instantiated on a model (a model's base, a holder)
// takes its visibility from the first declaration of the model that it sees.
#pragma once

#include "plugin/PluginExport.h"

namespace Korvane {

template <class Pol>
class KOR_PLUGIN_API BWModel;
template <class Pol>
class KOR_PLUGIN_API RGBModel;
template <class Pol>
class KOR_PLUGIN_API SpectralModel;
class KOR_PLUGIN_API XYZModel;
class KOR_PLUGIN_API XYYModel;

} // namespace Korvane
