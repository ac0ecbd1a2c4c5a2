#include "platform/linux/events/AppleEventContents.h"

OSErr AppleEventContents::setParameter(AEKeyword keyword, DescType type, const void *data, Size size)
{
    const Parameter *replaced = parameter(keyword);
    const Size others = m_size - (replaced ? replaced->bytes.size() + parameterCost : 0);
    if (size > maxBytes - parameterCost - others) {
        return memFullErr;
    }
    m_size = others + parameterCost + size;
    m_parameters.insert_or_assign(keyword, Parameter{type, QByteArray(static_cast<const char *>(data), size)});
    return noErr;
}

const AppleEventContents::Parameter *AppleEventContents::parameter(AEKeyword keyword) const
{
    const auto it = m_parameters.find(keyword);
    return it == m_parameters.end() ? nullptr : &it->second;
}
