#include "platform/MessageRequests.h"

class MessageRequests::Private final
{
};

MessageRequests::MessageRequests(std::function<bool()>) {}

MessageRequests::~MessageRequests() = default;
