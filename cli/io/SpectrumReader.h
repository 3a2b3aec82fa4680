// Readers of measured spectra: delimited text (CSV and the like) and CGATS files with spectral
// fields. Every spectrum read is handed to a sink as soon as it is complete, so a CGATS file of
// many spectra streams; a delimited file (spectra in columns) is held once, within kMaxValues.
//
// Hostile-input safe: the limits below bound time and memory whatever the input; a bad file stops
// the read with a ReadError that names the file, the line and column (1-based, in bytes) and what
// was expected. Nothing is handed to the sink from a line that failed.
#pragma once

#include <cstddef>
#include <functional>
#include <istream>
#include <string>
#include <vector>

namespace Korvane::SpectrumIO {

// Wavelengths per spectrum.
inline constexpr int kMaxPoints = 100000;
// Spectra per delimited file (columns after the wavelength column).
inline constexpr int kMaxColumns = 100000;
// Values a delimited file may hold at once (rows x spectra): 20 million doubles, 160 MB.
inline constexpr std::size_t kMaxValues = 20000000;
// Bytes per line, the line end excluded.
inline constexpr std::size_t kMaxLineLength = std::size_t{4} << 20;

struct Spectrum {
    std::string name;           // header name, CGATS SAMPLE_ID / SAMPLE_NAME, or "<file>:<n>"
    std::vector<double> nm;     // finite, positive, strictly increasing
    std::vector<double> values; // finite, one per wavelength
};

struct ReadError {
    std::string file;
    long line = 0;   // 0 when the error is about the whole file
    long column = 0; // 0 when the error is about the whole line
    std::string message;
    // "file:line:column: message" (the parts that are known).
    std::string Text() const;
};

// Called with each spectrum; return false to stop reading (not an error).
using SpectrumSink = std::function<bool(Spectrum&)>;

enum class Format { Auto, Delimited, Cgats };

// Reads every spectrum of `in` (named `file` in errors). Auto: CGATS when the first line that is
// not blank is a single word (the CGATS file identifier, e.g. "SPECT", "CTI3"), delimited text
// otherwise. A UTF-8 byte-order mark and CR line ends are accepted. True on success (also when
// the sink stopped the read); false with `error` filled.
bool ReadSpectra(std::istream& in, const std::string& file, const SpectrumSink& sink,
                 ReadError& error, Format format = Format::Auto);

// The same over a buffer of `size` bytes (need not be terminated).
bool ReadSpectra(const char* data, std::size_t size, const std::string& file,
                 const SpectrumSink& sink, ReadError& error, Format format = Format::Auto);

} // namespace Korvane::SpectrumIO
