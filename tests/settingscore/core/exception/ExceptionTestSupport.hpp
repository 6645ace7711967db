// Helpers shared by the failure tests: node handles that need no tree, distinct argument texts,
// and the two ways a failure travels (a copy across a boost::exception_ptr, a catch by base).
#pragma once

#include <settingscore/core/SettingsFwd.hpp>

#include <boost/exception_ptr.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <typeinfo>

namespace exceptiontest {

// A node handle aliasing a dummy object. The tree's classes are not needed: the failures only
// hold and hand back the pointer, so its identity is what the tests compare. Never dereferenced.
inline settings::core::SettingsPtr mutableNode(boost::shared_ptr<int> owner = nullptr) {
    if (!owner) {
        owner = boost::make_shared<int>(0);
    }
    return settings::core::SettingsPtr(owner,
                                       reinterpret_cast<settings::core::Settings*>(owner.get()));
}

inline settings::core::ConstSettingsPtr node(boost::shared_ptr<int> owner = nullptr) {
    return mutableNode(std::move(owner));
}

// Texts that differ by seed and by argument position, so that a swapped or dropped argument
// shows. The wide ones carry a character outside ASCII.
inline std::string text(int seed, int slot) {
    return "text-" + std::to_string(seed) + "-" + std::to_string(slot);
}
inline std::wstring wtext(int seed, int slot) {
    return L"w\u00e4rt-" + std::to_wstring(seed) + L"-" + std::to_wstring(slot);
}
inline std::wstring ascii(const char* text) {
    return std::wstring(text, text + std::strlen(text));
}

// `e` thrown and captured by boost::current_exception.
template <class E>
boost::exception_ptr captured(const E& e) {
    try {
        throw e;
    } catch (...) {
        return boost::current_exception();
    }
}

// Captures `original` on another thread and rethrows it here; returns the copy caught by its
// concrete class. A copy that arrives as another class is a test failure (and an empty result).
template <class E>
std::optional<E> acrossExceptionPtr(const E& original) {
    boost::exception_ptr copy;
    std::thread([&] { copy = captured(original); }).join();
    try {
        boost::rethrow_exception(copy);
    } catch (const E& e) {
        EXPECT_EQ(typeid(e), typeid(E)) << "rethrown as a subclass of " << typeid(E).name();
        return e;
    } catch (...) {
        ADD_FAILURE() << typeid(E).name() << " lost its class across an exception_ptr";
    }
    return std::nullopt;
}

// Whether throwing `e` can be caught as Catch.
template <class Catch, class E>
bool caughtAs(const E& e) {
    try {
        throw e;
    } catch (const Catch&) {
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace exceptiontest
