#include "platform/linux/workarounds/memory/ThreadHeaps.h"

#include <malloc.h>

void keepThreadsOnOneHeap()
{
    mallopt(M_ARENA_MAX, 1);
}
