// Everything a client of the settings core names, in one include: the node interfaces and the
// host's entry points (Settings, TSettings), key limits, validators and run-time defaults of
// every kind, change events, the levels and the preference folder functions, the value layer
// (treestore::boostany), every failure class and message-id failure, the host's exception
// interfaces and message catalogue that those failures are caught and shown through, the
// instance ids of the host's context manager, and the library's version.
#pragma once

#include <settingscore/Version.hpp>
#include <settingscore/core/ArraySizeBounds.hpp>
#include <settingscore/core/FakeSettingsTreeNode.hpp>
#include <settingscore/core/Settings.hpp>
#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/SettingsKeyMetaData.hpp>
#include <settingscore/core/SettingsProperties.hpp>
#include <settingscore/core/SettingsTypes.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/callouts/CRunTimeDefault.hpp>
#include <settingscore/core/callouts/CValidator.hpp>
#include <settingscore/core/callouts/CalloutVariants.hpp>
#include <settingscore/core/callouts/JRunTimeDefault.hpp>
#include <settingscore/core/callouts/JValidator.hpp>
#include <settingscore/core/callouts/TRunTimeDefault.hpp>
#include <settingscore/core/callouts/TValidator.hpp>
#include <settingscore/core/callouts/VersionInfo.hpp>
#include <settingscore/core/detail/NameToObjectTransformer.hpp>
#include <settingscore/core/events/SettingsAddNodeEvent.hpp>
#include <settingscore/core/events/SettingsEvent.hpp>
#include <settingscore/core/events/SettingsRemoveNodeEvent.hpp>
#include <settingscore/core/events/SettingsValueChangeEvent.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <platform/hf/except/Exception.hpp>
#include <platform/hf/except/IException.hpp>
#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>
#include <platform/tvutil/contextmgr/ContextRegistry.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>
