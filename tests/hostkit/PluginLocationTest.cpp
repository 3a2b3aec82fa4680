// The default plug-in path: beside the host kit library, unless KORVANE_PLUGIN says otherwise.
// (POSIX only: the test sets the variable with setenv and expects the ELF file name.)
#if !defined(_WIN32)
#include "hostkit/plugsys/PluginLocation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

using namespace Korvane;

namespace {

// Sets or clears KORVANE_PLUGIN for one test and restores what it was.
class PluginVariable {
public:
    explicit PluginVariable(const char* value) {
        if (const char* old = std::getenv(kPluginPathVariable))
            old_ = old, had_ = true;
        Set(value);
    }
    ~PluginVariable() { Set(had_ ? old_.c_str() : nullptr); }

private:
    static void Set(const char* value) {
        if (value)
            setenv(kPluginPathVariable, value, 1);
        else
            unsetenv(kPluginPathVariable);
    }
    std::string old_;
    bool had_ = false;
};

} // namespace

TEST(PluginLocation, DefaultIsThePluginBesideTheHostKit) {
    PluginVariable unset(nullptr);
    namespace fs = std::filesystem;
    const std::string folder = HostKitFolder();
    ASSERT_FALSE(folder.empty());
    // The build puts the host kit and the plug-in in one folder, as the install does.
    EXPECT_TRUE(fs::exists(fs::path(folder) / PluginFileName())) << folder;
    EXPECT_EQ(DefaultPluginPath(), folder + "/" + PluginFileName());
    EXPECT_EQ(std::string(PluginFileName()), "libkorvane_colour.so");
}

TEST(PluginLocation, TheEnvironmentOverridesAndAnEmptyValueDoesNot) {
    {
        PluginVariable chosen("/opt/elsewhere/colour.so");
        EXPECT_EQ(DefaultPluginPath(), "/opt/elsewhere/colour.so");
    }
    PluginVariable empty("");
    EXPECT_EQ(DefaultPluginPath(), HostKitFolder() + "/" + PluginFileName());
}

#endif // !_WIN32
