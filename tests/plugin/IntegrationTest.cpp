// The registered library as the host meets it: every ordered pair of the eight models converts
// light, surface and scalar colours and light into rays, or refuses with the report that names
// the refusal; and the laws that tie the models together hold across them.
#include "HolderTestSupport.h"
#include "ModelTestSupport.h"
#include "tests/support/Tolerances.h"

#include "hostkit/base/GlobTr.h"
#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConv.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "plugin/models/ColourAccess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Korvane;
using Korvane::Testing::GridModel;
using Values = std::vector<double>;

namespace {

enum Model { UBW, StkBW, URGB, StkRGB, USpectr, StkSpectr, XYZ, XYY, kModels };
const char* const kNames[kModels] = {"UBW",     "StkBW",     "URGB", "StkRGB",
                                     "USpectr", "StkSpectr", "XYZ",  "XYY"};

enum class Kind { Light, Surf, Scalar, Ray };
const char* const kKindNames[] = {"light", "surface", "scalar", "ray"};

// The pairs that are refused; every other pair converts with status 0 and no report. A refused
// ray conversion into a spectral model returns -1 after the light conversion's report.
struct Refusal {
    Kind kind;
    Model target;
    std::vector<Model> sources;
    int code;
    const char* text;
};
const std::vector<Model> kNonBW = {URGB, StkRGB, USpectr, StkSpectr, XYZ, XYY};
const Refusal kRefusals[] = {
    {Kind::Light, USpectr, {StkRGB}, 3, "Not supported spectral light color conversion"},
    {Kind::Surf, USpectr, {StkRGB}, 3, "Not supported spectral surface color conversion"},
    {Kind::Ray, USpectr, {StkRGB}, -1, "Not supported spectral light color conversion"},
    {Kind::Light, StkSpectr, kNonBW, 3, "Not supported spectral light color conversion"},
    {Kind::Surf, StkSpectr, kNonBW, 3, "Not supported spectral surface color conversion"},
    {Kind::Ray, StkSpectr, kNonBW, -1, "Not supported spectral light color conversion"},
    {Kind::Light, XYZ, {StkSpectr}, 3, "Not supported XYZ light color conversion"},
    {Kind::Surf, XYZ, {StkSpectr}, 3, "Not supported XYZ surface color conversion"},
    {Kind::Ray, XYZ, {StkSpectr}, 3, "Not supported light to XYZ ray color conversion"},
    {Kind::Light, XYY, {StkSpectr}, 3, "Not supported XYY light color conversion"},
    {Kind::Surf, XYY, {StkSpectr}, 3, "Not supported XYY surface color conversion"},
    {Kind::Ray, XYY, {StkSpectr}, 3, "Not supported light to XYY ray color conversion"},
};

const Refusal* FindRefusal(Kind kind, Model source, Model target) {
    for (const Refusal& r : kRefusals)
        if (r.kind == kind && r.target == target &&
            std::find(r.sources.begin(), r.sources.end(), source) != r.sources.end())
            return &r;
    return nullptr;
}

// Doubles per wavelength of a colour of `kind`: a Stokes vector for polarized light, a Mueller
// matrix for polarized surfaces, one value otherwise.
int ComponentSize(const ColorModel& m, Kind kind) {
    if (!m.HasPolarization() || kind == Kind::Scalar)
        return 1;
    return kind == Kind::Surf ? 16 : 4;
}
int Doubles(const ColorModel& m, Kind kind) {
    return m.NWaves() * ComponentSize(m, kind);
}

// Plausible values of the model's layout: intensities between 0.2 and 0.68 that vary with the
// wavelength, and every other Stokes or Mueller element a twentieth of its intensity.
Values Pattern(const ColorModel& m, Kind kind) {
    const int size = ComponentSize(m, kind);
    Values v(static_cast<std::size_t>(Doubles(m, kind)));
    for (std::size_t k = 0; k < v.size(); ++k) {
        const double intensity = 0.2 + 0.08 * static_cast<double>((k / size) % 7);
        v[k] = k % size == 0 ? intensity : 0.05 * intensity;
    }
    return v;
}

// A spectral colour sized to its model's grid with zero samples, as a host sizes the colours
// of the holders it makes; colours of the other models have their size.
template <class I>
void SizeForModel(const ColorModel& m, I& c) {
    if (!m.IsSpectral())
        return;
    const auto size = [&m](auto& v) {
        auto& d = v.Distr();
        ASSERT_EQ(d.SetLength(m.NWaves()), 0);
        for (int k = 0; k < d.Count() * std::decay_t<decltype(d)>::Component::kSize; ++k)
            d.Values()[k] = 0.0;
    };
    const auto sizeColour = [&size](auto& v) {
        if constexpr (std::is_same_v<I, IRayColor>)
            size(v.Light());
        else
            size(v);
    };
    if (m.HasPolarization())
        sizeColour(ColourAccess::Value<SpectralModel<StokesPolarization>>(c));
    else
        sizeColour(ColourAccess::Value<SpectralModel<Unpolarized>>(c));
}

// The model's own holders (spectral colours sized), setters and readers by colour interface.
template <class I>
Holder<I>* NewHold(const ColorModel& m) {
    Holder<I>* made = nullptr;
    if constexpr (std::is_same_v<I, ILgtColor>)
        made = m.NewLgtColorHold();
    else if constexpr (std::is_same_v<I, ISurfColor>)
        made = m.NewSurfColorHold();
    else if constexpr (std::is_same_v<I, IScalarColor>)
        made = m.NewScalarColorHold();
    else
        made = m.NewRayColorHold();
    if (made)
        SizeForModel(m, made->Color());
    return made;
}
void Set(const ColorModel& m, ILgtColor& c, const double* v) {
    m.SetLgtColor(c, v);
}
void Set(const ColorModel& m, ISurfColor& c, const double* v) {
    m.SetSurfColor(c, v);
}
void Set(const ColorModel& m, IScalarColor& c, const double* v) {
    m.SetScalarColor(c, v);
}
void Get(const ColorModel& m, const ILgtColor& c, double* out) {
    m.LgtToArray(c, out);
}
void Get(const ColorModel& m, const ISurfColor& c, double* out) {
    m.SurfToArray(c, out);
}
void Get(const ColorModel& m, const IScalarColor& c, double* out) {
    m.ScalarToArray(c, out);
}
void Get(const ColorModel& m, const IRayColor& c, double* out) {
    m.RayToArray(c, out);
}

// A colour of `from` made from `in` by the source model's setter, converted by `to`; `out` gets
// what the target's reader gives (NaN where it writes nothing). Returns the conversion's status.
template <class From, class To>
int Run(const ColorModel& from, const ColorModel& to, const Values& in, Values& out) {
    TPlugRef<Holder<From>> source = NewHold<From>(from);
    TPlugRef<Holder<To>> target = NewHold<To>(to);
    if (!source.Get() || !target.Get()) {
        ADD_FAILURE() << "no holder";
        return -1;
    }
    Set(from, source->Color(), in.data());
    int status = 0;
    if constexpr (std::is_same_v<To, IRayColor>)
        status = to.ConvertToRayColor(&from, source->Color(), target->Color());
    else
        status = to.ConvertColor(&from, source->Color(), target->Color());
    Get(to, target->Color(), out.data());
    return status;
}

int Convert(Kind kind, const ColorModel& from, const ColorModel& to, const Values& in,
            Values& out) {
    out.assign(static_cast<std::size_t>(Doubles(to, kind)), std::nan(""));
    switch (kind) {
    case Kind::Light:
        return Run<ILgtColor, ILgtColor>(from, to, in, out);
    case Kind::Surf:
        return Run<ISurfColor, ISurfColor>(from, to, in, out);
    case Kind::Scalar:
        return Run<IScalarColor, IScalarColor>(from, to, in, out);
    case Kind::Ray:
        break;
    }
    return Run<ILgtColor, IRayColor>(from, to, in, out);
}

class CrossModel : public Korvane::Testing::Registered {
protected:
    void SetUp() override {
        Registered::SetUp();
        Translations::Clear();
        for (int m = 0; m < kModels; ++m) {
            models_[m] = TColorModel->FindModel(kNames[m]);
            ASSERT_NE(models_[m], nullptr) << kNames[m];
        }
    }
    const ColorModel& operator[](Model m) const { return *models_[m]; }

    // `in` sent through the chain of models, each step expected to succeed silently.
    Values Through(Kind kind, std::vector<Model> chain, Values in) {
        Values out;
        ReportLog::Clear();
        for (std::size_t i = 1; i < chain.size(); ++i) {
            EXPECT_EQ(Convert(kind, (*this)[chain[i - 1]], (*this)[chain[i]], in, out), 0)
                << kNames[chain[i - 1]] << " -> " << kNames[chain[i]];
            in = out;
        }
        EXPECT_EQ(ReportLog::Count(), 0u);
        return in;
    }

private:
    ColorModel* models_[kModels] = {};
};

void ExpectRelative(const Values& got, const Values& want, double tol) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t k = 0; k < want.size(); ++k)
        EXPECT_NEAR(got[k], want[k], tol * std::fabs(want[k])) << "value " << k;
}

} // namespace

TEST_F(CrossModel, EveryOrderedPairConvertsOrNamesItsRefusal) {
    for (Kind kind : {Kind::Light, Kind::Surf, Kind::Scalar, Kind::Ray}) {
        for (int s = 0; s < kModels; ++s) {
            for (int t = 0; t < kModels; ++t) {
                const Model source = static_cast<Model>(s);
                const Model target = static_cast<Model>(t);
                SCOPED_TRACE(std::string(kKindNames[static_cast<int>(kind)]) + " " + kNames[s] +
                             " -> " + kNames[t]);
                const Values in = Pattern((*this)[source], kind == Kind::Ray ? Kind::Light : kind);
                Values out;
                ReportLog::Clear();
                const int status = Convert(kind, (*this)[source], (*this)[target], in, out);
                // No NaN in what the target holds, refused or not (a refusal may come after part
                // of the target was written); ray readers give one intensity per wavelength.
                const std::size_t written = kind == Kind::Ray
                                                ? static_cast<std::size_t>((*this)[target].NWaves())
                                                : out.size();
                for (std::size_t k = 0; k < written; ++k)
                    EXPECT_FALSE(std::isnan(out[k])) << "value " << k;
                if (const Refusal* refusal = FindRefusal(kind, source, target)) {
                    EXPECT_EQ(status, refusal->code);
                    const std::vector<Report> log = ReportLog::Entries();
                    EXPECT_EQ(log.size(), 1u);
                    if (!log.empty()) {
                        EXPECT_EQ(log[0].kind, ReportKind::ErrorMessage);
                        EXPECT_EQ(log[0].text, refusal->text);
                    }
                    continue;
                }
                EXPECT_EQ(status, 0);
                EXPECT_EQ(ReportLog::Count(), 0u);
            }
        }
    }
}

TEST_F(CrossModel, LightRoundTripsBetweenRGBXYZAndXYYKeepTheColour) {
    const Values rgb = {0.2, 0.4, 0.6};
    ExpectRelative(Through(Kind::Light, {URGB, XYZ, XYY, URGB}, rgb), rgb,
                   Tol::kCrossModelRoundTrip);
    ExpectRelative(Through(Kind::Light, {URGB, XYY, XYZ, URGB}, rgb), rgb,
                   Tol::kCrossModelRoundTrip);
}

TEST_F(CrossModel, RGBThroughSpectraComesBack) {
    const Values white = {1.0, 1.0, 1.0};
    ExpectRelative(Through(Kind::Light, {URGB, USpectr, URGB}, white), white,
                   Tol::kSpectralRoundTrip);
    const Values reflectance = {0.2, 0.4, 0.6};
    ExpectRelative(Through(Kind::Surf, {URGB, USpectr, URGB}, reflectance), reflectance,
                   Tol::kSpectralRoundTrip);
}

TEST_F(CrossModel, SpectralLightIntoXYZIsTheConverterIntegral) {
    const ColorModel& spectral = (*this)[USpectr];
    const Values values = Pattern(spectral, Kind::Light);
    TArray<double> s(10);
    ASSERT_EQ(s.Alloc(spectral.NWaves()), 0);
    std::copy(values.begin(), values.end(), s.begin());
    TVect3<double> xyz;
    ASSERT_EQ(CIEConv::spectrum2xyz(spectral.GetWaveLengths(), s, xyz), 0);
    EXPECT_EQ(Through(Kind::Light, {USpectr, XYZ}, values), (Values{xyz[0], xyz[1], xyz[2]}));
}

TEST_F(CrossModel, GreyIsEqualInEveryChannelAndComesBack) {
    const double g = 0.3;
    for (Kind kind : {Kind::Light, Kind::Surf, Kind::Scalar}) {
        SCOPED_TRACE(kKindNames[static_cast<int>(kind)]);
        EXPECT_EQ(Through(kind, {UBW, URGB}, {g}), (Values{g, g, g}));
        ExpectRelative(Through(kind, {UBW, URGB, UBW}, {g}), {g}, Tol::kMeanOfThree);
    }
}

TEST_F(CrossModel, PolarizedAndUnpolarizedCarryTheIntensity) {
    const std::pair<Model, Model> pairs[] = {
        {StkBW, UBW}, {UBW, StkBW}, {StkRGB, URGB}, {URGB, StkRGB}, {StkSpectr, USpectr}};
    for (Kind kind : {Kind::Light, Kind::Surf}) {
        for (const auto& [from, to] : pairs) {
            SCOPED_TRACE(std::string(kKindNames[static_cast<int>(kind)]) + " " + kNames[from] +
                         " -> " + kNames[to]);
            const Values in = Pattern((*this)[from], kind);
            const Values out = Through(kind, {from, to}, in);
            const int inSize = ComponentSize((*this)[from], kind);
            const int outSize = ComponentSize((*this)[to], kind);
            for (int w = 0; w < (*this)[from].NWaves(); ++w) {
                const auto at = [](int wave, int size, int e) {
                    return static_cast<std::size_t>(wave * size + e);
                };
                EXPECT_EQ(out[at(w, outSize, 0)], in[at(w, inSize, 0)]) << "wavelength " << w;
                for (int e = 1; e < outSize; ++e) // only from unpolarized sources
                    EXPECT_EQ(out[at(w, outSize, e)], 0.0) << "wavelength " << w;
            }
        }
    }
}

TEST_F(CrossModel, ResamplingOntoAFinerGridKeepsTheTristimulusValues) {
    MArray<double> coarse(10), fine(10);
    ASSERT_EQ(coarse.Alloc(16), 0);
    ASSERT_EQ(fine.Alloc(61), 0);
    for (int i = 0; i < 16; ++i)
        coarse[i] = 400.0 + 20.0 * i;
    for (int i = 0; i < 61; ++i)
        fine[i] = 400.0 + 5.0 * i;
    TPlugRef<ColorModel> a = new GridModel<Unpolarized>(coarse);
    TPlugRef<ColorModel> b = new GridModel<Unpolarized>(fine);
    const Values spectrum = Pattern(*a.Get(), Kind::Light);
    Values onB, viaA, viaB;
    ASSERT_EQ(Convert(Kind::Light, *a.Get(), *b.Get(), spectrum, onB), 0);
    ASSERT_EQ(Convert(Kind::Light, *a.Get(), (*this)[XYZ], spectrum, viaA), 0);
    ASSERT_EQ(Convert(Kind::Light, *b.Get(), (*this)[XYZ], onB, viaB), 0);
    ExpectRelative(viaB, viaA, Tol::kSpectralRoundTrip);
}
