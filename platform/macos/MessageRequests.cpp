#include "platform/screen/MessageRequests.h"

class MessageRequests::Private final
{
};

MessageRequests::MessageRequests(std::function<bool()>) {}

MessageRequests::~MessageRequests() = default;
