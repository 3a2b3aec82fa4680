#include "cli/analysis/SpectrumXYZ.h"

#include "hostkit/cie/CIEConv.h"

#include <algorithm>
#include <vector>

namespace Korvane::Analysis {
namespace {

// The host converter takes its grid as a TArray.
bool ToTArray(const double* v, int n, TArray<double>& out) {
    if (out.Alloc(n) != 0)
        return false;
    for (int i = 0; i < n; ++i)
        out[i] = v[i];
    return true;
}

} // namespace

int LightXYZ(const SpectrumView& s, Vec3& xyz) {
    xyz = {0.0, 0.0, 0.0};
    TArray<double> waves(10, 1);
    if (s.count <= 0 || !ToTArray(s.nm, s.count, waves))
        return -1;
    BArray<double> values(const_cast<double*>(s.values), s.count); // read only
    TVect3<double> out(0.0, 0.0, 0.0);
    const int rc = CIEConv::spectrum2xyz(waves, values, out);
    if (rc == 0)
        xyz = {out.x, out.y, out.z};
    return rc;
}

int ReflectanceXYZ(const SpectrumView& r, const double* illuminant, Vec3& xyz, Vec3& white) {
    xyz = white = {0.0, 0.0, 0.0};
    std::vector<double> product(static_cast<std::size_t>(r.count > 0 ? r.count : 0));
    for (std::size_t i = 0; i < product.size(); ++i)
        product[i] = r.values[i] * illuminant[i];
    Vec3 lit{}, source{};
    int rc = LightXYZ({r.nm, product.data(), r.count}, lit);
    if (rc == 0)
        rc = LightXYZ({r.nm, illuminant, r.count}, source);
    if (rc != 0)
        return rc;
    if (!(source[1] > 0.0))
        return -1;
    for (int k = 0; k < 3; ++k) {
        xyz[static_cast<std::size_t>(k)] = lit[static_cast<std::size_t>(k)] / source[1];
        white[static_cast<std::size_t>(k)] = source[static_cast<std::size_t>(k)] / source[1];
    }
    return 0;
}

const std::vector<double>& SpikeWeights(const std::vector<double>& nm) {
    thread_local std::vector<double> grid, weights;
    thread_local const CIEConv* converter = nullptr;
    if (nm == grid && converter == CIEConv::Current())
        return weights;
    grid = nm;
    converter = CIEConv::Current();
    weights.assign(3 * nm.size(), 0.0);
    std::vector<double> spike(nm.size(), 0.0);
    for (std::size_t k = 0; k < nm.size(); ++k) {
        spike[k] = 1.0;
        Vec3 xyz{};
        if (LightXYZ({nm.data(), spike.data(), static_cast<int>(nm.size())}, xyz) != 0) {
            weights.clear();
            return weights;
        }
        spike[k] = 0.0;
        for (std::size_t c = 0; c < 3; ++c)
            weights[3 * k + c] = xyz[c];
    }
    return weights;
}

Vec3 LinearSrgb(const Vec3& xyz) {
    const TMatrix3& m = CIEConv::Current()->XYZ2RGB();
    Vec3 rgb{};
    for (int r = 0; r < 3; ++r)
        rgb[static_cast<std::size_t>(r)] = m[r][0] * xyz[0] + m[r][1] * xyz[1] + m[r][2] * xyz[2];
    return rgb;
}

Vec3 LightSrgb(const Vec3& xyz) {
    Vec3 rgb = LinearSrgb(xyz);
    const double largest = std::max({rgb[0], rgb[1], rgb[2]});
    if (largest > 0.0)
        for (double& v : rgb)
            v /= largest;
    return rgb;
}

} // namespace Korvane::Analysis
