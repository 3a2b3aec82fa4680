// Which questions a model asks of a source, in which order, and what it reports when the source
// is none of the kinds it knows: every model asks IsBW, IsRGB, IsXYZ, IsXYY, IsSpectral and stops
// at the first true answer.
#include "hostkit/base/User.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SourceKind.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"
#include "tests/plugin/HolderTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Korvane;

namespace {

const std::vector<std::string> kQuestions = {"IsBW", "IsRGB", "IsXYZ", "IsXYY", "IsSpectral"};

// A model of kind M that writes down every kind question it is asked; `none` makes it answer
// false to all of them (a model of a kind no converter knows).
template <class M>
class Probe : public M {
public:
    explicit Probe(bool none = false) : none_(none) {}
    bool IsBW() const override { return Ask(0, M::IsBW()); }
    bool IsRGB() const override { return Ask(1, M::IsRGB()); }
    bool IsXYZ() const override { return Ask(2, M::IsXYZ()); }
    bool IsXYY() const override { return Ask(3, M::IsXYY()); }
    bool IsSpectral() const override { return Ask(4, M::IsSpectral()); }
    mutable std::vector<std::string> asked;

private:
    bool Ask(int question, bool answer) const {
        asked.push_back(kQuestions[question]);
        return answer && !none_;
    }
    bool none_;
};

using SourceOrder = Testing::Registered;

// The eight models InitClasses registers.
std::vector<const ColorModel*> RegisteredModels() {
    return {BWModel<Unpolarized>::GetModel(),
            BWModel<StokesPolarization>::GetModel(),
            RGBModel<Unpolarized>::GetModel(),
            RGBModel<StokesPolarization>::GetModel(),
            SpectralModel<Unpolarized>::GetModel(),
            SpectralModel<StokesPolarization>::GetModel(),
            XYZModel::GetModel(),
            XYYModel::GetModel()};
}

// The questions each of the eight models asks of each kind of source, for light, surface and
// scalar colours: the list up to the kind's own question, all five for an unknown kind.
TEST_F(SourceOrder, EveryModelAsksTheFiveKindQuestionsInOrder) {
    Probe<BWModel<Unpolarized>> bw;
    Probe<RGBModel<Unpolarized>> rgb;
    Probe<XYZModel> xyz;
    Probe<XYYModel> xyy;
    Probe<SpectralModel<Unpolarized>> spectral;
    Probe<XYZModel> unknown(true);
    struct Source {
        ColorModel* model;
        std::vector<std::string>* asked;
        std::size_t questions;
    };
    const Source sources[] = {
        {&bw, &bw.asked, 1},   {&rgb, &rgb.asked, 2},           {&xyz, &xyz.asked, 3},
        {&xyy, &xyy.asked, 4}, {&spectral, &spectral.asked, 5}, {&unknown, &unknown.asked, 5}};
    const std::vector<const ColorModel*> targets = RegisteredModels();
    for (const ColorModel* target : targets) {
        for (const Source& s : sources) {
            SCOPED_TRACE(target->Name() + " from a source answering " +
                         std::to_string(s.questions) + " questions");
            const std::vector<std::string> expected(kQuestions.begin(),
                                                    kQuestions.begin() + s.questions);
            TPlugRef<Holder<ILgtColor>> lf = s.model->NewLgtColorHold(),
                                        lt = target->NewLgtColorHold();
            TPlugRef<Holder<ISurfColor>> sf = s.model->NewSurfColorHold(),
                                         st = target->NewSurfColorHold();
            TPlugRef<Holder<IScalarColor>> cf = s.model->NewScalarColorHold(),
                                           ct = target->NewScalarColorHold();
            s.asked->clear();
            target->ConvertColor(s.model, lf->Color(), lt->Color());
            EXPECT_EQ(*s.asked, expected) << "light";
            s.asked->clear();
            target->ConvertColor(s.model, sf->Color(), st->Color());
            EXPECT_EQ(*s.asked, expected) << "surface";
            s.asked->clear();
            target->ConvertColor(s.model, cf->Color(), ct->Color());
            EXPECT_EQ(*s.asked, expected) << "scalar";
        }
    }
}

// What a model reports for a source of no known kind: the text, the kind of report and its code
// as the result. A polarized spectral model refuses every light and surface source but BW
// before it would reach the unknown kind.
TEST_F(SourceOrder, AnUnknownSourceKindIsReportedWithTheFixedTexts) {
    Probe<XYZModel> unknown(true);
    struct Expected {
        const ColorModel* target;
        ReportKind kind;
        const char* light;
        const char* surface;
    };
    const char* const kLight = "Not supported light color conversion";
    const char* const kSurface = "Not supported surface color conversion";
    const Expected table[] = {
        {BWModel<Unpolarized>::GetModel(), ReportKind::InternalError, kLight, kSurface},
        {BWModel<StokesPolarization>::GetModel(), ReportKind::InternalError, kLight, kSurface},
        {RGBModel<Unpolarized>::GetModel(), ReportKind::InternalError, kLight, kSurface},
        {RGBModel<StokesPolarization>::GetModel(), ReportKind::InternalError, kLight, kSurface},
        {SpectralModel<Unpolarized>::GetModel(), ReportKind::InternalError, kLight, kSurface},
        {SpectralModel<StokesPolarization>::GetModel(), ReportKind::ErrorMessage,
         "Not supported spectral light color conversion",
         "Not supported spectral surface color conversion"},
        {XYZModel::GetModel(), ReportKind::InternalError, kLight, kSurface},
        {XYYModel::GetModel(), ReportKind::InternalError, kLight, kSurface},
    };
    const auto code = [](ReportKind kind) {
        return kind == ReportKind::InternalError ? kInternalErrorCode : kErrorMessageCode;
    };
    for (const Expected& e : table) {
        SCOPED_TRACE(e.target->Name());
        TPlugRef<Holder<ILgtColor>> lf = unknown.NewLgtColorHold(),
                                    lt = e.target->NewLgtColorHold();
        TPlugRef<Holder<ISurfColor>> sf = unknown.NewSurfColorHold(),
                                     st = e.target->NewSurfColorHold();
        TPlugRef<Holder<IScalarColor>> cf = unknown.NewScalarColorHold(),
                                       ct = e.target->NewScalarColorHold();
        ReportLog::Clear();
        EXPECT_EQ(e.target->ConvertColor(&unknown, lf->Color(), lt->Color()), code(e.kind));
        EXPECT_EQ(e.target->ConvertColor(&unknown, sf->Color(), st->Color()), code(e.kind));
        EXPECT_EQ(e.target->ConvertColor(&unknown, cf->Color(), ct->Color()), kInternalErrorCode);
        const std::vector<Report> reports = ReportLog::Entries();
        ASSERT_EQ(reports.size(), 3u);
        EXPECT_EQ(reports[0].kind, e.kind);
        EXPECT_EQ(reports[0].text, e.light);
        EXPECT_EQ(reports[1].kind, e.kind);
        EXPECT_EQ(reports[1].text, e.surface);
        EXPECT_EQ(reports[2].kind, ReportKind::InternalError);
        EXPECT_EQ(reports[2].text, "Not supported scalar color conversion");
    }
}

} // namespace

// The library's own models are known by their type, without being asked: the kind so found must
// be the one the five questions give, for every model InitClasses registers, a spectral model
// made on a grid of its own, and a model of another class (asked, in order).
TEST_F(SourceOrder, KnownModelsHaveTheKindTheirAnswersGive) {
    const auto asked = [](const ColorModel& m) {
        return m.IsBW()         ? SourceKind::BW
               : m.IsRGB()      ? SourceKind::RGB
               : m.IsXYZ()      ? SourceKind::XYZ
               : m.IsXYY()      ? SourceKind::XYY
               : m.IsSpectral() ? SourceKind::Spectral
                                : SourceKind::Other;
    };
    MArray<double> grid(10);
    grid.Alloc(3);
    grid[0] = 400.0;
    grid[1] = 550.0;
    grid[2] = 700.0;
    TPlugRef<SpectralModel<Unpolarized>> own = new SpectralModel<Unpolarized>(grid);
    std::vector<const ColorModel*> models = RegisteredModels();
    models.push_back(own.Get());
    for (const ColorModel* m : models)
        EXPECT_EQ(KindOf(m), asked(*m)) << m->Name();
    Probe<SpectralModel<Unpolarized>> probe;
    EXPECT_EQ(KindOf(&probe), SourceKind::Spectral);
    EXPECT_EQ(probe.asked, kQuestions);
    EXPECT_EQ(KindOf(nullptr), SourceKind::Other);
}
