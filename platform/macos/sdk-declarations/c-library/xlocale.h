#pragma once

#include <locale.h>
#include <stddef.h>
#include <stdint.h>
#include <time.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/// What libc++ wants of it.
float strtof_l(const char *text, char **end, locale_t locale);
double strtod_l(const char *text, char **end, locale_t locale);
long double strtold_l(const char *text, char **end, locale_t locale);
long long strtoll_l(const char *text, char **end, int base, locale_t locale);
unsigned long long strtoull_l(const char *text, char **end, int base, locale_t locale);
int snprintf_l(char *text, size_t size, locale_t locale, const char *format, ...);
int asprintf_l(char **text, locale_t locale, const char *format, ...);
int sscanf_l(const char *text, locale_t locale, const char *format, ...);
typedef uint32_t __uint32_t;
enum {
    _CTYPE_A = 1 << 8,
    _CTYPE_C = 1 << 9,
    _CTYPE_D = 1 << 10,
    _CTYPE_L = 1 << 12,
    _CTYPE_P = 1 << 13,
    _CTYPE_S = 1 << 14,
    _CTYPE_U = 1 << 15,
    _CTYPE_X = 1 << 16,
    _CTYPE_B = 1 << 17,
    _CTYPE_R = 1 << 18
};

#ifdef __cplusplus
}
#endif
