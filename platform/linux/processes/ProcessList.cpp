#include "platform/linux/processes/RunningProcess.h"
#include "platform/linux/processes/TrayHost.h"

#include <Carbon/Processes.h>
#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace
{

QString folderOf(pid_t pid)
{
    return QStringLiteral("/proc/%1").arg(pid);
}

/// All process IDs, ascending.
std::vector<UInt32> allProcesses()
{
    std::vector<UInt32> found;
    // Not by QDir, which looks into every entry.
    std::error_code error;
    const std::filesystem::directory_iterator end;
    for (std::filesystem::directory_iterator entry("/proc", error); !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename();
        UInt32 number = 0;
        const auto [rest, failure] = std::from_chars(name.data(), name.data() + name.size(), number);
        if (failure == std::errc() && rest == name.data() + name.size() && number != kNoProcess) {
            found.push_back(number);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool isOurs(pid_t pid)
{
    struct stat folder {
    };
    return ::stat(QFile::encodeName(folderOf(pid)).constData(), &folder) == 0 && folder.st_uid == ::geteuid();
}

std::optional<pid_t> runningProcess(const ProcessSerialNumber &psn)
{
    pid_t pid = 0;
    return GetProcessPID(&psn, &pid) == noErr ? std::optional(pid) : std::nullopt;
}

/// What is listed in one pass through all processes. Read once, and not before it is needed: a terminal server runs
/// thousands of them.
struct Pass {
    UInt32 first = kNoProcess;  ///< The tray's host, which is what the list is searched for.
    std::vector<UInt32> others; ///< Ascending; empty until they are read.
};

bool isListed(UInt32 number)
{
    const auto pid = static_cast<pid_t>(number);
    return number != kNoProcess && isOurs(pid) && isRunningProcess(pid);
}

} // namespace

OSErr GetNextProcess(ProcessSerialNumber *psn)
{
    if (!psn) {
        return paramErr;
    }
    if (psn->highLongOfPSN != 0) {
        return procNotFound;
    }
    static Pass pass;
    if (psn->lowLongOfPSN == kNoProcess) {
        pass = {static_cast<UInt32>(trayHost()), {}};
        if (isListed(pass.first)) {
            *psn = {0, pass.first};
            return noErr;
        }
    }
    if (pass.others.empty()) {
        pass.others = allProcesses();
        std::erase(pass.others, pass.first);
    }
    const UInt32 last = psn->lowLongOfPSN == pass.first ? kNoProcess : psn->lowLongOfPSN;
    const auto next = std::find_if(std::ranges::upper_bound(pass.others, last), pass.others.end(), isListed);
    if (next == pass.others.end()) {
        pass = {};
        return procNotFound;
    }
    *psn = {0, *next};
    return noErr;
}

OSErr GetProcessInformation(const ProcessSerialNumber *psn, ProcessInfoRec *info)
{
    if (!psn || !info || info->processInfoLength != sizeof *info) {
        return paramErr;
    }
    const std::optional<pid_t> pid = runningProcess(*psn);
    if (!pid) {
        return procNotFound;
    }
    const bool isDock = *pid == itemHost();
    info->processNumber = *psn;
    info->processType = isDock ? fourCharCode("APPL") : 0;
    info->processSignature = isDock ? fourCharCode("dock") : 0;
    info->processMode = 0;
    return noErr;
}

CFDictionaryRef ProcessInformationCopyDictionary(const ProcessSerialNumber *psn, UInt32)
{
    const std::optional<pid_t> pid = psn ? runningProcess(*psn) : std::nullopt;
    if (!pid) {
        return nullptr;
    }
    const void *key = CFSTR("CFBundleIdentifier");
    const void *value = CFSTR("com.apple.dock");
    const CFIndex count = *pid == itemHost() ? 1 : 0;
    return CFDictionaryCreate(kCFAllocatorDefault, &key, &value, count, &kCFTypeDictionaryKeyCallBacks,
                              &kCFTypeDictionaryValueCallBacks);
}
