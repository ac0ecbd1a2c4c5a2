#include "tests/shell/FakeProcessManager.h"

#include <Carbon/Carbon.h>

#include <algorithm>

std::vector<FakeProcess> fakeProcesses;
int fakePasses = 0;
int fakeDictionaries = 0;

namespace
{
auto find(const ProcessSerialNumber &psn)
{
    return std::ranges::find(fakeProcesses, psn.lowLongOfPSN, &FakeProcess::pid);
}

OSType code(const std::string &text)
{
    OSType value = 0;
    for (const char character : text) {
        value = value << 8 | static_cast<unsigned char>(character);
    }
    return value;
}
} // namespace

OSErr GetNextProcess(ProcessSerialNumber *psn)
{
    if (psn->lowLongOfPSN == kNoProcess) {
        ++fakePasses;
    }
    const auto next = psn->lowLongOfPSN == kNoProcess ? fakeProcesses.begin() : find(*psn) + 1;
    if (next == fakeProcesses.end()) {
        return procNotFound;
    }
    *psn = {0, next->pid};
    return noErr;
}

OSErr GetProcessInformation(const ProcessSerialNumber *psn, ProcessInfoRec *info)
{
    const auto process = find(*psn);
    if (info->processInfoLength != sizeof *info || info->processName || !process->answers) {
        return procNotFound;
    }
    info->processNumber = *psn;
    info->processType = code(process->type);
    info->processSignature = code(process->signature);
    return noErr;
}

CFDictionaryRef ProcessInformationCopyDictionary(const ProcessSerialNumber *psn, UInt32)
{
    const auto process = find(*psn);
    if (!process->hasDictionary) {
        return nullptr;
    }
    ++fakeDictionaries;
    const void *key = CFSTR("CFBundleIdentifier");
    if (!process->identifier) {
        return CFDictionaryCreate(kCFAllocatorDefault, nullptr, nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                  &kCFTypeDictionaryValueCallBacks);
    }
    const void *value = __CFStringMakeConstantString(process->identifier->c_str());
    return CFDictionaryCreate(kCFAllocatorDefault, &key, &value, 1, &kCFTypeDictionaryKeyCallBacks,
                              &kCFTypeDictionaryValueCallBacks);
}
