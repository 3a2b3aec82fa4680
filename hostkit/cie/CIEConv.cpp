#include "hostkit/cie/CIEConv.h"

#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/cie/CIEConvImpl.h"
#include "hostkit/cie/CurrentConv.h"
#include "hostkit/cie/RGBSpace.h"

#include <atomic>
#include <new>

namespace Korvane {

std::atomic<const CIEConv*> Cie::gCurrentConv{nullptr};
std::atomic<const CIEConv*> Cie::gDefaultConv{nullptr};

namespace {

std::atomic<std::uint64_t> gSerial{0};

const Cie::RGBSpaceMatrices& SRGB() {
    static const Cie::RGBSpaceMatrices space = [] {
        Cie::RGBSpaceMatrices s{};
        Cie::DeriveRGBSpace(Cie::kSRGBRed, Cie::kSRGBGreen, Cie::kSRGBBlue, Cie::kSRGBWhite, s);
        return s;
    }();
    return space;
}

// What XYZ2RGB gives of a converter whose state could not be allocated (Create refuses it).
const TMatrix3 kNoMatrix{};

TVect3<double> Zero() {
    return {0.0, 0.0, 0.0};
}

TVect3<double> NormalizeBySum(const TVect3<double>& v, bool normalize) {
    const double sum = v.x + v.y + v.z;
    if (!normalize || sum == 0.0)
        return v;
    return {v.x / sum, v.y / sum, v.z / sum};
}

// Trapezoid weight of sample i: half the span of its neighbours inside, half the single step at
// either end; 1 (a band of 1 nm) on a one-point grid.
double TrapezoidWeight(const double* w, int n, int i) {
    if (n < 2)
        return 1.0;
    const int lo = i > 0 ? i - 1 : 0;
    const int hi = i < n - 1 ? i + 1 : n - 1;
    return (w[hi] - w[lo]) * 0.5;
}

} // namespace

// -- state ----------------------------------------------------------------------------------------

CIEConv::Impl::Impl(Observer obs)
    : serial(gSerial.fetch_add(1, std::memory_order_relaxed) + 1), observer(obs),
      cmf(Cie::Cmf(obs)), xyz2rgb(SRGB().xyz2rgb),
      rgb2xyz(SRGB().rgb2xyz), luminance{SRGB().rgb2xyz.m[1][0], SRGB().rgb2xyz.m[1][1],
                                         SRGB().rgb2xyz.m[1][2]},
      locus(cmf), grids(cmf, xyz2rgb) {
    Cie::GridStatus status;
    const Cie::GridTablesRef t = grids.Get(Cie::CmfWavelengths(), Cie::kCmfCount, status);
    if (!t || !t->lightInvertible)
        return;
    const double* w = Cie::CmfWavelengths();
    for (int i = 0; i < Cie::kCmfCount; ++i) {
        const double trap = TrapezoidWeight(w, Cie::kCmfCount, i);
        for (int k = 0; k < 3; ++k)
            watts[k] += trap * t->reconLight[k * Cie::kCmfCount + i];
    }
    ready = true;
}

int CIEConv::Impl::Tables(const TArray<double>& waves, int count, Cie::GridTablesRef& out) const {
    const int n = waves.Count();
    if (n == 0 || count != n)
        return -1;
    Cie::GridStatus status;
    out = grids.Get(waves.Data(), n, status);
    if (status == Cie::GridStatus::NoMemory)
        return User()->ErrorNoMemory(static_cast<long long>(Cie::GridTablesBytes(n)));
    return out ? 0 : -1;
}

int CIEConv::Impl::LightXYZ(const TArray<double>& waves, const double* s, int count,
                            TVect3<double>& xyz) const {
    Cie::GridTablesRef t;
    const int r = Tables(waves, count, t);
    xyz = r == 0 ? Cie::LightXYZ(*t, s) : Zero();
    return r;
}

int CIEConv::Impl::LightXYZ(const CIEGrid& grid, const TArray<double>& waves, const double* s,
                            int count, TVect3<double>& xyz) const {
    const auto* t = static_cast<const Cie::GridTables*>(grid.Tables());
    if (grid.Owner() != serial || !t || t->n != count || waves.Count() != count)
        return LightXYZ(waves, s, count, xyz);
    xyz = Cie::LightXYZ(*t, s);
    return 0;
}

int CIEConv::Impl::ReflectanceXYZ(const TArray<double>& waves, const double* r, int count,
                                  TVect3<double>& xyz) const {
    Cie::GridTablesRef t;
    int status = Tables(waves, count, t);
    if (status == 0 && !Cie::ReflectanceXYZ(*t, r, xyz))
        status = -1;
    if (status != 0)
        xyz = Zero();
    return status;
}

int CIEConv::Impl::ReflectanceRGB(const TArray<double>& waves, const double* r, int count,
                                  TVect3<double>& rgb) const {
    Cie::GridTablesRef t;
    int status = Tables(waves, count, t);
    if (status == 0 && !Cie::ReflectanceRGB(*t, xyz2rgb, r, rgb))
        status = -1;
    if (status != 0)
        rgb = Zero();
    return status;
}

int CIEConv::Impl::Reconstruct(const TVect3<double>& rgb, const TArray<double>& waves, double* out,
                               int n, bool reflectance) const {
    Cie::GridTablesRef t;
    int status = Tables(waves, n, t);
    if (status == 0 && !(reflectance ? t->reflectanceInvertible : t->lightInvertible))
        status = -1;
    if (status == 0)
        Cie::Reconstruct(reflectance ? t->reconReflectance : t->reconLight, n, rgb, out);
    else if (out)
        for (int i = 0; i < n; ++i)
            out[i] = 0.0;
    return status;
}

int CIEConv::Impl::Reconstruct(const TVect3<double>& rgb, const CIEGrid& grid,
                               const TArray<double>& waves, double* out, int n,
                               bool reflectance) const {
    const auto* t = static_cast<const Cie::GridTables*>(grid.Tables());
    if (grid.Owner() != serial || !t || t->n != n || !out)
        return Reconstruct(rgb, waves, out, n, reflectance);
    if (!(reflectance ? t->reflectanceInvertible : t->lightInvertible)) {
        for (int i = 0; i < n; ++i)
            out[i] = 0.0;
        return -1;
    }
    Cie::Reconstruct(reflectance ? t->reconReflectance : t->reconLight, n, rgb, out);
    return 0;
}

int CIEConv::Impl::ReconstructInto(const TVect3<double>& rgb, const TArray<double>& waves,
                                   TArray<double>& out, bool reflectance) const {
    if (out.Alloc(waves.Count()) != 0)
        return User()->ErrorNoMemory(static_cast<long long>(sizeof(double)) * waves.Count());
    return Reconstruct(rgb, waves, out.Data(), out.Count(), reflectance);
}

CIEConv::CIEConv(Observer observer)
    : impl_(FaultInjection::ShouldFail(FaultInjection::ConverterTables) ? nullptr
                                                                        : new (std::nothrow)
                                                                              Impl(observer)),
      xyz2rgb_(impl_ ? &impl_->xyz2rgb : &kNoMatrix) {}

CIEConv::~CIEConv() {
    delete impl_;
}

const TMatrix3& CIEConv::RGB2XYZ() const {
    return impl_->rgb2xyz;
}
const TVect3<double>& CIEConv::LuminanceCoefs() const {
    return impl_->luminance;
}
Observer CIEConv::GetObserver() const {
    return impl_->observer;
}
int CIEConv::CachedGrids() const {
    return impl_->grids.Count();
}
std::size_t CIEConv::CachedGridBytes() const {
    return impl_->grids.Bytes();
}
CIEGrid CIEConv::ResolveGrid(const TArray<double>& waves) const {
    if (waves.Count() == 0)
        return {};
    Cie::GridStatus status;
    return {impl_->serial, impl_->grids.Resolve(waves.Data(), waves.Count(), status)};
}

const CIEConv* CIEConv::Current() {
    return Cie::CurrentConv();
}

void CIEConv::SetCurrent(const CIEConv* conv) {
    Cie::gCurrentConv.store(conv, std::memory_order_release);
}

// -- spectra to XYZ, RGB and grey -------------------------------------------------------------

int CIEConv::spectrum2xyz(const TArray<double>& waves, const TArray<double>& s,
                          TVect3<double>& xyz) {
    return Cie::CurrentConv()->impl_->LightXYZ(waves, s.Data(), s.Count(), xyz);
}

int CIEConv::spectrum2xyz(const TArray<double>& waves, const BArray<double>& s,
                          TVect3<double>& xyz) {
    return Cie::CurrentConv()->impl_->LightXYZ(waves, s.Data(), s.Count(), xyz);
}

int CIEConv::spectrum2xyz(const CIEGrid& grid, const TArray<double>& waves, const BArray<double>& s,
                          TVect3<double>& xyz) {
    return Cie::CurrentConv()->impl_->LightXYZ(grid, waves, s.Data(), s.Count(), xyz);
}

int CIEConv::spectrum2xyzAttr(const TArray<double>& waves, const TArray<double>& r,
                              TVect3<double>& xyz) {
    return Cie::CurrentConv()->impl_->ReflectanceXYZ(waves, r.Data(), r.Count(), xyz);
}

int CIEConv::spectrum2bw(const TArray<double>& waves, const TArray<double>& s, double& value) {
    Cie::GridTablesRef t;
    int status = Cie::CurrentConv()->impl_->Tables(waves, s.Count(), t);
    if (status == 0 && t->lightY == 0.0)
        status = -1;
    value = 0.0;
    if (status == 0) {
        double acc[Cie::kRow];
        Cie::SumRows(s.Data(), t->light, t->n, acc);
        value = acc[1] / t->lightY;
    }
    return status;
}

int CIEConv::spectrum2rgbByCurves(const TArray<double>& waves, const TArray<double>& values,
                                  const TArray<double>& c1, const TArray<double>& c2,
                                  const TArray<double>& c3, const TArray<double>& c4,
                                  TVect3<double>& rgb) {
    const int n = waves.Count();
    rgb = Zero();
    if (n == 0 || values.Count() != n || c1.Count() != n || c2.Count() != n || c3.Count() != n ||
        (c4.Count() != 0 && c4.Count() != n))
        return -1;
    const TArray<double>* curves[3] = {&c1, &c2, &c3};
    for (int i = 0; i < n; ++i) {
        const double q = c4.Count() != 0 ? c4[i] : TrapezoidWeight(waves.Data(), n, i);
        for (int c = 0; c < 3; ++c)
            rgb[c] += values[i] * (*curves[c])[i] * q;
    }
    return 0;
}

bool CIEConv::ClipRGBScale(TVect3<double>& rgb) {
    bool changed = false;
    for (int c = 0; c < 3; ++c) {
        if (rgb[c] < 0.0) {
            rgb[c] = 0.0;
            changed = true;
        }
    }
    double top = rgb.x;
    if (rgb.y > top)
        top = rgb.y;
    if (rgb.z > top)
        top = rgb.z;
    if (top > 1.0) {
        for (int c = 0; c < 3; ++c)
            rgb[c] /= top;
        changed = true;
    }
    return changed;
}

TVect3<double> CIEConv::Spectr2RGB(const TArray<double>& s, const TArray<double>& waves,
                                   bool normalize) const {
    TVect3<double> xyz;
    if (impl_->LightXYZ(waves, s.Data(), s.Count(), xyz) != 0)
        return Zero();
    return NormalizeBySum(impl_->xyz2rgb * xyz, normalize);
}

TVect3<double> CIEConv::Spectr2RGBAttr(const TArray<double>& r, const TArray<double>& waves,
                                       bool normalize) const {
    TVect3<double> rgb;
    impl_->ReflectanceRGB(waves, r.Data(), r.Count(), rgb);
    return NormalizeBySum(rgb, normalize);
}

int CIEConv::spectrum2rgbAttr(const TArray<double>& waves, const TArray<double>& r,
                              TVect3<double>& rgb) const {
    return impl_->ReflectanceRGB(waves, r.Data(), r.Count(), rgb);
}

// -- validity of CIE coordinates ----------------------------------------------------------------

bool CIEConv::IsValidXY(double x, double y) const {
    return y > 0.0 && impl_->locus.Contains(x, y);
}

bool CIEConv::IsValidXYY(double x, double y, double Y) const {
    return IsValidXY(x, y) && Y >= 0.0;
}

bool CIEConv::IsValidXYZ(double X, double Y, double Z) const {
    if (!(X >= 0.0 && Y >= 0.0 && Z >= 0.0))
        return false;
    const double sum = X + Y + Z;
    return sum == 0.0 || IsValidXY(X / sum, Y / sum);
}

} // namespace Korvane
