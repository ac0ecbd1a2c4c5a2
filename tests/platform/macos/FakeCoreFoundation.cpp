#include "tests/platform/macos/FakeCoreFoundation.h"

#include <cstring>
#include <map>

struct CFDictionaryKeyCallBacks {
};
struct CFDictionaryValueCallBacks {
};
struct CFArrayCallBacks {
};

namespace
{

enum Type : CFTypeID { String = 1, Number, TruthValue, Dictionary, Array, Url };

struct Object {
    Type type;
    bool isCounted = true;
    int references = 1;
    int number = 0;
    std::string text = {};
    std::vector<const void *> keys = {};
    std::vector<const void *> values = {};
    bool retainsValues = false;
};

int live = 0;

Object *object(CFTypeRef reference)
{
    return static_cast<Object *>(const_cast<void *>(reference));
}

Object *newObject(Type type)
{
    ++live;
    return new Object{.type = type};
}

void retain(CFTypeRef reference)
{
    if (object(reference)->isCounted) {
        ++object(reference)->references;
    }
}

template <typename Reference>
Reference as(Object *one)
{
    return reinterpret_cast<Reference>(one);
}

template <typename Reference>
Reference newUrl(const std::string &path)
{
    if (path.empty()) {
        return nullptr;
    }
    Object *const url = newObject(Url);
    url->text = path;
    return as<Reference>(url);
}

Object truth{.type = TruthValue, .isCounted = false, .number = 1};
Object untruth{.type = TruthValue, .isCounted = false};

} // namespace

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = as<CFBooleanRef>(&truth);
const CFBooleanRef kCFBooleanFalse = as<CFBooleanRef>(&untruth);
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};
const CFArrayCallBacks kCFTypeArrayCallBacks{};

void CFRelease(CFTypeRef reference)
{
    Object *const one = object(reference);
    if (!one->isCounted || --one->references > 0) {
        return;
    }
    for (const void *key : one->keys) {
        CFRelease(key);
    }
    for (const void *value : one->values) {
        if (one->retainsValues) {
            CFRelease(value);
        }
    }
    --live;
    delete one;
}

CFTypeID CFGetTypeID(CFTypeRef reference)
{
    return object(reference)->type;
}

CFTypeID CFBooleanGetTypeID()
{
    return TruthValue;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean)
{
    return object(boolean)->number != 0;
}

CFStringRef __CFStringMakeConstantString(const char *text)
{
    static std::map<std::string, Object> constants;
    Object &constant =
        constants.try_emplace(text, Object{.type = String, .isCounted = false, .text = text}).first->second;
    return as<CFStringRef>(&constant);
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *text, CFStringEncoding encoding)
{
    if (encoding != kCFStringEncodingUTF8) {
        return nullptr;
    }
    Object *const string = newObject(String);
    string->text = text;
    return as<CFStringRef>(string);
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void *value)
{
    if (type != kCFNumberSInt32Type) {
        return nullptr;
    }
    Object *const number = newObject(Number);
    std::memcpy(&number->number, value, sizeof number->number);
    return as<CFNumberRef>(number);
}

CFTypeID CFNumberGetTypeID()
{
    return Number;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value)
{
    if (type != kCFNumberSInt32Type) {
        return false;
    }
    std::memcpy(value, &object(number)->number, sizeof object(number)->number);
    return true;
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void **keys, const void **values, CFIndex count,
                                   const CFDictionaryKeyCallBacks *, const CFDictionaryValueCallBacks *)
{
    Object *const dictionary = newObject(Dictionary);
    dictionary->keys.assign(keys, keys + count);
    dictionary->values.assign(values, values + count);
    dictionary->retainsValues = true;
    for (CFIndex i = 0; i < count; ++i) {
        retain(keys[i]);
        retain(values[i]);
    }
    return as<CFDictionaryRef>(dictionary);
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key)
{
    const Object &all = *object(dictionary);
    for (std::size_t i = 0; i < all.keys.size(); ++i) {
        if (object(all.keys[i])->text == object(key)->text) {
            return all.values[i];
        }
    }
    return nullptr;
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void **values, CFIndex count, const CFArrayCallBacks *callBacks)
{
    Object *const array = newObject(Array);
    array->values.assign(values, values + count);
    array->retainsValues = callBacks != nullptr;
    for (CFIndex i = 0; i < count && callBacks; ++i) {
        retain(values[i]);
    }
    return as<CFArrayRef>(array);
}

CFIndex CFArrayGetCount(CFArrayRef array)
{
    return static_cast<CFIndex>(object(array)->values.size());
}

const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    return object(array)->values.at(static_cast<std::size_t>(index));
}

CFBundleRef CFBundleGetMainBundle()
{
    return FakeCoreFoundation::mainBundle().exists ? reinterpret_cast<CFBundleRef>(&FakeCoreFoundation::mainBundle())
                                                   : nullptr;
}

CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef)
{
    return newUrl<CFURLRef>(FakeCoreFoundation::mainBundle().resources);
}

CFURLRef CFBundleCopySupportFilesDirectoryURL(CFBundleRef)
{
    return newUrl<CFURLRef>(FakeCoreFoundation::mainBundle().contents);
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8 *buffer, CFIndex capacity)
{
    const std::string &path = object(url)->text;
    // A URL of a bundle may be relative to the bundle's own.
    if (!resolveAgainstBase || static_cast<CFIndex>(path.size()) >= capacity) {
        return false;
    }
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return true;
}

CFNotificationCenterRef CFNotificationCenterGetDistributedCenter()
{
    return reinterpret_cast<CFNotificationCenterRef>(&FakeCoreFoundation::centre());
}

void CFNotificationCenterAddObserver(CFNotificationCenterRef, const void *observer, CFNotificationCallback callback,
                                     CFStringRef name, const void *, CFNotificationSuspensionBehavior behaviour)
{
    FakeCoreFoundation::centre().entries.push_back(
        {observer, callback, object(name)->text, behaviour == CFNotificationSuspensionBehaviorDeliverImmediately});
}

void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef, const void *observer)
{
    std::erase_if(FakeCoreFoundation::centre().entries, [&](const auto &entry) { return entry.observer == observer; });
}

void CFNotificationCenterPostNotification(CFNotificationCenterRef, CFNotificationName name, const void *object,
                                          CFDictionaryRef userInfo, Boolean deliverImmediately)
{
    // Without that it would wait for those who are not active, as agents never are.
    if (!object && !userInfo && deliverImmediately) {
        FakeCoreFoundation::centre().post(::object(name)->text);
    }
}

} // extern "C"

namespace FakeCoreFoundation
{

int liveObjects()
{
    return live;
}

CFArrayRef newArray(const std::vector<const void *> &values)
{
    std::vector<const void *> copy = values;
    return CFArrayCreate(nullptr, copy.data(), static_cast<CFIndex>(copy.size()), nullptr);
}

std::string text(CFTypeRef string)
{
    return object(string)->text;
}

int number(CFTypeRef number)
{
    return object(number)->number;
}

void Centre::post(const std::string &name) const
{
    for (const Entry &entry : std::vector(entries)) {
        if (entry.name == name) {
            entry.callback(nullptr, const_cast<void *>(entry.observer), nullptr, nullptr, nullptr);
        }
    }
}

Centre &centre()
{
    static Centre instance;
    return instance;
}

MainBundle &mainBundle()
{
    static MainBundle instance;
    return instance;
}

} // namespace FakeCoreFoundation
