#include <Carbon/CoreFoundation.h>
#include <QStringDecoder>

#include <atomic>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
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
    explicit __CFString(std::string value, Lifetime lifetime = Lifetime::Counted)
        : Object(Kind::String, lifetime)
        , text(std::move(value))
    {
    }
    const std::string text;
};

struct __CFNumber final : Object {
    explicit __CFNumber(std::variant<std::int64_t, double> number)
        : Object(Kind::Number, Lifetime::Counted)
        , value(number)
    {
    }
    const std::variant<std::int64_t, double> value;
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

CFTypeRef CFRetain(CFTypeRef object)
{
    if (object) {
        objectOf(object)->retain();
    }
    return object;
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

CFTypeID CFDictionaryGetTypeID()
{
    return static_cast<CFTypeID>(Kind::Dictionary);
}

CFTypeID CFArrayGetTypeID()
{
    return static_cast<CFTypeID>(Kind::Array);
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *text, CFStringEncoding encoding)
{
    if (!text || encoding != kCFStringEncodingUTF8) {
        return nullptr;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    static_cast<void>(QString(decoder(QByteArrayView(text))));
    return decoder.hasError() ? nullptr : std::make_unique<__CFString>(text).release();
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
    return constants.emplace(text, std::make_unique<const __CFString>(text, Lifetime::Constant)).first->second.get();
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void *value)
{
    if (!value) {
        return nullptr;
    }
    const auto make = [value]<typename Stored, typename Kept>(Stored stored, Kept) -> CFNumberRef {
        std::memcpy(&stored, value, sizeof stored);
        return std::make_unique<__CFNumber>(static_cast<Kept>(stored)).release();
    };
    switch (type) {
    case kCFNumberSInt32Type:
        return make(std::int32_t{}, std::int64_t{});
    case kCFNumberSInt64Type:
        return make(std::int64_t{}, std::int64_t{});
    case kCFNumberFloat64Type:
        return make(double{}, double{});
    default:
        return nullptr;
    }
}

namespace
{

/// A number as another type, and whether it is still the same number.
template <typename To>
struct Converted {
    To value;
    bool isExact;
};

/// Toward zero, and to the nearest that there is; no number at all becomes 0.
Converted<std::int64_t> integerOf(double number)
{
    constexpr double beyond = 0x1p63;
    using Limits = std::numeric_limits<std::int64_t>;
    if (std::isnan(number)) {
        return {0, false};
    }
    if (number >= beyond || number < -beyond) {
        return {number > 0 ? Limits::max() : Limits::min(), false};
    }
    return {static_cast<std::int64_t>(number), number == std::trunc(number)};
}

Converted<std::int64_t> integerOf(std::int64_t number)
{
    return {number, true};
}

Converted<double> realOf(double number)
{
    return {number, true};
}

Converted<double> realOf(std::int64_t number)
{
    const auto real = static_cast<double>(number);
    const Converted<std::int64_t> back = integerOf(real);
    return {real, back.isExact && back.value == number};
}

template <typename To>
Boolean store(Converted<To> converted, void *to)
{
    std::memcpy(to, &converted.value, sizeof converted.value);
    return converted.isExact;
}

} // namespace

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value)
{
    std::variant<std::int64_t, double> stored;
    if (isKind(number, Kind::Number)) {
        stored = number->value;
    } else if (isKind(number, Kind::Boolean)) {
        stored = std::int64_t{objectOf(number) == kCFBooleanTrue};
    } else {
        return false;
    }
    if (!value) {
        return false;
    }
    const Converted<std::int64_t> integer = std::visit([](auto it) { return integerOf(it); }, stored);
    const Converted<double> real = std::visit([](auto it) { return realOf(it); }, stored);
    switch (type) {
    case kCFNumberSInt32Type: {
        const auto narrow = static_cast<std::int32_t>(integer.value);
        return store(Converted<std::int32_t>{narrow, integer.isExact && narrow == integer.value}, value);
    }
    case kCFNumberSInt64Type:
        return store(integer, value);
    case kCFNumberFloat64Type:
        return store(real, value);
    default:
        return false;
    }
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

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary)
{
    return isKind(dictionary, Kind::Dictionary) ? static_cast<CFIndex>(dictionary->entries.size()) : 0;
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
