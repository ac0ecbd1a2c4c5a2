#pragma once

#include <stddef.h>
#include <sys/time.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CTL_KERN 1
#define KERN_PROC 14
#define KERN_PROC_PID 1

/// A process that has ended and that its parent has not waited for.
#define SZOMB 5

/// Much more in Apple's.
struct extern_proc {
    struct timeval p_starttime;
    char p_stat;
};

struct kinfo_proc {
    struct extern_proc kp_proc;
};

int sysctl(int *name, unsigned int nameLength, void *old, size_t *oldLength, void *replacement, size_t newLength);

#ifdef __cplusplus
}
#endif
