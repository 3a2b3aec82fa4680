// The default plug-in path: beside the host kit library, unless KORVANE_PLUGIN says otherwise.
#include "hostkit/plugsys/PluginLocation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#endif

using namespace Korvane;

namespace {

#if defined(_WIN32)
// The platforms differ here: a DLL carries its plain name and a path joins with a backslash.
const char* const kPluginFile = "korvane_colour.dll";
const char* const kSeparator = "\\";

std::wstring Wide(const char* utf8) {
    std::wstring wide(MultiByteToWideChar(CP_UTF8, 0, utf8, -1, nullptr, 0), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8, -1, wide.data(), static_cast<int>(wide.size()));
    wide.pop_back();
    return wide;
}
#else
const char* const kPluginFile = "libkorvane_colour.so";
const char* const kSeparator = "/";
#endif

// Sets or clears KORVANE_PLUGIN (UTF-8) for one test and restores what it was. On Windows the
// value goes through the wide environment, as a user's non-ASCII path would; an empty value there
// removes the variable.
class PluginVariable {
public:
#if defined(_WIN32)
    explicit PluginVariable(const char* value) : name_(Wide(kPluginPathVariable)) {
        if (const wchar_t* old = _wgetenv(name_.c_str()))
            old_ = old, had_ = true;
        _wputenv_s(name_.c_str(), value ? Wide(value).c_str() : L"");
    }
    ~PluginVariable() {
        _wputenv_s(name_.c_str(), had_ ? old_.c_str() : L"");
    }

private:
    std::wstring name_, old_;
#else
    explicit PluginVariable(const char* value) {
        if (const char* old = std::getenv(kPluginPathVariable))
            old_ = old, had_ = true;
        Set(value);
    }
    ~PluginVariable() {
        Set(had_ ? old_.c_str() : nullptr);
    }

private:
    static void Set(const char* value) {
        if (value)
            setenv(kPluginPathVariable, value, 1);
        else
            unsetenv(kPluginPathVariable);
    }
    std::string old_;
#endif
    bool had_ = false;
};

} // namespace

TEST(PluginLocation, DefaultIsThePluginBesideTheHostKit) {
    PluginVariable unset(nullptr);
    namespace fs = std::filesystem;
    const std::string folder = HostKitFolder();
    ASSERT_FALSE(folder.empty());
    EXPECT_TRUE(
        fs::equivalent(fs::u8path(folder), fs::u8path(KORVANE_HOST_LIBRARY_PATH).parent_path()))
        << folder;
    // The build puts the host kit and the plug-in in one folder, as the install does.
    EXPECT_EQ(std::string(PluginFileName()), kPluginFile);
    EXPECT_EQ(DefaultPluginPath(), folder + kSeparator + kPluginFile);
    EXPECT_TRUE(fs::exists(fs::u8path(DefaultPluginPath()))) << DefaultPluginPath();
}

TEST(PluginLocation, TheEnvironmentOverridesAndAnEmptyValueDoesNot) {
    {
        // Not ASCII: "módulos-光".
        const std::string elsewhere = "/opt/m\xC3\xB3"
                                      "dulos-\xE5\x85\x89/colour-module";
        PluginVariable chosen(elsewhere.c_str());
        EXPECT_EQ(DefaultPluginPath(), elsewhere);
    }
    PluginVariable empty("");
    EXPECT_EQ(DefaultPluginPath(), HostKitFolder() + kSeparator + kPluginFile);
}
