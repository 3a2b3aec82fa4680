#include "hostkit/base/CallLog.h"

#include <atomic>
#include <mutex>

namespace Korvane::CallLog {
namespace {

std::atomic<bool> gOn{false};
std::mutex gMutex;
std::vector<std::string> gEntries;
std::string gRefused;

} // namespace

void Start() {
    std::lock_guard<std::mutex> lock(gMutex);
    gEntries.clear();
    gOn.store(true);
}

std::vector<std::string> Stop() {
    std::lock_guard<std::mutex> lock(gMutex);
    gOn.store(false);
    std::vector<std::string> entries;
    entries.swap(gEntries);
    return entries;
}

void Record(const char* call, const std::string& detail) {
    if (!gOn.load())
        return;
    std::lock_guard<std::mutex> lock(gMutex);
    if (gOn.load())
        gEntries.push_back(std::string(call) + " " + detail);
}

void RefuseRegistration(const std::string& modelName) {
    std::lock_guard<std::mutex> lock(gMutex);
    gRefused = modelName;
}

bool IsRegistrationRefused(const std::string& modelName) {
    std::lock_guard<std::mutex> lock(gMutex);
    return !gRefused.empty() && gRefused == modelName;
}

} // namespace Korvane::CallLog
