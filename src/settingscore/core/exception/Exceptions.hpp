// Every failure the library raises: the catalogue classes of settings::core::exception,
// settings::core::SettingsException, and the message-id failures of MessageIds.hpp.
#pragma once

#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/ExportAndMergeExceptions.hpp>
#include <settingscore/core/exception/LevelAndStorageExceptions.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/SettingsException.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>
