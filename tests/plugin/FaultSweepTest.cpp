// Fault sweeps: the n-th allocation fails, for every n that the operation makes (once, and from n
// on), at every fault site at once. Whatever fails, nothing crashes, nothing leaks, a failure is
// reported (or returned) as the code that each path names, and no object is handed out as good
// when it is not whole.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/colormodel/Holders.h"
#include "hostkit/plugsys/PlugFile.h"
#include "hostkit/plugsys/PlugType.h"
#include "plugin/frame/ModuleEntry.h"
#include "plugin/masscolconv/MassColConv.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "tests/plugin/HolderTestSupport.h"
#include "tests/plugin/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Korvane;
using Korvane::Testing::Grid;
using Korvane::Testing::GridModel;

namespace {

using FaultSweep = Korvane::Testing::Registered;

// What an operation leaves allocated and alive: must be the same after it as before.
struct Balance {
    long long blocks = MemStats::Get("TArray").blocksOutstanding;
    long long bytes = MemStats::Get("TArray").bytesOutstanding;
    long long plugs = PlugStats::Alive();
    void Expect(const std::string& where) const {
        EXPECT_EQ(MemStats::Get("TArray").blocksOutstanding, blocks) << where;
        EXPECT_EQ(MemStats::Get("TArray").bytesOutstanding, bytes) << where;
        EXPECT_EQ(PlugStats::Alive(), plugs) << where;
    }
};

// Runs `op` with the n-th allocation at any site failing, for every n up to the number of
// allocations `op` makes when nothing fails, once and from n on. `op` checks its own outcome.
void Sweep(const std::function<void(const std::string& where)>& op) {
    long total = 0;
    {
        FaultInjection::ScopedFailure count(FaultInjection::AnySite, LONG_MAX);
        op("no failure");
        total = FaultInjection::Counted();
    }
    ASSERT_GT(total, 0);
    for (bool after : {false, true})
        for (long n = 1; n <= total; ++n) {
            const std::string where =
                "allocation " + std::to_string(n) + (after ? " and on" : " only");
            ReportLog::Clear();
            FaultInjection::ScopedFailure fail(FaultInjection::AnySite, n, after);
            op(where);
        }
}

// Every table of a loaded spectral model equals the one of the model it was saved from.
void ExpectWhole(const SpectralModel<Unpolarized>& got, const SpectralModel<Unpolarized>& want,
                 const std::string& where) {
    ASSERT_TRUE(got.IsEqual(&want)) << where;
    const int n = want.NWaves();
    ASSERT_EQ(got.GetSpectral2XYZWeights().Count(), n) << where;
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(got.GetSpectral2XYZWeights()[i], want.GetSpectral2XYZWeights()[i]) << where;
    MassColConv* conv = got.GetMassColConv();
    ASSERT_NE(conv, nullptr) << where;
    const TVect3<double>* rows = conv->WeightsForLight();
    const TVect3<double>* wantRows = want.GetMassColConv()->WeightsForLight();
    ASSERT_NE(rows, nullptr) << where;
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(rows[i], wantRows[i]) << where;
}

} // namespace

// A plug file read while memory runs out: the load fails with a message that says so, or the
// model it hands out is whole.
TEST_F(FaultSweep, PlugFileLoadOfASpectralModel) {
    const GridModel<Unpolarized> saved(Grid({380.0, 390.5, 450.0, 520.0, 700.0}));
    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        const std::string path = testing::TempDir() + "fault_sweep_model.plug";
        ASSERT_EQ(PlugFile::Save(saved, path.c_str(), format), 0);
        int refused = 0;
        Sweep([&](const std::string& where) {
            const Balance balance;
            {
                std::string error;
                PlugRef loaded = PlugFile::Load(path.c_str(), error);
                if (loaded) {
                    ExpectWhole(*static_cast<SpectralModel<Unpolarized>*>(loaded.Get()), saved,
                                where);
                } else {
                    ++refused;
                    EXPECT_NE(error.find("memory"), std::string::npos) << where << ": " << error;
                }
            }
            balance.Expect(where);
        });
        EXPECT_GT(refused, 0);
        std::remove(path.c_str());
    }
}

// Registration at every site: a failed InitClasses returns -1 after a no-memory report or a
// refused step, and TermClasses leaves nothing behind.
TEST(FaultSweepInit, InitClassesAtEverySite) {
    const std::size_t types = PlugType::Registered().size();
    Sweep([&](const std::string& where) {
        const Balance balance;
        const int result = InitClasses();
        if (result != 0) {
            EXPECT_EQ(result, -1) << where;
            bool noMemory = false;
            for (const Report& r : ReportLog::Entries())
                noMemory = noMemory || r.kind == ReportKind::NoMemory;
            EXPECT_TRUE(noMemory) << where;
        }
        FaultInjection::Disarm();
        TermClasses();
        EXPECT_EQ(PlugType::Registered().size(), types) << where;
        EXPECT_TRUE(TColorModel->Models().empty()) << where;
        balance.Expect(where);
    });
}

// Changing the converter of every model while memory runs out. The spectral models absorb a
// failure to prepare their light tables (conversions prepare them again) and report the rest;
// whatever a change reported is a lack of memory, a model left with a converter converts as
// before, and a change with memory back makes every model whole again and leaves nothing behind.
TEST_F(FaultSweep, ConverterChange) {
    const ColorModel* rgb = TColorModel->FindModel("URGB");
    const ColorModel* spectral = TColorModel->FindModel("USpectr");
    ASSERT_TRUE(rgb && spectral);
    TPlugRef<Holder<ILgtColor>> from = rgb->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> to = spectral->NewLgtColorHold();
    ASSERT_TRUE(from && to);
    ASSERT_EQ(ColourAccess::Value<SpectralModel<Unpolarized>>(to->Color())
                  .Distr()
                  .SetLength(spectral->NWaves()),
              0);
    const double values[3] = {0.25, 0.5, 0.75};
    rgb->SetLgtColor(from->Color(), values);
    auto convert = [&] {
        std::vector<double> out(static_cast<std::size_t>(spectral->NWaves()), 0.0);
        if (spectral->ConvertColor(rgb, from->Color(), to->Color()) != 0)
            return std::vector<double>();
        spectral->LgtToArray(to->Color(), out.data());
        return out;
    };
    TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
    const std::vector<double> want = convert();
    ASSERT_FALSE(want.empty());
    Sweep([&](const std::string& where) {
        const Balance balance;
        TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
        FaultInjection::Disarm();
        for (const Report& r : ReportLog::Entries())
            EXPECT_TRUE(r.kind == ReportKind::NoMemory || r.kind == ReportKind::Log)
                << where << ": " << r.text;
        if (spectral->GetMassColConv()) {
            EXPECT_EQ(convert(), want) << where;
        }
        TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
        ASSERT_NE(spectral->GetMassColConv(), nullptr) << where;
        EXPECT_NE(spectral->GetMassColConv()->WeightsForLight(), nullptr) << where;
        EXPECT_EQ(convert(), want) << where;
        balance.Expect(where);
    });
}

namespace {

// One conversion path: makes its holders, converts, and appends every double of what came out
// to `out` and the code of every step to `codes`; `made` is false when a holder was not made.
struct Path {
    const char* name;
    std::function<void(std::vector<double>& out, std::vector<int>& codes, bool& made)> run;
};

// Every double of a colour, through the model's own export, appended to `out`.
template <class C, class Export>
void Append(std::vector<double>& out, const ColorModel* m, const C& c, Export exportTo) {
    std::vector<double> values(static_cast<std::size_t>(16 * (m->NWaves() + 1)), 0.0);
    (m->*exportTo)(c, values.data());
    out.insert(out.end(), values.begin(), values.end());
}

// Gives a spectral colour of model `m` the model's length, as a host does before it converts
// into it (a new spectral holder is empty); other models' colours need nothing. 0, or -1.
template <class I>
int Sized(const ColorModel* m, I& c) {
    if (!m->IsSpectral())
        return 0;
    auto size = [&](auto& value) {
        if constexpr (std::is_same_v<I, IRayColor>)
            return value.Light().Distr().SetLength(m->NWaves());
        else
            return value.Distr().SetLength(m->NWaves());
    };
    if (m->HasPolarization())
        return size(ColourAccess::Value<SpectralModel<StokesPolarization>>(c));
    return size(ColourAccess::Value<SpectralModel<Unpolarized>>(c));
}

// A display colour: `call` writes it into the vector it is given (and may answer a number,
// appended too). These calls answer no failure: when memory runs out inside one it leaves the
// colour as it was, or black when the converter could not build the tables of a grid it does not
// keep (its cache full, as when the whole suite runs in one process), and the run then counts as
// failed (-1) rather than as a result to compare.
template <class Call>
void Display(std::vector<double>& out, std::vector<int>& codes, Call call) {
    TVect3<double> v(-7.0, -7.0, -7.0);
    const long long failures = MemStats::FailuresOnThisThread();
    const double answer = call(v);
    if (MemStats::FailuresOnThisThread() != failures)
        codes.push_back(-1);
    out.insert(out.end(), {answer, v.x, v.y, v.z});
}

const double kValues[16] = {0.25, 0.5,  0.75, 0.125, 0.3, 0.35, 0.4, 0.45,
                            0.5,  0.55, 0.6,  0.65,  0.7, 0.75, 0.8, 0.85};

// A light colour converted from `src` (set to kValues) to every model of `chain` in turn.
Path LightChain(const char* name, std::vector<const ColorModel*> chain) {
    return {name, [chain](std::vector<double>& out, std::vector<int>& codes, bool& made) {
                std::vector<TPlugRef<Holder<ILgtColor>>> holders;
                for (const ColorModel* m : chain) {
                    holders.emplace_back(m->NewLgtColorHold());
                    made = made && holders.back() && Sized(m, holders.back()->Color()) == 0;
                }
                if (!made)
                    return;
                chain[0]->SetLgtColor(holders[0]->Color(), kValues);
                for (std::size_t k = 1; k < chain.size(); ++k) {
                    codes.push_back(chain[k]->ConvertColor(chain[k - 1], holders[k - 1]->Color(),
                                                           holders[k]->Color()));
                    Append(out, chain[k], holders[k]->Color(), &ColorModel::LgtToArray);
                }
            }};
}

} // namespace

// Converting colours between models while memory runs out, over every family of conversion: a
// step answers 0, -1 or the code of a report it made; a run whose every step answered 0 gives
// the result of a run without failure, bit for bit; nothing is left behind.
TEST_F(FaultSweep, Conversions) {
    const ColorModel* rgb = TColorModel->FindModel("URGB");
    const ColorModel* spectral = TColorModel->FindModel("USpectr");
    const ColorModel* xyz = TColorModel->FindModel("XYZ");
    const ColorModel* xyy = XYYModel::GetModel();
    const ColorModel* bw = BWModel<Unpolarized>::GetModel();
    const ColorModel* stkSpectral = SpectralModel<StokesPolarization>::GetModel();
    const ColorModel* stkRgb = TColorModel->FindModel("StkRGB");
    const ColorModel* stkBw = BWModel<StokesPolarization>::GetModel();
    ASSERT_TRUE(rgb && spectral && xyz && xyy && bw && stkSpectral && stkRgb && stkBw);
    const GridModel<Unpolarized> other(Grid({385.0, 402.5, 460.0, 533.0, 610.0, 695.0}));

    const std::vector<Path> paths = {
        LightChain("light RGB -> spectral -> XYZ", {rgb, spectral, xyz}),
        LightChain("light BW -> spectral", {bw, spectral}),
        LightChain("light xyY -> spectral -> RGB", {xyy, spectral, rgb}),
        LightChain("light BW -> Stokes spectral -> spectral", {bw, stkSpectral, spectral}),
        LightChain("light Stokes BW -> Stokes spectral -> Stokes RGB",
                   {stkBw, stkSpectral, stkRgb}),
        LightChain("light spectral -> another grid -> spectral", {rgb, spectral, &other, spectral}),
        {"surface RGB -> spectral -> RGB",
         [&](std::vector<double>& out, std::vector<int>& codes, bool& made) {
             TPlugRef<Holder<ISurfColor>> a = rgb->NewSurfColorHold();
             TPlugRef<Holder<ISurfColor>> b = spectral->NewSurfColorHold();
             TPlugRef<Holder<ISurfColor>> c = rgb->NewSurfColorHold();
             TPlugRef<Holder<ISurfColor>> d = other.NewSurfColorHold();
             made = a && b && c && d && Sized(spectral, b->Color()) == 0 &&
                    Sized(&other, d->Color()) == 0;
             if (!made)
                 return;
             rgb->SetSurfColor(a->Color(), kValues);
             codes.push_back(spectral->ConvertColor(rgb, a->Color(), b->Color()));
             codes.push_back(rgb->ConvertColor(spectral, b->Color(), c->Color()));
             codes.push_back(other.ConvertColor(spectral, b->Color(), d->Color()));
             Append(out, spectral, b->Color(), &ColorModel::SurfToArray);
             Append(out, rgb, c->Color(), &ColorModel::SurfToArray);
             Append(out, &other, d->Color(), &ColorModel::SurfToArray);
             Display(out, codes, [&](TVect3<double>& v) {
                 spectral->SurfColorToRGB(b->Color(), v);
                 return 0.0;
             });
         }},
        {"scalar RGB -> spectral -> RGB",
         [&](std::vector<double>& out, std::vector<int>& codes, bool& made) {
             TPlugRef<Holder<IScalarColor>> a = rgb->NewScalarColorHold();
             TPlugRef<Holder<IScalarColor>> b = spectral->NewScalarColorHold();
             TPlugRef<Holder<IScalarColor>> c = rgb->NewScalarColorHold();
             made = a && b && c && Sized(spectral, b->Color()) == 0;
             if (!made)
                 return;
             rgb->SetScalarColor(a->Color(), kValues);
             codes.push_back(spectral->ConvertColor(rgb, a->Color(), b->Color()));
             codes.push_back(rgb->ConvertColor(spectral, b->Color(), c->Color()));
             Append(out, spectral, b->Color(), &ColorModel::ScalarToArray);
             Append(out, rgb, c->Color(), &ColorModel::ScalarToArray);
         }},
        {"ray colours into spectral and Stokes spectral",
         [&](std::vector<double>& out, std::vector<int>& codes, bool& made) {
             TPlugRef<Holder<ILgtColor>> light = rgb->NewLgtColorHold();
             TPlugRef<Holder<IRayColor>> ray = spectral->NewRayColorHold();
             TPlugRef<Holder<IRayColor>> stkRay = stkSpectral->NewRayColorHold();
             made = light && ray && stkRay && Sized(spectral, ray->Color()) == 0 &&
                    Sized(stkSpectral, stkRay->Color()) == 0;
             if (!made)
                 return;
             rgb->SetLgtColor(light->Color(), kValues);
             codes.push_back(spectral->ConvertToRayColor(rgb, light->Color(), ray->Color()));
             Append(out, spectral, ray->Color(), &ColorModel::RayToArray);
             stkSpectral->RGBConvertToRayColor(TVect3<double>(0.2, 0.4, 0.6), stkRay->Color());
             Append(out, stkSpectral, stkRay->Color(), &ColorModel::RayToArray);
         }},
        {"display colours of spectral lights",
         [&](std::vector<double>& out, std::vector<int>& codes, bool& made) {
             TPlugRef<Holder<ILgtColor>> light = rgb->NewLgtColorHold();
             TPlugRef<Holder<ILgtColor>> a = spectral->NewLgtColorHold();
             TPlugRef<Holder<ILgtColor>> b = other.NewLgtColorHold();
             TPlugRef<Holder<ILgtColor>> c = stkSpectral->NewLgtColorHold();
             TPlugRef<Holder<ILgtColor>> grey = stkBw->NewLgtColorHold();
             made = light && a && b && c && grey && Sized(spectral, a->Color()) == 0 &&
                    Sized(&other, b->Color()) == 0 && Sized(stkSpectral, c->Color()) == 0;
             if (!made)
                 return;
             rgb->SetLgtColor(light->Color(), kValues);
             stkBw->SetLgtColor(grey->Color(), kValues);
             codes.push_back(spectral->ConvertColor(rgb, light->Color(), a->Color()));
             codes.push_back(other.ConvertColor(spectral, a->Color(), b->Color()));
             codes.push_back(stkSpectral->ConvertColor(stkBw, grey->Color(), c->Color()));
             for (const auto& [m, h] :
                  {std::pair{spectral, &a}, std::pair{static_cast<const ColorModel*>(&other), &b},
                   std::pair{stkSpectral, &c}}) {
                 const ILgtColor& colour = (*h)->Color();
                 Display(out, codes, [&, m = m](TVect3<double>& v) {
                     return double(m->LgtColorToDisplayRGB(colour, v));
                 });
                 TVect3<double> tristimulus;
                 codes.push_back(m->LgtColorToXYZ(colour, tristimulus));
                 out.insert(out.end(), {tristimulus.x, tristimulus.y, tristimulus.z});
             }
         }},
    };

    for (const Path& path : paths) {
        std::vector<double> want;
        bool first = true;
        Sweep([&](const std::string& at) {
            const std::string where = std::string(path.name) + ", " + at;
            const Balance balance;
            {
                std::vector<double> got;
                std::vector<int> codes;
                bool made = true;
                path.run(got, codes, made);
                bool ok = made;
                for (int result : codes) {
                    ok = ok && result == 0;
                    if (result != 0 && result != -1) {
                        EXPECT_TRUE(result == kNoMemoryCode || result == kErrorMessageCode ||
                                    result == kInternalErrorCode)
                            << where << ": " << result;
                        EXPECT_FALSE(ReportLog::Entries().empty()) << where;
                    }
                }
                if (first) {
                    std::string seen;
                    for (int result : codes)
                        seen += " " + std::to_string(result);
                    ASSERT_TRUE(ok) << where << ": the steps answered" << seen;
                    want = got;
                    first = false;
                } else if (ok) {
                    ASSERT_EQ(got.size(), want.size()) << where;
                    EXPECT_EQ(std::memcmp(got.data(), want.data(), got.size() * sizeof(double)), 0)
                        << where;
                }
            }
            balance.Expect(where);
        });
    }
}
