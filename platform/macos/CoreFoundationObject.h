#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <utility>

/// Owns an object that a call with Create or Copy in its name has returned, or null, and releases it.
class CoreFoundationObject final
{
public:
    CoreFoundationObject() = default;
    explicit CoreFoundationObject(CFTypeRef object)
        : m_object(object)
    {
    }
    CoreFoundationObject(CoreFoundationObject &&other) noexcept
        : m_object(std::exchange(other.m_object, nullptr))
    {
    }
    CoreFoundationObject &operator=(CoreFoundationObject &&other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~CoreFoundationObject()
    {
        if (m_object) {
            CFRelease(m_object);
        }
    }

    explicit operator bool() const { return m_object != nullptr; }
    [[nodiscard]] CFTypeRef get() const { return m_object; }

private:
    CFTypeRef m_object = nullptr;
};
