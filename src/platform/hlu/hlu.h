/* The host's low-level utilities, callable from C and C++: loading shared libraries, number
 * text independent of the C locale, the signal-thread test, console output, and UTF-8 to
 * UTF-16 conversion. */
#pragma once

#include <stddef.h>
#ifndef __cplusplus
#include <uchar.h> /* char16_t */
#endif

#if defined(__GNUC__)
#define HLU_PRINTF_FORMAT(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define HLU_PRINTF_FORMAT(fmt, args)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Shared libraries ------------------------------------------------------------------
 * Libraries are never unloaded. hluLastLibraryError keeps, per thread, the text of that
 * thread's last failure of the two calls below; the pointer stays valid until the thread's
 * next failure. */

/* Loads `name` (a path, or a name the dynamic loader searches for) with every symbol bound at
 * once. *status is 0 on success and non-zero on failure (then the result is null). Loading a
 * loaded library again returns the same handle. `status` may be null. */
void* hluLoadLibrary(const char* name, int* status);

/* The address of the symbol `name` in the library `handle`; null when it has none. */
void* hluFindSymbolInLibrary(void* handle, const char* name);

/* The calling thread's last failure text; "" when it had none. */
const char* hluLastLibraryError(void);

/* ---- Number text -------------------------------------------------------------------------
 * Conversions between double and text that never look at the C locale: the decimal point is
 * always '.'. The contexts carry no state that changes the result; callers set one up around
 * a conversion as the host's protocol wants. */

typedef struct HluMemoryContext HluMemoryContext;

typedef struct HluFpcContext {
    HluMemoryContext* memory; /* where the context takes scratch memory from */
    int initialized;          /* non-zero between initialise and clear */
} HluFpcContext;

/* The process's default memory context. */
HluMemoryContext* hluMemoryContext(void);

/* The process's default floating-point context, ready to use. */
HluFpcContext* hluFpcContext(void);

void hluInitializeFpcContext(HluFpcContext* context, HluMemoryContext* memory);
void hluClearFpcContext(HluFpcContext* context);

/* Reads the longest prefix of `text` that is a number, as strtod does in the "C" locale:
 * leading white space, an optional sign, decimal digits with an optional '.' and exponent,
 * or inf, infinity, nan, nan(chars) in any case. *end (when `end` is not null) points behind
 * the number; with no number the result is 0 and *end is `text`. A value too large gives
 * +-HUGE_VAL, one too small for a subnormal gives +-0, both with errno ERANGE; errno is left
 * alone otherwise. Hexadecimal floats are not read. `context` may be null. */
double hluStrtod(HluFpcContext* context, const char* text, char** end, int flags);

/* Writes the shortest text that hluStrtod reads back as exactly `value` ("0.1", "1e+300",
 * "-0", "inf", "-inf", "nan"), NUL-terminated. Returns its length, or -1 when `size` bytes do
 * not hold it and the NUL (64 bytes always do). `context` may be null. */
int hluFormatG(HluFpcContext* context, char* buffer, size_t size, double value);

/* ---- Signal thread -----------------------------------------------------------------------
 * The host names one thread as its signal thread; none is named at start. */

/* Non-zero on the named signal thread, 0 on every other thread. */
int hluIsSignalThread(void);

/* Non-zero: the calling thread becomes the signal thread. 0: no thread is. */
void hluSetSignalThread(int callingThreadIsSignalThread);

/* ---- Console -----------------------------------------------------------------------------
 * Standard output, flushed after each call. */

int hluPrintf(const char* format, ...) HLU_PRINTF_FORMAT(1, 2);

/* `text` and a line end. */
void hluPutsn(const char* text);

/* ---- Text --------------------------------------------------------------------------------*/

/* `text` (UTF-8) as NUL-terminated UTF-16, with surrogate pairs above U+FFFF; each malformed
 * byte sequence becomes U+FFFD. Null for null text. Free the result with hluRelease. */
char16_t* hluLcpToUtf16(const char* text);

/* Frees memory handed out by these functions; null is allowed. */
void hluRelease(void* memory);

#ifdef __cplusplus
}
#endif
