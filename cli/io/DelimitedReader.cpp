// Delimited text: the first column is the wavelength in nm, every further column one spectrum.
// The delimiter is the first of ',', ';', tab found in the first line, else runs of spaces. A
// first line whose first field is not a number is the header of names. Lines that are blank or
// whose first character that is not blank is '#' are skipped. Fields may be quoted with '"'
// (names only; a number in quotes is read as the number).
#include "cli/io/Readers.h"

#include <algorithm>

namespace Korvane::SpectrumIO {
namespace {

struct Field {
    std::string text;
    long column; // 1-based
};

bool IsComment(const std::string& line) {
    const std::size_t b = line.find_first_not_of(" \t");
    return b != std::string::npos && line[b] == '#';
}

std::string Trim(const std::string& s) {
    const std::size_t b = s.find_first_not_of(" \t");
    if (b == std::string::npos)
        return "";
    const std::size_t e = s.find_last_not_of(" \t");
    std::string t = s.substr(b, e - b + 1);
    if (t.size() >= 2 && t.front() == '"' && t.back() == '"')
        t = t.substr(1, t.size() - 2);
    return t;
}

// Splits on `delim` (0: runs of spaces and tabs).
void Split(const std::string& line, char delim, std::vector<Field>& out) {
    out.clear();
    if (delim == 0) {
        std::size_t i = 0;
        while (i < line.size()) {
            while (i < line.size() && (line[i] == ' ' || line[i] == '\t'))
                ++i;
            if (i == line.size())
                break;
            const std::size_t b = i;
            while (i < line.size() && line[i] != ' ' && line[i] != '\t')
                ++i;
            out.push_back({Trim(line.substr(b, i - b)), static_cast<long>(b) + 1});
        }
        return;
    }
    std::size_t b = 0;
    for (;;) {
        const std::size_t e = line.find(delim, b);
        const std::size_t end = e == std::string::npos ? line.size() : e;
        const std::size_t lead = line.find_first_not_of(" \t", b);
        const long column =
            static_cast<long>(lead != std::string::npos && lead < end ? lead : b) + 1;
        out.push_back({Trim(line.substr(b, end - b)), column});
        if (e == std::string::npos)
            break;
        b = e + 1;
    }
}

char DelimiterOf(const std::string& line) {
    for (char d : {',', ';', '\t'})
        if (line.find(d) != std::string::npos)
            return d;
    return 0;
}

std::string DelimiterName(char d) {
    switch (d) {
    case ',':
        return "comma";
    case ';':
        return "semicolon";
    case '\t':
        return "tab";
    default:
        return "space";
    }
}

} // namespace

bool ReadDelimited(LineReader& lines, std::string line, const std::string& file,
                   const SpectrumSink& sink) {
    // Leading comment lines.
    while (IsComment(line) || IsBlank(line)) {
        if (!lines.Next(line))
            return lines.Failed() ? false
                                  : lines.Fail(0, "no spectra: only comments and blank lines");
    }
    const char delim = DelimiterOf(line);
    std::vector<Field> fields;
    Split(line, delim, fields);
    const std::size_t width = fields.size();
    if (width < 2)
        return lines.Fail(0, "expected a wavelength column and at least one spectrum column "
                             "separated by commas, semicolons, tabs or spaces; found one field");
    if (width - 1 > static_cast<std::size_t>(kMaxColumns))
        return lines.Fail(0, "more than " + std::to_string(kMaxColumns) + " spectra in one file");

    std::vector<std::string> names;
    double probe = 0.0;
    const bool header = !ParseFinite(fields[0].text, probe);
    for (std::size_t c = 1; c < width; ++c)
        names.push_back(header && !fields[c].text.empty() ? fields[c].text
                                                          : file + ":" + std::to_string(c));

    std::vector<double> nm;
    std::vector<std::vector<double>> columns(width - 1);
    const std::size_t maxRows = std::min<std::size_t>(kMaxPoints, kMaxValues / (width - 1));
    bool have = !header;
    for (;;) {
        if (!have) {
            if (!lines.Next(line))
                break;
            if (IsBlank(line) || IsComment(line))
                continue;
            Split(line, delim, fields);
        }
        have = false;
        if (fields.size() != width)
            return lines.Fail(0, "expected " + std::to_string(width) + " " + DelimiterName(delim) +
                                     "-separated fields as in the first line, found " +
                                     std::to_string(fields.size()));
        if (nm.size() >= maxRows)
            return lines.Fail(0, "more than " + std::to_string(maxRows) + " wavelengths (at most " +
                                     std::to_string(kMaxPoints) + " per spectrum and " +
                                     std::to_string(kMaxValues) + " values per file)");
        double w = 0.0;
        if (!ParseFinite(fields[0].text, w) || !(w > 0.0))
            return lines.Fail(fields[0].column, "expected a wavelength in nm (a finite positive "
                                                "number), found " +
                                                    Quote(fields[0].text));
        if (!nm.empty() && !(w > nm.back()))
            return lines.Fail(fields[0].column, "expected a wavelength above the previous one (" +
                                                    Shortest(nm.back()) + "), found " +
                                                    Quote(fields[0].text));
        nm.push_back(w);
        for (std::size_t c = 1; c < width; ++c) {
            double v = 0.0;
            if (!ParseFinite(fields[c].text, v))
                return lines.Fail(fields[c].column,
                                  "expected a finite number, found " + Quote(fields[c].text));
            columns[c - 1].push_back(v);
        }
    }
    if (lines.Failed())
        return false;
    if (nm.empty())
        return lines.Fail(0, "no data rows: expected lines of a wavelength and values");
    for (std::size_t c = 0; c + 1 < width; ++c) {
        Spectrum s{names[c], nm, std::move(columns[c])};
        if (!sink(s))
            break;
    }
    return true;
}

} // namespace Korvane::SpectrumIO
