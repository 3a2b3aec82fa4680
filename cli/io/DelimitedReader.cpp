// Delimited text: the first column is the wavelength in nm, every further column one spectrum.
// A first line whose first field is not a number is the header of names. The delimiter is what
// follows the wavelength on the first data line: ',', ';' or tab (spaces around it allowed), else
// runs of spaces and tabs; a header's names may hold any other delimiter. A field may be quoted
// with '"': a quoted field may hold the delimiter, and "" in it is one '"' (a number in quotes
// is read as the number). Lines that are blank or whose first character that is not blank is
// '#' are skipped.
#include "cli/io/Readers.h"

#include <algorithm>

namespace Korvane::SpectrumIO {
namespace {

struct Field {
    std::string text;
    long column; // 1-based
};

// What is wrong with a line's fields: where (1-based column) and what was expected.
struct SplitError {
    long column = 0;
    std::string message;
};

bool IsComment(const std::string& line) {
    const std::size_t b = line.find_first_not_of(" \t");
    return b != std::string::npos && line[b] == '#';
}

// Past the spaces and tabs at `i`, but not past the delimiter (a tab may be one).
std::size_t SkipBlanks(const std::string& line, std::size_t i, char delim = 0) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t') && line[i] != delim)
        ++i;
    return i;
}

// The field starting at `i`: a quoted one up to its closing quote ("" inside is one quote), or
// plain text up to the first of `stops` or the line end. Returns the index just past it, npos
// when a quote is not closed.
std::size_t ScanField(const std::string& line, std::size_t i, const char* stops,
                      std::string& text) {
    text.clear();
    if (i < line.size() && line[i] == '"') {
        for (std::size_t j = i + 1; j < line.size(); ++j) {
            if (line[j] != '"') {
                text += line[j];
            } else if (j + 1 < line.size() && line[j + 1] == '"') {
                text += '"';
                ++j;
            } else {
                return j + 1;
            }
        }
        return std::string::npos;
    }
    const std::size_t e = std::min(line.find_first_of(stops, i), line.size());
    text.assign(line, i, e - i);
    return e;
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

// Splits on `delim` (0: runs of spaces and tabs), quotes respected.
bool Split(const std::string& line, char delim, std::vector<Field>& out, SplitError& error) {
    out.clear();
    const char one[] = {delim, '\0'};
    const char* stops = delim == 0 ? " \t" : one;
    std::size_t i = 0;
    for (;;) {
        const std::size_t lead = SkipBlanks(line, i, delim);
        if (delim == 0 && lead == line.size())
            return true;
        const bool empty = lead == line.size() || line[lead] == delim;
        Field f{"", static_cast<long>(empty ? i : lead) + 1};
        std::size_t e = ScanField(line, lead, stops, f.text);
        if (e == std::string::npos) {
            error = {static_cast<long>(lead) + 1, "expected a closing '\"'"};
            return false;
        }
        if (lead < line.size() && line[lead] == '"') {
            const std::size_t after = e;
            if (delim != 0)
                e = SkipBlanks(line, e, delim);
            const bool ends = e == line.size() ||
                              (delim != 0 ? line[e] == delim : line[e] == ' ' || line[e] == '\t');
            if (!ends) {
                const std::size_t stop = std::min(line.find_first_of(stops, e), line.size());
                error = {static_cast<long>(after) + 1,
                         "expected a " + DelimiterName(delim) +
                             " or the line end after a closing '\"', found " +
                             Quote(line.substr(e, stop - e))};
                return false;
            }
        } else if (delim != 0) {
            const std::size_t last = f.text.find_last_not_of(" \t");
            f.text.erase(last == std::string::npos ? 0 : last + 1);
        }
        out.push_back(std::move(f));
        if (delim == 0) {
            i = e;
            continue;
        }
        if (e >= line.size())
            return true;
        i = e + 1;
    }
}

// A line whose first field (up to any delimiter) is a number: a data line, not the header.
bool FirstFieldIsNumber(const std::string& line) {
    std::string text;
    double v = 0.0;
    return ScanField(line, SkipBlanks(line, 0), ",; \t", text) != std::string::npos &&
           ParseFinite(text, v);
}

// The delimiter of a data line: the ',', ';' or tab after its first field (the wavelength),
// spaces before it allowed; 0 (runs of blanks) otherwise.
char DelimiterOf(const std::string& line) {
    std::string text;
    std::size_t e = ScanField(line, SkipBlanks(line, 0), ",; \t", text);
    if (e == std::string::npos)
        return 0;
    while (e < line.size() && line[e] == ' ')
        ++e;
    if (e < line.size() && (line[e] == ',' || line[e] == ';' || line[e] == '\t'))
        return line[e];
    return 0;
}

// The next line that is neither blank nor a comment; false at the end or on an error.
bool NextDataLine(LineReader& lines, std::string& line) {
    while (lines.Next(line))
        if (!IsBlank(line) && !IsComment(line))
            return true;
    return false;
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
    // A header is split with the delimiter of the first data line that follows it.
    const bool header = !FirstFieldIsNumber(line);
    const long firstLine = lines.LineNumber();
    std::string headerText;
    if (header) {
        headerText = std::move(line);
        if (!NextDataLine(lines, line))
            return lines.Failed()
                       ? false
                       : lines.Fail(0, "no data rows: expected lines of a wavelength and values");
    }
    const char delim = DelimiterOf(line);
    std::vector<Field> fields;
    SplitError bad;
    if (!Split(header ? headerText : line, delim, fields, bad))
        return lines.FailAt(firstLine, bad.column, bad.message);
    const std::size_t width = fields.size();
    if (width < 2)
        return lines.FailAt(firstLine, 0,
                            "expected a wavelength column and at least one spectrum column "
                            "separated by commas, semicolons, tabs or spaces; found one field");
    if (width - 1 > static_cast<std::size_t>(kMaxColumns))
        return lines.FailAt(firstLine, 0,
                            "more than " + std::to_string(kMaxColumns) + " spectra in one file");

    std::vector<std::string> names;
    for (std::size_t c = 1; c < width; ++c)
        names.push_back(header && !fields[c].text.empty() ? fields[c].text
                                                          : file + ":" + std::to_string(c));

    std::vector<double> nm;
    std::vector<std::vector<double>> columns(width - 1);
    const std::size_t maxRows = std::min<std::size_t>(kMaxPoints, kMaxValues / (width - 1));
    bool pending = true; // `line` holds a data line not yet read
    for (;;) {
        if (!pending && !NextDataLine(lines, line))
            break;
        pending = false;
        if (!Split(line, delim, fields, bad))
            return lines.Fail(bad.column, bad.message);
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
