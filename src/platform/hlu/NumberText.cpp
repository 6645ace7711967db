// Number text through std::from_chars and std::to_chars, which never consult the C locale.
// from_chars has no leading white space, no '+' and no ERANGE value, so those parts of the
// strtod behaviour are added here.

#include <platform/hlu/hlu.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <system_error>

struct HluMemoryContext {
    int reserved;  // conversions need no scratch memory; the type exists for the protocol
};

namespace {

HluMemoryContext defaultMemoryContext{0};
HluFpcContext defaultFpcContext{&defaultMemoryContext, 1};

// White space as isspace knows it in the "C" locale.
bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Whether the decimal number in [first, last), which from_chars found out of range, is too
// large rather than too small. Any value out of the range of double is at least 1e308 or
// below 1e-320, so the decimal exponent of its leading non-zero digit decides, and its sign is
// enough; the exponent is saturated so that absurd exponents cannot overflow.
bool exceedsAbove(const char* first, const char* last) {
    constexpr std::int64_t saturation = 1000000000;
    std::int64_t digitsBeforePoint = 0;
    std::int64_t firstNonZero = -1;  // index among all mantissa digits
    std::int64_t index = 0;
    bool afterPoint = false;
    std::int64_t exponent = 0;
    for (const char* p = first; p < last; ++p) {
        if (isDigit(*p)) {
            if (*p != '0' && firstNonZero < 0) {
                firstNonZero = index;
            }
            if (!afterPoint) {
                ++digitsBeforePoint;
            }
            ++index;
        } else if (*p == '.') {
            afterPoint = true;
        } else if (*p == 'e' || *p == 'E') {
            ++p;
            const bool negative = p < last && *p == '-';
            if (p < last && (*p == '-' || *p == '+')) {
                ++p;
            }
            for (; p < last && isDigit(*p); ++p) {
                if (exponent < saturation) {
                    exponent = exponent * 10 + (*p - '0');
                }
            }
            exponent = negative ? -exponent : exponent;
            break;
        }
    }
    if (firstNonZero < 0) {
        return false;
    }
    return digitsBeforePoint - 1 - firstNonZero + exponent > 0;
}

}  // namespace

HluMemoryContext* hluMemoryContext(void) {
    return &defaultMemoryContext;
}

HluFpcContext* hluFpcContext(void) {
    return &defaultFpcContext;
}

void hluInitializeFpcContext(HluFpcContext* context, HluMemoryContext* memory) {
    if (context) {
        context->memory = memory ? memory : &defaultMemoryContext;
        context->initialized = 1;
    }
}

void hluClearFpcContext(HluFpcContext* context) {
    if (context) {
        context->memory = nullptr;
        context->initialized = 0;
    }
}

double hluStrtod(HluFpcContext* /*context*/, const char* text, char** end, int /*flags*/) {
    const auto setEnd = [end](const char* at) {
        if (end) {
            *end = const_cast<char*>(at);
        }
    };
    if (!text) {
        setEnd(text);
        return 0.0;
    }
    const char* p = text;
    while (isSpace(*p)) {
        ++p;
    }
    bool negative = false;
    if (*p == '+' || *p == '-') {
        negative = *p == '-';
        ++p;
    }
    // from_chars reads a '-' of its own; "+-1" and "--1" are no numbers.
    if (*p == '+' || *p == '-') {
        setEnd(text);
        return 0.0;
    }
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(p, p + std::strlen(p), value);
    if (result.ec == std::errc::invalid_argument) {
        setEnd(text);
        return 0.0;
    }
    setEnd(result.ptr);
    if (result.ec == std::errc::result_out_of_range) {
        errno = ERANGE;
        value = exceedsAbove(p, result.ptr) ? HUGE_VAL : 0.0;
    }
    return negative ? -value : value;
}

int hluFormatG(HluFpcContext* /*context*/, char* buffer, size_t size, double value) {
    if (!buffer || size == 0) {
        return -1;
    }
    char text[64];  // the longest shortest form of a double has 24 characters
    const std::to_chars_result result = std::to_chars(text, text + sizeof text, value);
    const std::size_t length = static_cast<std::size_t>(result.ptr - text);
    if (result.ec != std::errc() || length + 1 > size) {
        buffer[0] = '\0';
        return -1;
    }
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    return static_cast<int>(length);
}
