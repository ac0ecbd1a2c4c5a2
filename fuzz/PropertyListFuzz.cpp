#include "fuzz/Check.h"
#include "platform/data/PropertyList.h"

#include <cstddef>
#include <cstdint>

/// What is written can be read, and what is written of that stays the same for ever. The first time it may lose
/// characters that XML forbids, and with them the difference between two keys.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto *bytes = reinterpret_cast<const char *>(data);
    const QByteArray first = PropertyList::toXml(PropertyList::read(QByteArray(bytes, static_cast<qsizetype>(size))));
    if (!first.isEmpty()) {
        const QVariant value = PropertyList::read(first);
        check(value.isValid());
        const QByteArray second = PropertyList::toXml(value);
        check(PropertyList::toXml(PropertyList::read(second)) == second);
    }
    return 0;
}
