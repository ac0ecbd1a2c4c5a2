#include "platform/screen/MessageRequests.h"

#include "platform/linux/item/menu/MenuRequests.h"

#include <utility>

class MessageRequests::Private final
{
public:
    const std::shared_ptr<MenuRequests> object = MenuRequests::shared();
};

MessageRequests::MessageRequests(std::function<bool()> isMessageThere)
    : d(std::make_unique<Private>())
{
    d->object->setMessageQuestion(std::move(isMessageThere));
    connect(d->object.get(), &MenuRequests::messageRequested, this, &MessageRequests::requested);
}

MessageRequests::~MessageRequests()
{
    d->object->setMessageQuestion(nullptr);
}
