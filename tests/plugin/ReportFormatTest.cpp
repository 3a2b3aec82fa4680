// The reports of a conversion from a model that is none of the five pass their fixed text itself
// as the InternalError format, with no arguments, in every model: a host's user object sees the
// text where it looks for the format (and a "%s" format with the text as argument would print
// the same, so only the format tells them apart).
#include "HolderTestSupport.h"

#include "hostkit/base/User.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"
#include "tests/support/TestModel.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace Korvane {
namespace {

// A user object that keeps the format of every InternalError and the text it formats to.
class FormatRecorder : public IUser {
public:
    struct Call {
        std::string format;
        std::string text;
        bool operator==(const Call& o) const { return format == o.format && text == o.text; }
    };
    int InternalError(const char* format, ...) override {
        char text[512];
        va_list args;
        va_start(args, format);
        std::vsnprintf(text, sizeof text, format, args);
        va_end(args);
        calls.push_back({format, text});
        return kInternalErrorCode;
    }
    std::vector<Call> calls;
};

class ReportFormats : public Testing::Registered {
protected:
    void SetUp() override {
        Registered::SetUp();
        SetUser(&recorder);
    }
    void TearDown() override {
        SetUser(nullptr);
        Registered::TearDown();
    }

    // Light, surface and scalar colours of `dst` (values of model V) converted from the unknown
    // model: each refused with the code of InternalError and its text as the format.
    template <class V, class M>
    void ExpectRefusals(const M& dst) {
        recorder.calls.clear();
        LgtColor<V> light{};
        SurfColor<V> surf{};
        ScalarColor<V> scalar{};
        EXPECT_EQ(dst.ConvertColor(&unknown, light, light), kInternalErrorCode) << dst.Name();
        EXPECT_EQ(dst.ConvertColor(&unknown, surf, surf), kInternalErrorCode) << dst.Name();
        EXPECT_EQ(dst.ConvertColor(&unknown, scalar, scalar), kInternalErrorCode) << dst.Name();
        const std::vector<FormatRecorder::Call> expected = {
            {"Not supported light color conversion", "Not supported light color conversion"},
            {"Not supported surface color conversion", "Not supported surface color conversion"},
            {"Not supported scalar color conversion", "Not supported scalar color conversion"}};
        EXPECT_TRUE(recorder.calls == expected)
            << dst.Name() << ": first format \""
            << (recorder.calls.empty() ? std::string() : recorder.calls[0].format) << "\"";
    }

    FormatRecorder recorder;
    Testing::TestModel unknown{nullptr};
};

TEST_F(ReportFormats, UnsupportedSourcesPassTheTextAsTheFormat) {
    ExpectRefusals<BWModel<Unpolarized>>(*BWModel<Unpolarized>::GetModel());
    ExpectRefusals<BWModel<StokesPolarization>>(*BWModel<StokesPolarization>::GetModel());
    ExpectRefusals<RGBModel<Unpolarized>>(*RGBModel<Unpolarized>::GetModel());
    ExpectRefusals<RGBModel<StokesPolarization>>(*RGBModel<StokesPolarization>::GetModel());
    ExpectRefusals<RGBModel<Unpolarized>>(*XYZModel::GetModel());
    ExpectRefusals<RGBModel<Unpolarized>>(*XYYModel::GetModel());
    ExpectRefusals<SpectralModel<Unpolarized>>(*SpectralModel<Unpolarized>::GetModel());
}

} // namespace
} // namespace Korvane
