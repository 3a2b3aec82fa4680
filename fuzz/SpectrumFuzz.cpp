// Fuzz target: the tool's spectrum readers (delimited text and CGATS) over arbitrary bytes, read
// as detected and forced into each format. Whatever the input, a read either fails with an error
// that says where, or hands out spectra that keep the readers' promises: as many values as
// wavelengths, at most kMaxPoints of them, wavelengths finite, positive and strictly increasing,
// values finite.
#include "cli/io/SpectrumReader.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace Korvane::SpectrumIO;

void Check(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "spectrum reader broke its promise: %s\n", what);
        std::abort();
    }
}

bool Keep(Spectrum& s) {
    Check(s.nm.size() == s.values.size(), "as many values as wavelengths");
    Check(!s.nm.empty() && s.nm.size() <= static_cast<std::size_t>(kMaxPoints), "point count");
    for (std::size_t i = 0; i < s.nm.size(); ++i) {
        Check(std::isfinite(s.nm[i]) && s.nm[i] > 0.0, "finite positive wavelength");
        Check(i == 0 || s.nm[i] > s.nm[i - 1], "increasing wavelengths");
        Check(std::isfinite(s.values[i]), "finite value");
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    for (Format format : {Format::Auto, Format::Delimited, Format::Cgats}) {
        ReadError error;
        if (!ReadSpectra(text, size, "input", Keep, error, format))
            Check(!error.message.empty() && !error.Text().empty(), "an error says what");
    }
    return 0;
}
