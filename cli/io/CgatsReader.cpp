// CGATS files with spectral fields, as colour measurement software writes them (.sp, .ti3): a
// file identifier line, keyword lines (NAME value or NAME "value"; KEYWORD lines declare names),
// BEGIN_DATA_FORMAT field names END_DATA_FORMAT, BEGIN_DATA sets END_DATA. Spectral fields are
// named SPEC_<nm> or SPECTRAL_<nm>; their wavelengths are SPECTRAL_START_NM..SPECTRAL_END_NM in
// SPECTRAL_BANDS even steps when the header gives all three (the names may be rounded), else the
// numbers in the names. Values are divided by SPECTRAL_NORM when given (e.g. 100 for percent).
// A set is named by its SAMPLE_ID, SAMPLE_NAME or SAMPLE_LOC field, else "<file>:<set number>".
// Sets may span lines; tokens are separated by spaces or tabs, strings are in double quotes. Each
// set is handed to the sink as soon as it is complete.
#include "cli/io/Readers.h"

#include <cmath>
#include <map>
#include <string_view>

namespace Korvane::SpectrumIO {
namespace {

struct Token {
    std::string_view text; // into the line being read
    long column;
    bool quoted;
};

// Tokens of one line; '#' outside quotes starts a comment. False for an unterminated string.
bool Tokens(const std::string& line, std::vector<Token>& out, long& badColumn) {
    out.clear();
    std::size_t i = 0;
    while (i < line.size()) {
        const char c = line[i];
        if (c == ' ' || c == '\t') {
            ++i;
            continue;
        }
        if (c == '#')
            break;
        const std::size_t b = i;
        if (c == '"') {
            const std::size_t e = line.find('"', i + 1);
            if (e == std::string::npos) {
                badColumn = static_cast<long>(b) + 1;
                return false;
            }
            out.push_back(
                {std::string_view(line).substr(b + 1, e - b - 1), static_cast<long>(b) + 1, true});
            i = e + 1;
            continue;
        }
        while (i < line.size() && line[i] != ' ' && line[i] != '\t')
            ++i;
        out.push_back({std::string_view(line).substr(b, i - b), static_cast<long>(b) + 1, false});
    }
    return true;
}

// The wavelength in a spectral field name, or a negative number for another field.
double SpectralFieldNm(const std::string& name) {
    std::string digits;
    if (name.compare(0, 5, "SPEC_") == 0)
        digits = name.substr(5);
    else if (name.compare(0, 9, "SPECTRAL_") == 0)
        digits = name.substr(9);
    else
        return -1.0;
    if (digits.compare(0, 3, "NM_") == 0)
        digits = digits.substr(3);
    double v = 0.0;
    return ParseFinite(digits, v) && v > 0.0 ? v : -1.0;
}

} // namespace

bool ReadCgats(LineReader& lines, const std::string& first, const std::string& file,
               const SpectrumSink& sink) {
    (void)first; // the identifier names the file's kind only
    std::map<std::string, std::string> keywords;
    std::vector<Token> tokens;
    std::string line;
    long bad = 0;

    // Header up to BEGIN_DATA_FORMAT.
    for (;;) {
        if (!lines.Next(line))
            return lines.Failed()
                       ? false
                       : lines.Fail(0, "expected BEGIN_DATA_FORMAT before the end of the file");
        if (!Tokens(line, tokens, bad))
            return lines.Fail(bad, "expected a closing '\"'");
        if (tokens.empty())
            continue;
        if (tokens[0].text == "BEGIN_DATA_FORMAT" && !tokens[0].quoted)
            break;
        if (tokens[0].text == "KEYWORD")
            continue;
        if (tokens.size() >= 2 && keywords.size() < 10000)
            keywords[std::string(tokens[0].text)] = std::string(tokens[1].text);
    }

    // Field names up to END_DATA_FORMAT.
    std::vector<std::string> fields;
    std::vector<long> fieldLines;
    bool formatDone = false;
    for (std::size_t t = 1; t < tokens.size(); ++t) {
        if (tokens[t].text == "END_DATA_FORMAT") {
            formatDone = true;
            break;
        }
        fields.push_back(std::string(tokens[t].text));
    }
    while (!formatDone) {
        if (!lines.Next(line))
            return lines.Failed()
                       ? false
                       : lines.Fail(0, "expected END_DATA_FORMAT before the end of the file");
        if (!Tokens(line, tokens, bad))
            return lines.Fail(bad, "expected a closing '\"'");
        for (const Token& t : tokens) {
            if (t.text == "END_DATA_FORMAT") {
                formatDone = true;
                break;
            }
            if (fields.size() >= static_cast<std::size_t>(kMaxPoints) + 16)
                return lines.Fail(t.column,
                                  "more than " + std::to_string(kMaxPoints) + " spectral fields");
            fields.push_back(std::string(t.text));
        }
    }
    const long formatLine = lines.LineNumber();

    // Which fields are spectral, and their wavelengths.
    std::vector<std::size_t> spectral;
    std::vector<double> nm;
    long nameField = -1;
    for (std::size_t f = 0; f < fields.size(); ++f) {
        const double w = SpectralFieldNm(fields[f]);
        if (w > 0.0) {
            spectral.push_back(f);
            nm.push_back(w);
        } else if (nameField < 0 && (fields[f] == "SAMPLE_ID" || fields[f] == "SAMPLE_NAME" ||
                                     fields[f] == "SAMPLE_LOC")) {
            nameField = static_cast<long>(f);
        }
    }
    if (spectral.empty())
        return lines.Fail(0,
                          "expected SPEC_<nm> or SPECTRAL_<nm> fields in the data format (line " +
                              std::to_string(formatLine) + "); found none");
    if (spectral.size() > static_cast<std::size_t>(kMaxPoints))
        return lines.Fail(0, "more than " + std::to_string(kMaxPoints) + " spectral fields");
    const auto keyword = [&](const char* name, double& v) {
        const auto it = keywords.find(name);
        return it != keywords.end() && ParseFinite(it->second, v);
    };
    double start = 0.0, end = 0.0, bands = 0.0, norm = 1.0;
    if (keyword("SPECTRAL_START_NM", start) && keyword("SPECTRAL_END_NM", end) &&
        keyword("SPECTRAL_BANDS", bands)) {
        if (bands != static_cast<double>(spectral.size()))
            return lines.Fail(0, "SPECTRAL_BANDS says " + Shortest(bands) +
                                     " but the data format has " + std::to_string(spectral.size()) +
                                     " spectral fields");
        for (std::size_t i = 0; i < nm.size(); ++i)
            nm[i] = spectral.size() == 1 ? start
                                         : start + (end - start) * static_cast<double>(i) /
                                                       static_cast<double>(spectral.size() - 1);
    }
    for (std::size_t i = 0; i < nm.size(); ++i)
        if (!(nm[i] > 0.0) || (i > 0 && !(nm[i] > nm[i - 1])))
            return lines.Fail(0, "expected spectral fields with positive, increasing wavelengths; "
                                 "field " +
                                     fields[spectral[i]] + " is at " + Shortest(nm[i]) + " nm");
    if (keywords.count("SPECTRAL_NORM") && !(keyword("SPECTRAL_NORM", norm) && norm > 0.0))
        return lines.Fail(0, "expected SPECTRAL_NORM to be a finite positive number, found " +
                                 Quote(keywords["SPECTRAL_NORM"]));

    // Up to BEGIN_DATA.
    for (;;) {
        if (!lines.Next(line))
            return lines.Failed() ? false
                                  : lines.Fail(0, "expected BEGIN_DATA before the end of the file");
        if (!Tokens(line, tokens, bad))
            return lines.Fail(bad, "expected a closing '\"'");
        if (!tokens.empty() && tokens[0].text == "BEGIN_DATA")
            break;
    }

    // Sets, streamed.
    std::vector<bool> isSpectral(fields.size(), false);
    for (std::size_t f : spectral)
        isSpectral[f] = true;
    Spectrum s;
    s.nm = nm;
    s.values.reserve(nm.size());
    std::size_t field = 0;
    long set = 0;
    std::string name;
    for (;;) {
        if (!lines.Next(line))
            return lines.Failed() ? false
                                  : lines.Fail(0, "expected END_DATA before the end of the file");
        if (!Tokens(line, tokens, bad))
            return lines.Fail(bad, "expected a closing '\"'");
        for (const Token& t : tokens) {
            if (t.text == "END_DATA" && !t.quoted) {
                if (field != 0)
                    return lines.Fail(t.column, "expected " +
                                                    std::to_string(fields.size() - field) +
                                                    " more fields of set " +
                                                    std::to_string(set + 1) + " before END_DATA");
                return true;
            }
            if (static_cast<long>(field) == nameField)
                name = std::string(t.text);
            if (isSpectral[field]) {
                double v = 0.0;
                if (t.quoted || !ParseFinite(t.text, v))
                    return lines.Fail(t.column, "expected a finite number for " + fields[field] +
                                                    ", found " + Quote(std::string(t.text)));
                s.values.push_back(v / norm);
            }
            if (++field == fields.size()) {
                ++set;
                s.name = nameField >= 0 ? name : file + ":" + std::to_string(set);
                if (!sink(s))
                    return true;
                s.nm = nm;
                s.values.clear();
                field = 0;
            }
        }
    }
}

} // namespace Korvane::SpectrumIO
