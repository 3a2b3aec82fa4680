#include "hostkit/cie/CieTables.h"

#include "tables/Cie1931Cmf.h"
#include "tables/Cie1964Cmf.h"
#include "tables/CieD65.h"
#include "tables/Mallett2019Basis.h"

namespace Korvane::Cie {
namespace {

// True when lambda[i] == first + i * step for every row: the interpolation below finds a sample
// by index arithmetic and relies on it.
constexpr bool IsUniformGrid(const double* lambda, int count, double first, double step) {
    for (int i = 0; i < count; ++i)
        if (lambda[i] != first + i * step)
            return false;
    return true;
}

namespace D = Data;
static_assert(D::Cie1931Cmf::kCount == kCmfCount &&
                  IsUniformGrid(D::Cie1931Cmf::lambda, kCmfCount, kCmfFirst, 1.0),
              "data/cie1931_2deg_cmf_1nm.csv must hold 360..830 nm at 1 nm");
static_assert(D::Cie1964Cmf::kCount == kCmfCount &&
                  IsUniformGrid(D::Cie1964Cmf::lambda, kCmfCount, kCmfFirst, 1.0),
              "data/cie1964_10deg_cmf_1nm.csv must hold 360..830 nm at 1 nm");

constexpr double kD65First = 300.0;
constexpr int kD65Count = 531;
static_assert(D::CieD65::kCount == kD65Count &&
                  IsUniformGrid(D::CieD65::lambda, kD65Count, kD65First, 1.0),
              "data/cie_d65_spd.csv must hold 300..830 nm at 1 nm");

constexpr double kBasisFirst = 380.0;
constexpr double kBasisStep = 5.0;
constexpr int kBasisCount = 81;
static_assert(D::Mallett2019Basis::kCount == kBasisCount &&
                  IsUniformGrid(D::Mallett2019Basis::lambda, kBasisCount, kBasisFirst, kBasisStep),
              "data/mallett2019_srgb_basis.csv must hold 380..780 nm at 5 nm");

// The basis with every row divided by its sum.
struct NormalisedBasis {
    double v[3][kBasisCount];
};

constexpr NormalisedBasis MakeNormalisedBasis() {
    NormalisedBasis b{};
    for (int i = 0; i < kBasisCount; ++i) {
        const double r = D::Mallett2019Basis::r[i];
        const double g = D::Mallett2019Basis::g[i];
        const double bl = D::Mallett2019Basis::b[i];
        const double sum = r + g + bl;
        b.v[0][i] = r / sum;
        b.v[1][i] = g / sum;
        b.v[2][i] = bl / sum;
    }
    return b;
}

constexpr NormalisedBasis kBasis = MakeNormalisedBasis();

constexpr CmfTable kCmf1931{D::Cie1931Cmf::xbar, D::Cie1931Cmf::ybar, D::Cie1931Cmf::zbar};
constexpr CmfTable kCmf1964{D::Cie1964Cmf::xbar, D::Cie1964Cmf::ybar, D::Cie1964Cmf::zbar};

// Position of lambda in a uniform table as a sample index k and a fraction t in [0, 1], for
// lambda inside the table's range; the last interval also takes the last sample (t = 1).
struct Cell {
    int k;
    double t;
};

Cell Locate(double lambda, double first, double step, int count) {
    const double u = (lambda - first) / step;
    int k = static_cast<int>(u);
    if (k > count - 2)
        k = count - 2;
    return {k, u - k};
}

double Lerp(const double* v, Cell c) {
    return (1.0 - c.t) * v[c.k] + c.t * v[c.k + 1];
}

} // namespace

const CmfTable& Cmf(Observer observer) {
    return observer == Observer::CIE1964_10deg ? kCmf1964 : kCmf1931;
}

const double* CmfWavelengths() {
    return D::Cie1931Cmf::lambda;
}

void CmfAt(const CmfTable& cmf, double lambda, double out[3]) {
    const Cell c = Locate(lambda, kCmfFirst, 1.0, kCmfCount);
    out[0] = Lerp(cmf.xbar, c);
    out[1] = Lerp(cmf.ybar, c);
    out[2] = Lerp(cmf.zbar, c);
}

double D65At(double lambda) {
    if (!(lambda >= kD65First && lambda <= kCmfLast))
        return 0.0;
    return Lerp(D::CieD65::d65, Locate(lambda, kD65First, 1.0, kD65Count));
}

void BasisAt(double lambda, double out[3]) {
    const double last = kBasisFirst + (kBasisCount - 1) * kBasisStep;
    Cell c{0, 0.0};
    if (lambda >= last)
        c = {kBasisCount - 2, 1.0};
    else if (lambda > kBasisFirst)
        c = Locate(lambda, kBasisFirst, kBasisStep, kBasisCount);
    for (int ch = 0; ch < 3; ++ch)
        out[ch] = Lerp(kBasis.v[ch], c);
}

} // namespace Korvane::Cie
