#include "menu/KIVMenuObj.h"
#include "menu/MenuCommands.h"

#include <Carbon/Carbon.h>
#include <QApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <vector>

namespace
{

CFNumberRef newNumber(std::int32_t value)
{
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value);
}

CFDictionaryRef newMode(std::int32_t width, std::int32_t height)
{
    std::array<const void *, 3> keys{CFSTR("Width"), CFSTR("Height"), CFSTR("UsableForDesktopGUI")};
    std::array<const void *, 3> values{newNumber(width), newNumber(height), newNumber(1)};
    const CFDictionaryRef mode = CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(), keys.size(),
                                                    &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    std::ranges::for_each(values, CFRelease);
    return mode;
}

/// So many modes, no two of them of one size: each gets an entry.
CFArrayRef newModes(std::int32_t count)
{
    std::vector<const void *> modes;
    for (std::int32_t i = 0; i < count; ++i) {
        modes.push_back(newMode(640 + i % 100, 480 + i / 100));
    }
    const CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, modes.data(), count, &kCFTypeArrayCallBacks);
    std::ranges::for_each(modes, CFRelease);
    return array;
}

/// What the user waits for between the press and the menu, the X server's answer left out. 600 modes have to be listed
/// in 5 ms.
void resolutionSubmenu(benchmark::State &state)
{
    const auto count = static_cast<std::int32_t>(state.range(0));
    const CFArrayRef modes = newModes(count);
    KIVMenuObj menu;
    QAction &resolution = *menu.menu()->actions().first();
    for (auto _ : state) {
        menu.fillResolutions(resolution, modes, {640, 480});
    }
    CFRelease(modes);
    if (resolution.menu()->actions().size() != count) {
        state.SkipWithError("lists other entries than there are modes");
    }
    state.counters["per mode"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

BENCHMARK(resolutionSubmenu)->Arg(60)->Arg(600)->Arg(6000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setDesktopSettingsAware(false);
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
