// The CIE converter's observer, the report log and the memory statistics.
#include <korvane/hostkit/base/MemStat.h>
#include <korvane/hostkit/base/User.h>
#include <korvane/hostkit/cie/CIEConvAll.h>
#include <korvane/hostkit/colormodel/ColorModel.h>
#include <korvane/hostkit/colormodel/ColorModelType.h>
#include <korvane/hostkit/colormodel/ObserverChoice.h>
#include <korvane/hostkit/plugsys/PluginLoader.h>
#include <korvane/hostkit/plugsys/PluginLocation.h>

#include <cstdio>

int main() {
    using namespace Korvane;
    SetReportSink(SilentSink()); // reports go to the log only
    ReportLog::SetCapacity(100); // keep the last 100 (the default keeps 1000)
    PluginLoader loader;
    if (loader.Load(DefaultPluginPath().c_str()) != 0)
        return 1;

    // Configuration time: no other thread uses the models while the observer changes.
    if (UseObserver(Observer::CIE1964_10deg) != 0)
        return 1;
    const CIEConv* conv = ColorModel::GetCIEConv();
    TVect3<double> rgb = conv->XYZ2RGB() * TVect3<double>(0.95047, 1.0, 1.08883);
    std::printf("D65 white in linear sRGB: %.4f %.4f %.4f\n", rgb.x, rgb.y, rgb.z);
    ReleaseObserver(); // back to CIE 1931 2 degree before the plug-in goes

    // A failing call reports; its return value is the report's code.
    const ColorModel* rgbModel = TColorModel->FindModel("URGB");
    const int code = User()->InternalError("an example report about %s", rgbModel->Name().c_str());
    std::printf("code %d (InternalError is %d)\n", code, kInternalErrorCode);

    loader.Unload();
    for (const Report& r : ReportLog::Entries())
        std::printf("#%llu %s\n", r.sequence, r.text.c_str());
    std::printf("%zu kept, %llu dropped\n", ReportLog::Count(), ReportLog::Dropped());

    const MemStatCounts arrays = MemStats::Get("TArray");
    std::printf("TArray blocks outstanding after unloading: %lld\n", arrays.blocksOutstanding);
    return arrays.blocksOutstanding == 0 ? 0 : 1;
}
