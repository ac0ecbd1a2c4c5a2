#include "platform/linux/workarounds/ThreadHeaps.h"

#include <malloc.h>

void keepThreadsOnOneHeap()
{
    mallopt(M_ARENA_MAX, 1);
}
