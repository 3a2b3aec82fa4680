// The host's narrow and wide string types: thin value wrappers over the standard strings.
#pragma once

#include <string>

namespace Korvane {

class Str : public std::string {
public:
    using std::string::string;
    Str() = default;
    Str(const std::string& s) : std::string(s) {}
    Str(std::string&& s) : std::string(std::move(s)) {}
    operator const char*() const { return c_str(); }
};

class UStr : public std::wstring {
public:
    using std::wstring::wstring;
    UStr() = default;
    UStr(const std::wstring& s) : std::wstring(s) {}
    operator const wchar_t*() const { return c_str(); }
};

} // namespace Korvane
