#include "plugin/frame/Polarization.h"

namespace Korvane {

const char* Unpolarized::Tag() {
    return "U";
}
const char* Unpolarized::PolarName() {
    return "Unpolarized";
}

const char* StokesPolarization::Tag() {
    return "Stk";
}
const char* StokesPolarization::PolarName() {
    return "Polarized";
}

} // namespace Korvane
