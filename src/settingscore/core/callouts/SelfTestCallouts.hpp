// The library's own C callouts: five run-time defaults and six validators that settings files
// of the library's checks name by package "settingscore", so that the C callout path can be
// exercised without a further library. Exported with C linkage, found by name with dlsym.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>

#include <boost/any.hpp>

#include <string>

#define SETTINGSCORE_SELFTEST_EXPORT __attribute__((visibility("default")))

extern "C" {

// ---- Run-time defaults (CRunTimeDefaultSignature) ----

// std::wstring "red".
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_RunTime_positive_red_color(
    boost::any* result);
// std::wstring "blue".
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_RunTime_positive_blue_color(
    boost::any* result);
// std::wstring "I am a scalar": conforms to a key of text arrays as a one-element array.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_RunTime_ConvertibleArraySize(
    boost::any* result);
// std::vector<std::wstring> {"one", "two", "three"}: too many for a scalar text key.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_RunTime_negative_wrongArraySize(
    boost::any* result);
// float with the bits 0x40BFFFEB (about 5.99999): the wrong type for a text key.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_RunTime_negative_wrongType(
    boost::any* result);

// ---- Validators (CValidatorSignature); each refusal is a settings::core::SettingsException
// with msgId "TOLVAN:Settings:CValidatorTest..." ----

// Accepts every value.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_MruNumValidator(
    const boost::shared_ptr<const settings::core::Settings>& parent, const std::string& keyName,
    const boost::any& value);
// Refuses every value.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_colorValidator(
    const boost::shared_ptr<const settings::core::Settings>& parent, const std::string& keyName,
    const boost::any& value);
// Refuses the text "BLACK" (case-sensitive); the value must hold a std::wstring.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_prohibitBlackColorValidator(
    const boost::shared_ptr<const settings::core::Settings>& parent, const std::string& keyName,
    const boost::any& value);
// Refuses the text "yellow" (case-sensitive); the value must hold a std::wstring.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_prohibitYellowColorValidator(
    const boost::shared_ptr<const settings::core::Settings>& parent, const std::string& keyName,
    const boost::any& value);
// Refuses numbers above 30; the value must hold an unsigned int.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_limitMaxFontSizeTo30Validator(
    const boost::shared_ptr<const settings::core::Settings>& parent, const std::string& keyName,
    const boost::any& value);
// Requires a parent named "TOLVAN", a value std::vector<int> starting with 1 and the key name
// "fontSizes", tested in that order.
SETTINGSCORE_SELFTEST_EXPORT void tvutil_settings_unittest_only_fontValidator(
    const boost::shared_ptr<const settings::core::Settings>& parent, const std::string& keyName,
    const boost::any& value);

}  // extern "C"
