#include "tests/menu/ModeList.h"

#include <QJsonObject>

#include <vector>

namespace
{
CFTypeRef newValue(const QJsonValue &value)
{
    if (value.isBool()) {
        return value.toBool() ? kCFBooleanTrue : kCFBooleanFalse;
    }
    if (value.isString()) {
        return __CFStringMakeConstantString(value.toString().toUtf8().constData());
    }
    const std::int32_t number = value.toInt();
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &number);
}

CFTypeRef newMode(const QJsonObject &mode)
{
    std::vector<const void *> keys;
    std::vector<const void *> values;
    for (auto it = mode.begin(); it != mode.end(); ++it) {
        keys.push_back(__CFStringMakeConstantString(it.key().toUtf8().constData()));
        values.push_back(newValue(it.value()));
    }
    const CFDictionaryRef dictionary =
        CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(), static_cast<CFIndex>(keys.size()),
                           &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        CFRelease(keys[i]);
        CFRelease(values[i]);
    }
    return dictionary;
}
} // namespace

CFArrayRef newModeList(const QJsonArray &modes)
{
    std::vector<const void *> elements;
    for (const QJsonValue mode : modes) {
        elements.push_back(mode.isNull() ? nullptr : newMode(mode.toObject()));
    }
    const CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, elements.data(), static_cast<CFIndex>(elements.size()),
                                           &kCFTypeArrayCallBacks);
    for (const void *element : elements) {
        if (element) {
            CFRelease(element);
        }
    }
    return array;
}
