#pragma once

#include <Availability.h>
#include <stdint.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uid_t au_id_t;
typedef pid_t au_asid_t;

struct au_mask {
    unsigned int am_success;
    unsigned int am_failure;
};
typedef struct au_mask au_mask_t;

struct au_tid_addr {
    int at_port;
    uint32_t at_type;
    uint32_t at_addr[4];
};
typedef struct au_tid_addr au_tid_addr_t;

struct auditinfo_addr {
    au_id_t ai_auid;
    au_mask_t ai_mask;
    au_tid_addr_t ai_termid;
    au_asid_t ai_asid;
    uint64_t ai_flags;
};
typedef struct auditinfo_addr auditinfo_addr_t;

int getaudit_addr(auditinfo_addr_t *info, int length) KIV_DEPRECATED_CALL;

#ifdef __cplusplus
}
#endif
