// X(T) for each of the twelve scalar types that settings files name by a type word, in the
// order of the value layer's type codes ("string" 1 ... "double" 12). The element classes and
// the value text rule are instantiated with it.
#pragma once

#include <string>

#define SETTINGSCORE_FOR_EACH_TYPE_WORD(X) \
    X(std::wstring)                        \
    X(bool)                                \
    X(signed char)                         \
    X(unsigned char)                       \
    X(short)                               \
    X(unsigned short)                      \
    X(int)                                 \
    X(unsigned int)                        \
    X(long long)                           \
    X(unsigned long long)                  \
    X(float)                               \
    X(double)
