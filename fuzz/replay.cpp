#include <QDirIterator>
#include <QFile>
#include <QGuiApplication>

#include <cstddef>
#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// Stands in for the fuzzer's own main: each file of the folders given is one input.
int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        QDirIterator files(QString::fromLocal8Bit(argv[i]), QDir::Files);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(file.fileName()));
                return 1;
            }
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                                   static_cast<std::size_t>(bytes.size()));
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
