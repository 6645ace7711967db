#include <platform/hlu/tv_is_valid_name.h>

namespace {

constexpr int maxNameLength = 63;

// Explicit ranges rather than isalpha: the rule is ASCII whatever the C locale says.
bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

int tv_is_valid_name(const char* name) {
    if (!name || !isAsciiLetter(name[0])) {
        return 0;
    }
    int length = 1;
    for (const char* p = name + 1; *p; ++p, ++length) {
        if (length >= maxNameLength || !(isAsciiLetter(*p) || isAsciiDigit(*p) || *p == '_')) {
            return 0;
        }
    }
    return 1;
}
