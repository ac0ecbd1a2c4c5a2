#pragma once

#include <QCoreApplication>

#include <memory>

/// Sees to an application object of that class at the first call. The fuzzer's own main has none, and this lives until
/// the statics go; that of replay.cpp ends in time for libraries to free what they keep for each thread.
template <typename Application>
void needApplication()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    static const std::unique_ptr<Application> own =
        QCoreApplication::instance() ? nullptr : std::make_unique<Application>(argc, argv);
}
