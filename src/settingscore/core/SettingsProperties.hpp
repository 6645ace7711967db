// SettingsProperties: what the host states about a setting it is about to create with
// TSettings::createSetting.
#pragma once

#include <settingscore/core/callouts/CalloutVariants.hpp>

struct SettingsProperties {
    bool hidden = false;                         // the setting is not visible
    bool readOnly = false;                       // the setting is read-only
    settings::core::ValidatorVariant validator;  // boost::mpl::void_ for none
};
