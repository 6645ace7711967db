// The generated factory files of the benchmarks: a product of `keys` keys.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include <stdlib.h>

namespace benchfiles {

// A new folder /tmp/settingscore-<tag>-XXXXXX, removed with everything in it at exit. One per
// program: the benchmarks make theirs once.
inline std::string makeTempRoot(const std::string& tag) {
    std::string pattern = "/tmp/settingscore-" + tag + "-XXXXXX";
    if (!::mkdtemp(pattern.data())) {
        throw std::runtime_error("mkdtemp failed");
    }
    static std::string dir;
    dir = pattern;
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(dir, ignored);
    });
    return dir;
}

inline std::string productName(int keys) {
    return "p" + std::to_string(keys);
}

// A factory file of `keys` keys in groups of 100, the four common types in turn.
inline std::string factoryDocument(int keys) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"" +
                       productName(keys) +
                       "\" visible=\"true\" xmlns=\"urn:lindqvare.tolvan.settings\">\n";
    for (int k = 0; k < keys; ++k) {
        if (k % 100 == 0) {
            text += "<settings name=\"g" + std::to_string(k / 100) + "\" visible=\"true\">\n";
        }
        const std::string n = std::to_string(k);
        text += "<key name=\"k" + n + "\" visible=\"true\">";
        switch (k % 4) {
            case 0:
                text += "<int32><value>" + n + "</value></int32>";
                break;
            case 1:
                text += "<double><value>" + n + ".5</value></double>";
                break;
            case 2:
                text += "<bool><value>true</value></bool>";
                break;
            default:
                text += "<string><value>text " + n + "</value></string>";
                break;
        }
        text += "</key>\n";
        if (k % 100 == 99 || k == keys - 1) {
            text += "</settings>\n";
        }
    }
    return text + "</settings>\n";
}

}  // namespace benchfiles
