#include "fetch/FeedFetch.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const int status = fetchFeed(QCoreApplication::arguments());
    std::fflush(stdout);
    // At its end the application would wait for its threads, and one that looks up a name may take minutes.
    std::_Exit(status);
}
