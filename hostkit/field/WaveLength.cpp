#include "hostkit/field/WaveLength.h"

namespace Korvane {

SBFieldType<double>* TWaveLength = nullptr;

namespace {

// Makes the field type while the host library is initialised, before any plug-in can load,
// and deletes it when the host library is finalised, after every plug-in is gone.
struct WaveLengthField {
    WaveLengthField() {
        TWaveLength = new SBFieldType<double>("WaveLength", kWaveLengthBottomNm, kWaveLengthTopNm);
    }
    ~WaveLengthField() {
        PlugType* type = TWaveLength;
        TWaveLength = nullptr;
        DeleteType(type);
    }
    WaveLengthField(const WaveLengthField&) = delete;
    WaveLengthField& operator=(const WaveLengthField&) = delete;
};

const WaveLengthField gWaveLengthField;

} // namespace

} // namespace Korvane
