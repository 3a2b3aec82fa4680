#include "plugin/models/SourceKind.h"

#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"

#include <typeinfo>

namespace Korvane {
// A type_info address that matches none (a model of another class, or, on a platform that keeps
// more than one type_info per class, a copy) sends the model to the questions, which give the
// same kind.
const KnownModel kKnownModels[kKnownModelCount] = {
    {&typeid(SpectralModel<Unpolarized>), SourceKind::Spectral},
    {&typeid(RGBModel<Unpolarized>), SourceKind::RGB},
    {&typeid(XYZModel), SourceKind::XYZ},
    {&typeid(XYYModel), SourceKind::XYY},
    {&typeid(BWModel<Unpolarized>), SourceKind::BW},
    {&typeid(SpectralModel<StokesPolarization>), SourceKind::Spectral},
    {&typeid(RGBModel<StokesPolarization>), SourceKind::RGB},
    {&typeid(BWModel<StokesPolarization>), SourceKind::BW},
};

SourceKind AskedKind(const ColorModel& src) {
    if (src.IsBW())
        return SourceKind::BW;
    if (src.IsRGB())
        return SourceKind::RGB;
    if (src.IsXYZ())
        return SourceKind::XYZ;
    if (src.IsXYY())
        return SourceKind::XYY;
    if (src.IsSpectral())
        return SourceKind::Spectral;
    return SourceKind::Other;
}

} // namespace Korvane
