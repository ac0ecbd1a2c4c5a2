// Prints what the running program's own bundle holds, for BundleTest to copy to a place of its own and start there.

#include "platform/Bundle.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Bundle &bundle = Bundle::main();
    std::printf("%d\n%s\n%s\n%s\n", bundle.infoDictionary().has_value(),
                qPrintable(bundle.infoString(QStringLiteral("KIVBuildVersion"))),
                qPrintable(bundle.pathForResource(QStringLiteral("statuson"), QStringLiteral("tiff"))),
                qPrintable(bundle.pathForAuxiliaryExecutable(QStringLiteral("another"))));
    return &bundle == &Bundle::main() ? 0 : 1;
}
