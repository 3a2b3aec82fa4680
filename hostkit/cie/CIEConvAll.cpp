#include "hostkit/cie/CIEConvAll.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvImpl.h"
#include "hostkit/cie/CurrentConv.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace Korvane {
namespace {

CIEConvAllType gConvAllType;

// Storage of the built-in default converter. It is constructed in place, holds one reference it
// never drops (so no PlugRef release can delete it) and is never destroyed, so plugs that still
// reference it while the process ends release a live object.
alignas(CIEConvAll) unsigned char gDefaultStorage[sizeof(CIEConvAll)];

} // namespace

CIEConvAllType* TCIEConvAll = &gConvAllType;

CIEConvAll::CIEConvAll(Observer observer) : CIEConv(observer) {}

CIEConvAll* CIEConvAll::Create(Observer observer) {
    CIEConvAll* conv = new CIEConvAll(observer);
    if (conv && conv->impl_ && conv->impl_->ready)
        return conv;
    delete conv;
    User()->ErrorNoMemory(static_cast<long long>(sizeof(CIEConvAll) + sizeof(Impl)));
    return nullptr;
}

const CIEConvAll* CIEConvAll::Default() {
    static const CIEConvAll* const conv = [] {
        auto* c = ::new (static_cast<void*>(gDefaultStorage)) CIEConvAll(Observer::CIE1931_2deg);
        if (!c->impl_ || !c->impl_->ready) {
            std::fputs("korvane: no memory for the built-in CIE converter\n", stderr);
            std::abort();
        }
        c->AddRef();
        Cie::gDefaultConv.store(c, std::memory_order_release);
        return c;
    }();
    return conv;
}

PlugType* CIEConvAll::ObjType() const {
    return TCIEConvAll;
}

int CIEConvAll::RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves, double* out,
                             int n) const {
    return impl_->Reconstruct(rgb, waves, out, n, false);
}

int CIEConvAll::RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves,
                             TArray<double>& out) const {
    return impl_->ReconstructInto(rgb, waves, out, false);
}

int CIEConvAll::RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves,
                             BArray<double>& out) const {
    return impl_->Reconstruct(rgb, waves, out.Data(), out.Count(), false);
}

int CIEConvAll::RGB2SpectrumAttr(const TVect3<double>& rgb, const TArray<double>& waves,
                                 double* out, int n) const {
    return impl_->Reconstruct(rgb, waves, out, n, true);
}

int CIEConvAll::RGB2Spectrum(const TVect3<double>& rgb, const CIEGrid& grid,
                             const TArray<double>& waves, double* out, int n) const {
    return impl_->Reconstruct(rgb, grid, waves, out, n, false);
}

int CIEConvAll::RGB2SpectrumAttr(const TVect3<double>& rgb, const CIEGrid& grid,
                                 const TArray<double>& waves, double* out, int n) const {
    return impl_->Reconstruct(rgb, grid, waves, out, n, true);
}

int CIEConvAll::RGB2SpectrumAttr(const TVect3<double>& rgb, const TArray<double>& waves,
                                 TArray<double>& out) const {
    return impl_->ReconstructInto(rgb, waves, out, true);
}

int CIEConvAll::XYZ2Spectrum(const TVect3<double>& xyz, const TArray<double>& waves,
                             TArray<double>& out) const {
    return RGB2Spectrum(impl_->xyz2rgb * xyz, waves, out);
}

int CIEConvAll::XYZ2SpectrumAttr(const TVect3<double>& xyz, const TArray<double>& waves,
                                 TArray<double>& out) const {
    return RGB2SpectrumAttr(impl_->xyz2rgb * xyz, waves, out);
}

double CIEConvAll::RGB2Watts(const TVect3<double>& rgb) const {
    const TVect3<double>& w = impl_->watts;
    return w.x * rgb.x + w.y * rgb.y + w.z * rgb.z;
}

CIEConvAllType::CIEConvAllType() : PlugType("CIEConvAll", nullptr, false, nullptr) {}

Plug* CIEConvAllType::NewInstance() {
    return CIEConvAll::Create();
}

double CIEConvAllType::XYZ2Watts(double X, double Y, double Z) const {
    const auto* conv = dynamic_cast<const CIEConvAll*>(CIEConv::Current());
    if (!conv)
        conv = CIEConvAll::Default();
    return conv->RGB2Watts(conv->XYZ2RGB() * TVect3<double>{X, Y, Z});
}

// The default converter exists from the moment the host library is loaded.
namespace {
const CIEConvAll* const gDefaultAtLoad = CIEConvAll::Default();
} // namespace

} // namespace Korvane
