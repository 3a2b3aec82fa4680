#include "hostkit/colormodel/ObserverChoice.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/colormodel/ColorModelType.h"

namespace Korvane {
namespace {

// The converter made by UseObserver; empty while the built-in default is current.
TPlugRef<CIEConvAll>& Chosen() {
    static TPlugRef<CIEConvAll> chosen;
    return chosen;
}

void MakeCurrent(const CIEConvAll* conv) {
    if (TColorModel)
        TColorModel->SetCIEConvAllForAll(conv);
}

} // namespace

int UseObserver(Observer observer) {
    if (observer == Observer::CIE1931_2deg) {
        ReleaseObserver();
        return 0;
    }
    TPlugRef<CIEConvAll> made = CIEConvAll::Create(observer);
    if (!made.Get())
        return kNoMemoryCode; // Create has reported ErrorNoMemory
    MakeCurrent(made.Get());
    Chosen() = made.Get(); // the previous choice is released only after nothing points at it
    return 0;
}

Observer CurrentObserver() {
    return ColorModel::GetCIEConv()->GetObserver();
}

void ReleaseObserver() {
    MakeCurrent(CIEConvAll::Default());
    Chosen() = nullptr;
}

} // namespace Korvane
