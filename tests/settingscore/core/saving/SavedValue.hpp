// Reads a product file back the way a later session would, for the tests that break saves on
// purpose: the value of key "a" at "user" under group "g", or nothing when the file is missing,
// unreadable or does not hold `filler` in full as key "b" (a short file).
#pragma once

#include "SavingFixture.hpp"

#include <optional>

namespace savingtest {

inline std::optional<std::wstring> savedValue(const std::filesystem::path& file,
                                              const std::wstring& filler) {
    try {
        auto product = sc::Settings::importAsStandaloneObject(file.wstring());
        auto group = product ? product->getChild("g") : nullptr;
        if (group && boost::any_cast<std::wstring>(group->getAny("b", "user")) == filler) {
            return boost::any_cast<std::wstring>(group->getAny("a", "user"));
        }
    } catch (...) {  // whatever the reader refuses counts as a broken file
    }
    return std::nullopt;
}

}  // namespace savingtest
