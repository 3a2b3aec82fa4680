// Choosing the standard observer of the host's current CIE converter.
//
// The built-in converter uses the CIE 1931 2 degree observer; a converter for the CIE 1964
// 10 degree observer can be made (CIEConvAll::Create). UseObserver makes a converter for the
// observer the current one for every registered model (ColorModelType::SetCIEConvAllForAll), so
// that spectral models rebuild their tables, and keeps it alive until another observer is chosen
// or ReleaseObserver is called. Spectral models that a host made itself (MakeSpectralModel) are
// not in the registry: call their SetCIEConvAll slot with GetCIEConvAll() after choosing.
//
// A configuration-time call: no other thread may use the models meanwhile.
#pragma once

#include "hostkit/HostExport.h"
#include "hostkit/cie/CIEConv.h"

namespace Korvane {

// Makes a converter for `observer` current: CIE1931_2deg restores the built-in default
// (CIEConvAll::Default()). 0, or the code of the report made (ErrorNoMemory: the converter could
// not be made and the current one stays).
KOR_HOST_API int UseObserver(Observer observer);

// The observer of the current converter (GetCIEConv()).
KOR_HOST_API Observer CurrentObserver();

// Restores the built-in default and drops the converter UseObserver kept. A host that chose
// another observer calls it before it unloads the plug-in.
KOR_HOST_API void ReleaseObserver();

} // namespace Korvane
