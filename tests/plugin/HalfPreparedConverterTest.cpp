// Display conversions after a converter preparation that ran out of memory half way. The
// preparation counts as done once its light RGB table has its rows, so the next call does not
// retry, and the other tables may be left without rows: every reader of a table asks that table
// for its rows and answers as a failed preparation does, (0, 0, 0) without clamping. Reached by
// every way a host makes a converter: registration, loading a model from a plug file, and a new
// CIE converter.
#include "HolderTestSupport.h"

#include "hostkit/base/FaultInjection.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/plugsys/PlugFile.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/SpectralModel.h"

#include <climits>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

namespace Korvane {
namespace {

using USpectral = SpectralModel<Unpolarized>;
using SSpectral = SpectralModel<StokesPolarization>;

// What the display conversions of a model give for a light of flat 1.0 (Stokes: I = 1, Q = 0.5).
struct Display {
    TVect3<double> rgb, xyz, spectrumRGB;
    bool operator==(const Display& o) const {
        return rgb == o.rgb && xyz == o.xyz && spectrumRGB == o.spectrumRGB;
    }
    bool operator!=(const Display& o) const { return !(*this == o); }
};

std::ostream& operator<<(std::ostream& os, const Display& d) {
    const auto triple = [&os](const TVect3<double>& v) {
        os << "(" << v.x << ", " << v.y << ", " << v.z << ")";
    };
    os << "rgb ";
    triple(d.rgb);
    os << " xyz ";
    triple(d.xyz);
    os << " spectrum rgb ";
    triple(d.spectrumRGB);
    return os;
}

template <class M>
Display Show(const M& m) {
    LgtColor<M> c;
    EXPECT_EQ(c.Distr().SetLength(m.NWaves()), 0);
    for (int i = 0; i < m.NWaves(); ++i) {
        c.Distr()[i] = typename LgtColor<M>::Component{};
        c.Distr()[i][0] = 1.0;
        if constexpr (LgtColor<M>::Component::kSize == 4)
            c.Distr()[i][1] = 0.5;
    }
    std::vector<double> flat(static_cast<std::size_t>(m.NWaves()), 1.0);
    Display d{{9, 9, 9}, {9, 9, 9}, {9, 9, 9}};
    EXPECT_EQ(m.LgtColorToRGB(c, d.rgb, false, true), 0);
    EXPECT_EQ(m.LgtColorToXYZ(c, d.xyz), 0);
    EXPECT_EQ(m.SpectrumToRGB(flat.data(), d.spectrumRGB, false, true), 0);
    return d;
}

const Display kFailed{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};

// Whether the converter of `m` was left with a light table short of rows.
bool HalfPrepared(const ColorModel& m) {
    const MassColConv* c = m.GetMassColConv();
    const int n = m.NWaves();
    return c && c->LightRGB().Count() == n &&
           (c->LightRGBDensity().Count() != n || c->LightXYZ().Count() != n ||
            c->LightXYZDensity().Count() != n);
}

// Runs `make` (which makes a converter and returns the model to look at, or null) with the n-th
// array allocation failing, for every n the clean run makes. Each model that comes out answers
// either as the clean run or as a failed preparation; at least one comes out half prepared.
template <class M>
void ForEveryFailingAllocation(const std::function<const M*()>& make,
                               const std::function<void()>& undo,
                               bool halfPreparedReachable = true) {
    Display clean;
    long allocations = 0;
    {
        FaultInjection::ScopedFailure count(FaultInjection::ArrayStorage, LONG_MAX);
        const M* m = make();
        allocations = FaultInjection::Counted();
        ASSERT_NE(m, nullptr);
        clean = Show(*m);
        undo();
    }
    ASSERT_NE(clean, kFailed);
    int halfPrepared = 0;
    for (long n = 1; n <= allocations; ++n) {
        const M* m = nullptr;
        {
            FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, n);
            m = make();
        }
        if (m) {
            // Each answer is the clean one or that of a failed preparation; LgtColorToXYZ of a
            // colour whose count is not the converter's (a converter without its grid) leaves
            // the caller's values untouched.
            const Display d = Show(*m);
            const TVect3<double> zero(0.0, 0.0, 0.0), untouched(9.0, 9.0, 9.0);
            EXPECT_TRUE(d.rgb == clean.rgb || d.rgb == zero) << "allocation " << n << ": " << d;
            EXPECT_TRUE(d.xyz == clean.xyz || d.xyz == zero || d.xyz == untouched)
                << "allocation " << n << ": " << d;
            EXPECT_TRUE(d.spectrumRGB == clean.spectrumRGB || d.spectrumRGB == zero)
                << "allocation " << n << ": " << d;
            // The readers of a table left without its rows answer (0, 0, 0).
            if (HalfPrepared(*m)) {
                ++halfPrepared;
                const MassColConv& c = *m->GetMassColConv();
                if (c.LightRGBDensity().Count() != m->NWaves()) {
                    EXPECT_EQ(d.rgb, zero) << "allocation " << n;
                }
                if (c.LightXYZDensity().Count() != m->NWaves()) {
                    EXPECT_EQ(d.xyz, zero) << "allocation " << n;
                }
            }
        }
        undo();
    }
    if (halfPreparedReachable) {
        EXPECT_GT(halfPrepared, 0);
    } else {
        EXPECT_EQ(halfPrepared, 0);
    }
}

TEST(HalfPreparedConverter, AfterRegistrationThatSucceeded) {
    for (bool stokes : {false, true}) {
        const auto undo = [] { TermClasses(); };
        if (stokes)
            ForEveryFailingAllocation<SSpectral>(
                [] { return InitClasses() == 0 ? SSpectral::GetModel() : nullptr; }, undo);
        else
            ForEveryFailingAllocation<USpectral>(
                [] { return InitClasses() == 0 ? USpectral::GetModel() : nullptr; }, undo);
    }
}

class HalfPreparedAfter : public Testing::Registered {};

TEST_F(HalfPreparedAfter, APlugFileLoadThatSucceeded) {
    const std::string path =
        (std::filesystem::temp_directory_path() / "korvane_half_prepared.kpl").string();
    ASSERT_EQ(PlugFile::Save(*USpectral::GetModel(), path.c_str()), 0);
    PlugRef loaded;
    ForEveryFailingAllocation<USpectral>(
        [&]() -> const USpectral* {
            std::string error;
            loaded = PlugFile::Load(path.c_str(), error);
            return static_cast<const USpectral*>(loaded.Get());
        },
        [&] { loaded = nullptr; },
        // The host kit takes a load during which an allocation failed for a failed load, so no
        // half-prepared model comes out of a plug file; every model it hands out is checked.
        false);
    std::remove(path.c_str());
}

TEST_F(HalfPreparedAfter, SetCIEConvAll) {
    ForEveryFailingAllocation<USpectral>(
        [] {
            TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
            return USpectral::GetModel();
        },
        [] {});
}

} // namespace
} // namespace Korvane
