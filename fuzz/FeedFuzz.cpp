#include "fuzz/Check.h"
#include "fuzz/NeedsApplication.h"
#include "notify/feed/FeedParser.h"
#include "notify/record/KivNotification.h"
#include "notify/record/UndefinedKeyException.h"

#include <QGuiApplication>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    needApplication<QGuiApplication>(); // Texts are measured.
    FeedParser parser([](const std::shared_ptr<KivNotification> &record) {
        check(record != nullptr);
        check(!record->messageTypeString().isEmpty());
        KivNotification copy(record->exportToDictionary());
        check(copy.messageId() == record->messageId());
    });
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    // Twice: what the first parse leaves open, the second one begins with.
    for (int i = 0; i < 2; ++i) {
        try {
            static_cast<void>(parser.parse(bytes));
        } catch (const UndefinedKeyException &) {
        }
    }
    return 0;
}
