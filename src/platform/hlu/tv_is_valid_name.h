/* tv_is_valid_name: whether a text is a valid variable name of the host's language. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* 1 when `name` is an ASCII letter followed by ASCII letters, digits or '_', 63 characters at
 * most in all; 0 otherwise, also for null and the empty text. */
int tv_is_valid_name(const char* name);

#ifdef __cplusplus
}
#endif
