// Everything a client of the settings core names, in one include: the value layer
// (treestore::boostany), every failure class and message-id failure, the host's exception
// interfaces and message catalogue that those failures are caught and shown through, the
// instance ids of the host's context manager, and the library's version.
#pragma once

#include <settingscore/Version.hpp>
#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/callouts/VersionInfo.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <platform/hf/except/Exception.hpp>
#include <platform/hf/except/IException.hpp>
#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>
