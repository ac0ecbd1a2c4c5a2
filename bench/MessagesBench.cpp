#include "notify/popup/KivTextView.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>

namespace
{

/// From the text of a message to its picture: what the agent does before a pop-up is on the screen, but for the window.
void showMessage(benchmark::State &state, const QString &text)
{
    for (auto _ : state) {
        KivTextView view(nullptr);
        view.setMessage(text, 320);
        view.resize(320, qMin(700, static_cast<int>(view.textHeight())));
        benchmark::DoNotOptimize(view.grab());
    }
}

} // namespace

int main(int argc, char **argv)
{
    QApplication::setDesktopSettingsAware(false);
    const QApplication application(argc, argv);
    const QDir folder(QStringLiteral(KIV_MESSAGES));
    for (const QString &name : folder.entryList({QStringLiteral("*.html")}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            return EXIT_FAILURE;
        }
        const QString text = QString::fromUtf8(file.readAll());
        benchmark::RegisterBenchmark(name.chopped(5).toUtf8().constData(), [text](benchmark::State &state) {
            showMessage(state, text);
        })->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
