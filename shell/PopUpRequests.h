#pragma once

#include "platform/screen/MessageRequests.h"

/// Gives the pop-up that is on the screen the keyboard whenever another program asks for that. A panel that has to be
/// answered first keeps it. Main thread only.
class PopUpRequests final
{
public:
    PopUpRequests();

private:
    MessageRequests m_requests;
};
