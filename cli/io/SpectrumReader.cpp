#include "cli/io/SpectrumReader.h"

#include "cli/io/Readers.h"

#include <sstream>

namespace Korvane::SpectrumIO {
namespace {

// One word: no delimiter inside and not a number.
bool LooksLikeCgatsIdentifier(const std::string& line) {
    const std::size_t b = line.find_first_not_of(" \t");
    const std::size_t e = line.find_last_not_of(" \t");
    const std::string word = line.substr(b, e - b + 1);
    if (word.find_first_of(" \t,;#\"") != std::string::npos)
        return false;
    double v = 0.0;
    return !ParseFinite(word, v) && (std::isalpha(static_cast<unsigned char>(word[0])) != 0);
}

} // namespace

bool ReadSpectra(std::istream& in, const std::string& file, const SpectrumSink& sink,
                 ReadError& error, Format format) {
    error = ReadError{};
    LineReader lines(in, file, error);
    std::string first;
    while (lines.Next(first) && IsBlank(first)) {
    }
    if (lines.Failed())
        return false;
    if (IsBlank(first)) {
        error = {file, 0, 0, "no spectra: the input is empty"};
        return false;
    }
    if (format == Format::Cgats || (format == Format::Auto && LooksLikeCgatsIdentifier(first)))
        return ReadCgats(lines, first, file, sink);
    return ReadDelimited(lines, first, file, sink);
}

bool ReadSpectra(const char* data, std::size_t size, const std::string& file,
                 const SpectrumSink& sink, ReadError& error, Format format) {
    std::istringstream in(std::string(data, size));
    return ReadSpectra(in, file, sink, error, format);
}

} // namespace Korvane::SpectrumIO
