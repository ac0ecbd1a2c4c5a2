/// The number of the error is behind a function of another name.
#ifdef __cplusplus
extern "C" {
#endif
int *__error(void);
#ifdef __cplusplus
}
#endif
#undef errno
#define errno (*__error())
