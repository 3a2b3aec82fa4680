#include "plugin/spectral/Resample.h"

namespace Korvane {

int ResampleValues(const TArray<double>& s, const double* v, int count, const TArray<double>& t,
                   double* out, int outCount) {
    const int m = s.Count();
    const int n = t.Count();
    if (outCount != n || count != m)
        return -1;
    if (m == 0)
        return n == 0 ? 0 : -1;
    for (int i = 0; i < n; ++i) {
        const int k = CountNotAbove(s, t[i]);
        if (k == 0) {
            out[i] = v[0];
        } else if (k == m) {
            out[i] = v[m - 1];
        } else {
            const double u = (t[i] - s[k - 1]) / (s[k] - s[k - 1]);
            out[i] = (1.0 - u) * v[k - 1] + u * v[k];
        }
    }
    return 0;
}

} // namespace Korvane
