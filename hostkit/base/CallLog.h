// CallLog: an opt-in record of the host calls whose order a plug-in's lifetime is defined by, so
// that a test can check that order exactly. Off by default; while off, a recording call costs
// one atomic load and records nothing. Only configuration-time calls record (type deletion,
// model registration and destruction); no conversion or per-ray path does.
//
// Entries are "<call> <identifier>": "DeleteType URGBLgtColorHold" (or "DeleteType null" for a
// null pointer), "AddColorModel XYZ" (the model's name), "~ColorModel USpectr".
#pragma once

#include "hostkit/HostExport.h"

#include <string>
#include <vector>

namespace Korvane::CallLog {

// Clears the record and starts recording.
KOR_HOST_API void Start();
// Stops recording and returns what was recorded since Start, in call order.
KOR_HOST_API std::vector<std::string> Stop();
// Records "<call> <detail>" while recording is on; otherwise does nothing.
KOR_HOST_API void Record(const char* call, const std::string& detail);

// While set (non-empty), ColorModelType::AddColorModel refuses a model of this name as it
// refuses one already listed: an internal error, and its code as the result. Lets a test see
// what a plug-in does when the host refuses a registration. Empty (the default) refuses none.
KOR_HOST_API void RefuseRegistration(const std::string& modelName);
KOR_HOST_API bool IsRegistrationRefused(const std::string& modelName);

} // namespace Korvane::CallLog
