#include <Carbon/CoreFoundation.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

enum class Kind : CFTypeID { String = 1, Number, Boolean, Dictionary, Array };
enum class Lifetime { Counted, Constant };

/// What every object begins with.
class Object
{
public:
    constexpr Object(Kind kind, Lifetime lifetime)
        : m_kind(kind)
        , m_lifetime(lifetime)
    {
    }
    virtual ~Object() = default;
    Object(const Object &) = delete;
    Object &operator=(const Object &) = delete;

    [[nodiscard]] Kind kind() const { return m_kind; }

    void retain() const
    {
        if (m_lifetime == Lifetime::Counted) {
            m_count.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void release() const
    {
        if (m_lifetime == Lifetime::Counted && m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }

private:
    const Kind m_kind;
    const Lifetime m_lifetime;
    mutable std::atomic<CFIndex> m_count = 1;
};

/// A reference of our own to an object.
struct Release {
    void operator()(const Object *object) const { object->release(); }
};
using Reference = std::unique_ptr<const Object, Release>;

const Object *objectOf(CFTypeRef object)
{
    return static_cast<const Object *>(object);
}

Reference retained(CFTypeRef object)
{
    objectOf(object)->retain();
    return Reference(objectOf(object));
}

bool isKind(CFTypeRef object, Kind kind)
{
    return object && objectOf(object)->kind() == kind;
}

} // namespace

struct __CFString final : Object {
    explicit __CFString(std::string value)
        : Object(Kind::String, Lifetime::Constant)
        , text(std::move(value))
    {
    }
    const std::string text;
};

struct __CFNumber final : Object {
    explicit __CFNumber(std::int32_t number)
        : Object(Kind::Number, Lifetime::Counted)
        , value(number)
    {
    }
    const std::int32_t value;
};

struct __CFBoolean final : Object {
    explicit constexpr __CFBoolean(bool truth)
        : Object(Kind::Boolean, Lifetime::Constant)
        , value(truth)
    {
    }
    const bool value;
};

struct __CFDictionary final : Object {
    __CFDictionary()
        : Object(Kind::Dictionary, Lifetime::Counted)
    {
    }
    struct Entry {
        Reference key;
        Reference value;
    };
    /// The text is the key's own.
    std::map<std::string_view, Entry> entries;
};

struct __CFArray final : Object {
    __CFArray()
        : Object(Kind::Array, Lifetime::Counted)
    {
    }
    std::vector<Reference> values;
};

struct CFDictionaryKeyCallBacks {
};
struct CFDictionaryValueCallBacks {
};
struct CFArrayCallBacks {
};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};
const CFArrayCallBacks kCFTypeArrayCallBacks{};

namespace
{
const __CFBoolean trueObject(true);
const __CFBoolean falseObject(false);
} // namespace
const CFBooleanRef kCFBooleanTrue = &trueObject;
const CFBooleanRef kCFBooleanFalse = &falseObject;

void CFRelease(CFTypeRef object)
{
    if (object) {
        objectOf(object)->release();
    }
}

CFTypeID CFGetTypeID(CFTypeRef object)
{
    return object ? static_cast<CFTypeID>(objectOf(object)->kind()) : 0;
}

CFTypeID CFStringGetTypeID()
{
    return static_cast<CFTypeID>(Kind::String);
}

CFTypeID CFNumberGetTypeID()
{
    return static_cast<CFTypeID>(Kind::Number);
}

CFTypeID CFBooleanGetTypeID()
{
    return static_cast<CFTypeID>(Kind::Boolean);
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex capacity, CFStringEncoding encoding)
{
    if (!isKind(string, Kind::String) || !buffer || encoding != kCFStringEncodingUTF8 ||
        capacity <= static_cast<CFIndex>(string->text.size())) {
        return false;
    }
    std::memcpy(buffer, string->text.c_str(), string->text.size() + 1);
    return true;
}

CFStringRef __CFStringMakeConstantString(const char *text)
{
    static std::map<std::string, std::unique_ptr<const __CFString>, std::less<>> constants;
    if (!text) {
        return nullptr;
    }
    const auto it = constants.find(std::string_view(text));
    if (it != constants.end()) {
        return it->second.get();
    }
    return constants.emplace(text, std::make_unique<const __CFString>(text)).first->second.get();
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void *value)
{
    if (type != kCFNumberSInt32Type || !value) {
        return nullptr;
    }
    std::int32_t number = 0;
    std::memcpy(&number, value, sizeof number);
    return std::make_unique<__CFNumber>(number).release();
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value)
{
    std::int32_t stored = 0;
    if (isKind(number, Kind::Number)) {
        stored = number->value;
    } else if (isKind(number, Kind::Boolean)) {
        stored = objectOf(number) == kCFBooleanTrue;
    } else {
        return false;
    }
    if (type != kCFNumberSInt32Type || !value) {
        return false;
    }
    std::memcpy(value, &stored, sizeof stored);
    return true;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean)
{
    return isKind(boolean, Kind::Boolean) && boolean->value;
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void **keys, const void **values, CFIndex count,
                                   const CFDictionaryKeyCallBacks *, const CFDictionaryValueCallBacks *)
{
    if (count < 0 || (count > 0 && (!keys || !values))) {
        return nullptr;
    }
    auto dictionary = std::make_unique<__CFDictionary>();
    for (CFIndex i = 0; i < count; ++i) {
        if (!isKind(keys[i], Kind::String) || !values[i]) {
            return nullptr;
        }
        const std::string_view text = static_cast<CFStringRef>(keys[i])->text;
        if (!dictionary->entries.contains(text)) {
            dictionary->entries.emplace(text, __CFDictionary::Entry{retained(keys[i]), retained(values[i])});
        }
    }
    return dictionary.release();
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key)
{
    if (!isKind(dictionary, Kind::Dictionary) || !isKind(key, Kind::String)) {
        return nullptr;
    }
    const auto it = dictionary->entries.find(static_cast<CFStringRef>(key)->text);
    return it == dictionary->entries.end() ? nullptr : it->second.value.get();
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void **values, CFIndex count, const CFArrayCallBacks *)
{
    if (count < 0 || (count > 0 && !values)) {
        return nullptr;
    }
    auto array = std::make_unique<__CFArray>();
    for (CFIndex i = 0; i < count; ++i) {
        array->values.push_back(values[i] ? retained(values[i]) : Reference());
    }
    return array.release();
}

CFIndex CFArrayGetCount(CFArrayRef array)
{
    return isKind(array, Kind::Array) ? static_cast<CFIndex>(array->values.size()) : 0;
}

const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    return index >= 0 && index < CFArrayGetCount(array) ? array->values[static_cast<std::size_t>(index)].get()
                                                        : nullptr;
}
