#include "hostkit/base/TextSerializer.h"

#include "hostkit/base/ArchiveBytes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>

namespace Korvane {
namespace {

constexpr std::string_view kFirstLine = "korvane-archive text ";
constexpr std::string_view kLastLine = "end crc32 ";
constexpr std::string_view kNanPrefix = "nan:0x";
constexpr std::size_t kShownChars = 60; // of an offending line, in messages

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string Quote(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c >= 0x20 && c < 0x7F) {
            out += c;
        } else {
            char esc[8];
            std::snprintf(esc, sizeof esc, "\\x%02X",
                          static_cast<unsigned>(static_cast<unsigned char>(c)));
            out += esc;
        }
    }
    return out + '"';
}

// Reads a quoted string from the start of `in`; `in` keeps what follows the closing quote.
bool Unquote(std::string_view& in, std::string& out) {
    if (in.empty() || in[0] != '"')
        return false;
    out.clear();
    std::size_t i = 1;
    for (; i < in.size() && in[i] != '"'; ++i) {
        if (in[i] != '\\') {
            out += in[i];
        } else if (i + 1 < in.size() && (in[i + 1] == '"' || in[i + 1] == '\\')) {
            out += in[++i];
        } else if (i + 3 < in.size() && in[i + 1] == 'x' && HexDigit(in[i + 2]) >= 0 &&
                   HexDigit(in[i + 3]) >= 0) {
            out += static_cast<char>(HexDigit(in[i + 2]) * 16 + HexDigit(in[i + 3]));
            i += 3;
        } else {
            return false;
        }
    }
    if (i >= in.size())
        return false;
    in.remove_prefix(i + 1);
    return true;
}

// The whole of `in` as exactly one quoted string.
bool UnquoteAll(std::string_view in, std::string& out) {
    return Unquote(in, out) && in.empty();
}

std::string FormatDouble(double v) {
    char text[32];
    if (std::isnan(v)) {
        std::uint64_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        std::snprintf(text, sizeof text, "nan:0x%016llX", static_cast<unsigned long long>(bits));
        return text;
    }
    const auto r = std::to_chars(text, text + sizeof text, v);
    return std::string(text, r.ptr);
}

bool ParseDouble(std::string_view in, double& v) {
    if (in.substr(0, kNanPrefix.size()) == kNanPrefix) {
        in.remove_prefix(kNanPrefix.size());
        if (in.size() != 16)
            return false;
        std::uint64_t bits = 0;
        for (const char c : in) {
            const int d = HexDigit(c);
            if (d < 0)
                return false;
            bits = (bits << 4) | static_cast<std::uint64_t>(d);
        }
        double nan;
        std::memcpy(&nan, &bits, sizeof nan);
        if (!std::isnan(nan))
            return false;
        v = nan;
        return true;
    }
    double parsed = 0.0;
    const auto r = std::from_chars(in.data(), in.data() + in.size(), parsed);
    if (in.empty() || r.ec != std::errc() || r.ptr != in.data() + in.size() || std::isnan(parsed))
        return false; // a NaN must come with its bit pattern
    v = parsed;
    return true;
}

template <class Int>
bool ParseInt(std::string_view in, Int& v) {
    Int parsed = 0;
    const auto r = std::from_chars(in.data(), in.data() + in.size(), parsed);
    if (in.empty() || r.ec != std::errc() || r.ptr != in.data() + in.size())
        return false;
    v = parsed;
    return true;
}

} // namespace

TextSerializer::TextSerializer() : reading_(false) {
    text_ = std::string(kFirstLine) + std::to_string(kVersion) + "\n";
}

TextSerializer::TextSerializer(std::string text) : text_(std::move(text)), reading_(true) {
    CheckFrame();
}

bool TextSerializer::Recognises(const std::string& bytes) {
    return bytes.compare(0, kFirstLine.size(), kFirstLine) == 0;
}

void TextSerializer::CheckFrame() {
    const std::string_view all = text_;
    if (!Recognises(text_)) {
        Fail("text archive, line 1: not \"" + std::string(kFirstLine) +
             "<version>\" (not a text archive)");
        return;
    }
    const std::size_t firstEnd = all.find('\n');
    int version = 0;
    if (firstEnd == std::string_view::npos ||
        !ParseInt(all.substr(kFirstLine.size(), firstEnd - kFirstLine.size()), version)) {
        Fail("text archive, line 1: no version number (truncated or damaged)");
        return;
    }
    if (version != kVersion) {
        Fail("text archive, line 1: unsupported version " + std::to_string(version) +
             " (this reader knows version " + std::to_string(kVersion) + ")");
        return;
    }
    const auto lines = static_cast<long>(std::count(all.begin(), all.end(), '\n'));
    if (all.back() != '\n') {
        Fail("text archive, line " + std::to_string(lines + 1) +
             ": the last line has no line end (truncated)");
        return;
    }
    end_ = all.rfind('\n', all.size() - 2) + 1;
    const std::string_view last = all.substr(end_, all.size() - 1 - end_);
    std::uint32_t stored = 0;
    bool ok = end_ > firstEnd && last.substr(0, kLastLine.size()) == kLastLine &&
              last.size() == kLastLine.size() + 8;
    for (std::size_t i = kLastLine.size(); ok && i < last.size(); ++i) {
        const int d = HexDigit(last[i]);
        ok = d >= 0 && !(last[i] >= 'A' && last[i] <= 'F'); // written in lower case
        stored = (stored << 4) | static_cast<std::uint32_t>(d < 0 ? 0 : d);
    }
    if (!ok) {
        Fail("text archive, line " + std::to_string(lines) + ": expected the closing \"" +
             std::string(kLastLine) + "<checksum>\" line, found " +
             Quote(last.substr(0, kShownChars)) + " (truncated or damaged)");
        return;
    }
    const std::uint32_t actual = ArchiveBytes::Crc32(text_.data(), end_);
    if (stored != actual) {
        char text[96];
        std::snprintf(text, sizeof text,
                      "checksum mismatch (the line says %08x, the text gives %08x)",
                      static_cast<unsigned>(stored), static_cast<unsigned>(actual));
        Fail("text archive, line " + std::to_string(lines) + ": " + text +
             ": the archive is damaged or was edited");
        return;
    }
    pos_ = firstEnd + 1;
    line_ = 2;
}

// ---- writing ----

void TextSerializer::PutLine(std::size_t depth, const std::string& content) {
    if (finished_)
        Fail("text archive: \"" + content + "\" was written after Finish");
    if (Failed())
        return;
    try {
        text_.append(2 * depth, ' ');
        text_ += content;
        text_ += '\n';
    } catch (const std::bad_alloc&) {
        Fail("text archive: out of memory while writing");
    }
}

// ---- reading ----

void TextSerializer::FailHere(const std::string& what) {
    Fail("text archive, line " + std::to_string(line_) + ": " + what);
}

TextSerializer::Line TextSerializer::Peek() const {
    Line line;
    if (Failed() || pos_ >= end_)
        return line;
    std::string_view text(text_);
    text = text.substr(pos_, text.find('\n', pos_) - pos_); // every line before end_ has its '\n'
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    line.whole = text;
    const std::size_t space = text.find(' ');
    line.keyword = text.substr(0, space);
    if (space != std::string_view::npos)
        line.rest = text.substr(space + 1);
    return line;
}

void TextSerializer::Next() {
    pos_ = text_.find('\n', pos_) + 1;
    ++line_;
}

std::string TextSerializer::Found(const Line& line) const {
    if (line.whole.empty() && pos_ >= end_)
        return "the end of the records";
    if (line.keyword == "endgroup" && !groups_.empty())
        return "the end of group \"" + groups_.back() + "\"";
    return Quote(line.whole.substr(0, kShownChars));
}

bool TextSerializer::Expect(std::string_view keyword, std::string_view& rest) {
    if (Failed())
        return false;
    const Line line = Peek();
    if (line.keyword != keyword) {
        const bool vowel = keyword[0] == 'e' || keyword[0] == 'i';
        FailHere(std::string("expected ") + (vowel ? "an " : "a ") + std::string(keyword) +
                 " record, found " + Found(line));
        return false;
    }
    rest = line.rest;
    return true; // the caller consumes the line once its value is good
}

bool TextSerializer::AtGroupEnd() const {
    return !groups_.empty() && Peek().keyword == "endgroup";
}

// ---- exchanges ----

int TextSerializer::OpenGroup(const char* name) {
    const std::string wanted = name ? name : "";
    if (!reading_) {
        PutLine(groups_.size(), "group " + Quote(wanted));
    } else {
        std::string_view rest;
        std::string found;
        if (Expect("group", rest)) {
            if (!UnquoteAll(rest, found))
                FailHere("a group name that is not a quoted string: " + Found(Peek()));
            else if (found != wanted)
                FailHere("group " + Quote(found) + " where group " + Quote(wanted) +
                         " was expected");
            else
                Next();
        }
    }
    if (Failed())
        return -1;
    groups_.push_back(wanted);
    return 0;
}

int TextSerializer::CloseGroup() {
    if (Failed())
        return -1;
    if (groups_.empty()) {
        Fail("text archive: CloseGroup without an open group" +
             (reading_ ? " at line " + std::to_string(line_) : std::string()));
        return -1;
    }
    if (!reading_) {
        const std::string name = groups_.back();
        groups_.pop_back();
        PutLine(groups_.size(), "endgroup " + Quote(name));
        return Failed() ? -1 : 0;
    }
    const Line line = Peek();
    std::string_view rest;
    std::string found;
    if (line.keyword != "endgroup" && pos_ < end_)
        FailHere("group " + Quote(groups_.back()) + " is closed while " + Found(line) +
                 " of it is still unread");
    else if (Expect("endgroup", rest) && (!UnquoteAll(rest, found) || found != groups_.back()))
        FailHere("\"endgroup " + std::string(rest.substr(0, kShownChars)) +
                 "\" where the end of group " + Quote(groups_.back()) + " was expected");
    if (Failed())
        return -1;
    Next();
    groups_.pop_back();
    return 0;
}

void TextSerializer::Serialize(double& v) {
    std::string_view rest;
    if (!reading_) {
        PutLine(groups_.size(), "double " + FormatDouble(v));
    } else if (Expect("double", rest)) {
        if (ParseDouble(rest, v))
            Next();
        else
            FailHere("not a double: " + Found(Peek()));
    }
}

void TextSerializer::Serialize(std::int32_t& v) {
    ExchangeInt(v, "int32");
}
void TextSerializer::Serialize(std::int64_t& v) {
    ExchangeInt(v, "int64");
}

template <class Int>
void TextSerializer::ExchangeInt(Int& v, const char* keyword) {
    std::string_view rest;
    if (!reading_) {
        PutLine(groups_.size(), std::string(keyword) + " " + std::to_string(v));
    } else if (!Failed() && AtGroupEnd()) {
        v = 0; // a count that the writer left out
    } else if (Expect(keyword, rest)) {
        if (ParseInt(rest, v))
            Next();
        else
            FailHere(std::string("not an ") + keyword + ": " + Found(Peek()));
    }
}

void TextSerializer::Serialize(double* values, int n) {
    if (Failed() || n == 0)
        return;
    if (n < 0) {
        Fail("text archive: an array of " + std::to_string(n) + " doubles" +
             (reading_ ? " at line " + std::to_string(line_) : std::string()));
        return;
    }
    const std::size_t depth = groups_.size();
    if (!reading_) {
        PutLine(depth, "doubles " + std::to_string(n));
        for (int i = 0; i < n && !Failed(); ++i)
            PutLine(depth + 1, FormatDouble(values[i]));
        return;
    }
    std::string_view rest;
    int stored = 0;
    if (!Expect("doubles", rest))
        return;
    if (!ParseInt(rest, stored) || stored != n) {
        FailHere("an array of " + std::string(rest.substr(0, kShownChars)) + " doubles where " +
                 std::to_string(n) + " were expected");
        return;
    }
    // Parse every value before storing any, so a damaged array leaves `values` alone.
    const std::size_t start = pos_;
    const long startLine = line_;
    Next();
    for (int i = 0; i < n; ++i, Next()) {
        double v = 0.0;
        if (pos_ >= end_ || !ParseDouble(Peek().whole, v)) {
            FailHere("value " + std::to_string(i + 1) + " of " + std::to_string(n) +
                     " of an array: found " + Found(Peek()));
            return;
        }
    }
    pos_ = start;
    line_ = startLine;
    Next();
    for (int i = 0; i < n; ++i, Next())
        ParseDouble(Peek().whole, values[i]);
}

void TextSerializer::Serialize(const char* name, bool& flag, bool defaultValue) {
    const std::string wanted = name ? name : "";
    if (!reading_) {
        PutLine(groups_.size(), "bool " + Quote(wanted) + (flag ? " true" : " false"));
        return;
    }
    if (Failed())
        return;
    // Anything but a bool of this name on the next line means the archive lacks it.
    const Line line = Peek();
    std::string_view rest = line.rest;
    std::string found;
    if (line.keyword != "bool" || !Unquote(rest, found) || found != wanted) {
        flag = defaultValue;
        return;
    }
    if (rest != " true" && rest != " false") {
        FailHere("bool " + Quote(wanted) + " is neither true nor false: " + Found(line));
        return;
    }
    flag = rest == " true";
    Next();
}

void TextSerializer::Serialize(std::string& text) {
    if (!reading_) {
        PutLine(groups_.size(), "string " + Quote(text));
        return;
    }
    std::string_view rest;
    std::string read;
    if (!Expect("string", rest))
        return;
    try {
        if (!UnquoteAll(rest, read)) {
            FailHere("not a quoted string: " + Found(Peek()));
            return;
        }
    } catch (const std::bad_alloc&) {
        SetAllocError();
        return;
    }
    text.swap(read);
    Next();
}

bool TextSerializer::CanHold(std::int64_t elements, int valuesPerElement) {
    if (!reading_)
        return true;
    if (Failed())
        return false;
    // The shortest line of an array value is one digit and its line end.
    const auto left = static_cast<std::int64_t>(end_ - pos_);
    if (elements < 0)
        FailHere("a negative count (" + std::to_string(elements) + ")");
    else if (!FitsIn(elements, valuesPerElement, left, 2))
        FailHere("a count of " + std::to_string(elements) + " elements of " +
                 std::to_string(valuesPerElement) + " doubles is more than the " +
                 std::to_string(left) + " bytes left can hold");
    return !Failed();
}

int TextSerializer::Finish() {
    if (Failed())
        return -1;
    if (!groups_.empty()) {
        Fail("text archive: group " + Quote(groups_.back()) + " is never closed" +
             (reading_ ? " (line " + std::to_string(line_) + ")" : std::string()));
        return -1;
    }
    if (reading_) {
        if (pos_ < end_)
            FailHere("unread record " + Found(Peek()) + " before the end of the archive");
        return Failed() ? -1 : 0;
    }
    if (finished_)
        return 0;
    char last[32];
    std::snprintf(last, sizeof last, "%08x",
                  static_cast<unsigned>(ArchiveBytes::Crc32(text_.data(), text_.size())));
    PutLine(0, std::string(kLastLine) + last);
    finished_ = true;
    return Failed() ? -1 : 0;
}

} // namespace Korvane
