#include <settingscore/core/callouts/SelfTestCallouts.hpp>

#include <platform/hf/i18n/Conversion.hpp>
#include <settingscore/core/Settings.hpp>
#include <settingscore/core/exception/SettingsException.hpp>
#include <settingscore/treestore/boostany/Get.hpp>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

using settings::core::SettingsException;

constexpr const char* validatorTestMsgId = "TOLVAN:Settings:CValidatorTestException";

// Refuses the text `prohibited`, compared case-sensitively.
void prohibitColor(const std::string& keyName, const boost::any& value,
                   const std::wstring& prohibited) {
    const std::wstring color = treestore::boostany::get<std::wstring>(value, false);
    if (color == prohibited) {
        throw SettingsException(validatorTestMsgId,
                                "Invalid color choice: " + hf::i18n::to_string(color) + "\n",
                                keyName);
    }
}

}  // namespace

extern "C" {

void tvutil_settings_unittest_only_RunTime_positive_red_color(boost::any* result) {
    *result = std::wstring(L"red");
}

void tvutil_settings_unittest_only_RunTime_positive_blue_color(boost::any* result) {
    *result = std::wstring(L"blue");
}

void tvutil_settings_unittest_only_RunTime_ConvertibleArraySize(boost::any* result) {
    *result = std::wstring(L"I am a scalar");
}

void tvutil_settings_unittest_only_RunTime_negative_wrongArraySize(boost::any* result) {
    *result = std::vector<std::wstring>{L"one", L"two", L"three"};
}

void tvutil_settings_unittest_only_RunTime_negative_wrongType(boost::any* result) {
    const std::uint32_t bits = 0x40BFFFEBu;
    float number = 0;
    static_assert(sizeof number == sizeof bits, "float must be 32 bits");
    std::memcpy(&number, &bits, sizeof number);
    *result = number;
}

void tvutil_settings_unittest_only_MruNumValidator(
    const boost::shared_ptr<const settings::core::Settings>&, const std::string&,
    const boost::any&) {}

void tvutil_settings_unittest_only_colorValidator(
    const boost::shared_ptr<const settings::core::Settings>&, const std::string&,
    const boost::any&) {
    throw SettingsException(validatorTestMsgId, "Intentional CValidator Error Thrown\n", "");
}

void tvutil_settings_unittest_only_prohibitBlackColorValidator(
    const boost::shared_ptr<const settings::core::Settings>&, const std::string& keyName,
    const boost::any& value) {
    prohibitColor(keyName, value, L"BLACK");
}

void tvutil_settings_unittest_only_prohibitYellowColorValidator(
    const boost::shared_ptr<const settings::core::Settings>&, const std::string& keyName,
    const boost::any& value) {
    prohibitColor(keyName, value, L"yellow");
}

void tvutil_settings_unittest_only_limitMaxFontSizeTo30Validator(
    const boost::shared_ptr<const settings::core::Settings>&, const std::string& keyName,
    const boost::any& value) {
    const unsigned int size = treestore::boostany::get<unsigned int>(value, false);
    if (size >= 31) {
        throw SettingsException(validatorTestMsgId,
                                "Font size is too big: " + std::to_string(size) + " \n\n", keyName);
    }
}

void tvutil_settings_unittest_only_fontValidator(
    const boost::shared_ptr<const settings::core::Settings>& parent, const std::string& keyName,
    const boost::any& value) {
    const std::vector<int> sizes = treestore::boostany::get<std::vector<int>>(value, false);
    // A validator without a parent cannot have the expected one; it fails the first test
    // rather than dereference null.
    const std::string parentName = parent ? parent->getName() : std::string();
    if (!parent || parentName != "TOLVAN") {
        throw SettingsException(
            "TOLVAN:Settings:CValidatorTestFontValidatorNameException",
            "Passed value for parent name and Expected value of parent name found unequal \n",
            parentName);
    }
    // Only the places of the expected list are compared; a missing place is a difference.
    const std::vector<int> expected{1};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (i >= sizes.size() || sizes[i] != expected[i]) {
            throw SettingsException("TOLVAN:Settings:CValidatorTestFontValidatorValueException",
                                    "Passed value and Expected value found unequal \n", parentName);
        }
    }
    if (keyName != "fontSizes") {
        throw SettingsException("TOLVAN:Settings:CValidatorTestFontValidatorKeyNameException",
                                "Passed name of key and Expected name of key found unequal\n",
                                parentName);
    }
}

}  // extern "C"
