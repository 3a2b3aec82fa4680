#include "hostkit/cie/SpikeResponses.h"

#include "hostkit/cie/CIEConvImpl.h"

namespace Korvane {

struct SpikeResponses::State {
    const CIEConv::Impl* impl = nullptr;
    Cie::GridTablesRef tables;
    int status = -1;
};

namespace {

// The weighted sum of the spike at i over `rows`: 0.0 + row i, channel by channel, as
// Cie::SumRows accumulates it (every other term adds a zero, which changes nothing).
void SpikeRow(const double* rows, int i, double out[Cie::kRow]) {
    for (int c = 0; c < Cie::kRow; ++c)
        out[c] = 0.0 + 1.0 * rows[Cie::kRow * i + c];
}

} // namespace

SpikeResponses::SpikeResponses(const CIEConv& conv, const TArray<double>& waves)
    : state_(new State) {
    state_->impl = conv.impl_;
    state_->status = conv.impl_->Tables(waves, waves.Count(), state_->tables);
}

SpikeResponses::~SpikeResponses() = default;

int SpikeResponses::Status() const {
    return state_->status;
}

TVect3<double> SpikeResponses::LightXYZ(int i) const {
    if (state_->status != 0)
        return {0.0, 0.0, 0.0};
    double acc[Cie::kRow];
    SpikeRow(state_->tables->light, i, acc);
    return {acc[0], acc[1], acc[2]};
}

TVect3<double> SpikeResponses::LightRGB(int i) const {
    if (state_->status != 0)
        return {0.0, 0.0, 0.0};
    return state_->impl->xyz2rgb * LightXYZ(i);
}

TVect3<double> SpikeResponses::ReflectanceRGB(int i) const {
    if (state_->status != 0)
        return {0.0, 0.0, 0.0};
    const Cie::GridTables& t = *state_->tables;
    // Cie::ReflectanceRGB on the spike, from its weighted sum on.
    if (t.reflectanceY == 0.0 || t.whiteRGB.x == 0.0 || t.whiteRGB.y == 0.0 || t.whiteRGB.z == 0.0)
        return {0.0, 0.0, 0.0};
    double acc[Cie::kRow];
    SpikeRow(t.reflectance, i, acc);
    const TVect3<double> xyz{acc[0] / t.reflectanceY, acc[1] / t.reflectanceY,
                             acc[2] / t.reflectanceY};
    const TVect3<double> v = state_->impl->xyz2rgb * xyz;
    return {v.x / t.whiteRGB.x, v.y / t.whiteRGB.y, v.z / t.whiteRGB.z};
}

} // namespace Korvane
