# The installed headers, relative to src/. Everything a client may name is here; headers under
# a detail/ folder are listed only where a public header includes them.
set(SETTINGSCORE_INSTALLED_HEADERS
    # the umbrella header
    settingscore/settingscore.hpp

    # value layer
    settingscore/treestore/boostany/BoostAny.hpp
    settingscore/treestore/boostany/Equality.hpp
    settingscore/treestore/boostany/Exceptions.hpp
    settingscore/treestore/boostany/Get.hpp
    settingscore/treestore/boostany/SupportedTypes.hpp
    settingscore/treestore/boostany/TypeNames.hpp
    settingscore/treestore/boostany/VariantConversion.hpp
    settingscore/treestore/boostany/detail/ForEachSupportedType.hpp
    settingscore/treestore/boostany/detail/TypeExportHook.hpp
    settingscore/treestore/boostany/detail/TypeList.hpp

    # settings core: nodes, roots and entry points
    settingscore/core/ArraySizeBounds.hpp
    settingscore/core/FakeSettingsTreeNode.hpp
    settingscore/core/ProductFileStatus.hpp
    settingscore/core/Settings.hpp
    settingscore/core/SettingsContext.hpp
    settingscore/core/SettingsFwd.hpp
    settingscore/core/SettingsKeyMetaData.hpp
    settingscore/core/SettingsProperties.hpp
    settingscore/core/SettingsTypes.hpp
    settingscore/core/TSettings.hpp
    settingscore/core/detail/NameToObjectTransformer.hpp

    # callouts
    settingscore/core/callouts/CFunctionInvoker.hpp
    settingscore/core/callouts/CRunTimeDefault.hpp
    settingscore/core/callouts/CValidator.hpp
    settingscore/core/callouts/CalloutVariants.hpp
    settingscore/core/callouts/JRunTimeDefault.hpp
    settingscore/core/callouts/JValidator.hpp
    settingscore/core/callouts/TOLVANFunctionInvoker.hpp
    settingscore/core/callouts/TRunTimeDefault.hpp
    settingscore/core/callouts/TValidator.hpp
    settingscore/core/callouts/VersionInfo.hpp

    # events
    settingscore/core/events/SettingsAddNodeEvent.hpp
    settingscore/core/events/SettingsEvent.hpp
    settingscore/core/events/SettingsRemoveNodeEvent.hpp
    settingscore/core/events/SettingsValueChangeEvent.hpp

    # storage
    settingscore/core/storage/PreferencesDirectory.hpp
    settingscore/core/storage/SettingsLevel.hpp
    settingscore/core/storage/SettingsLevelManager.hpp

    # failures
    settingscore/core/exception/CalloutExceptions.hpp
    settingscore/core/exception/Exceptions.hpp
    settingscore/core/exception/ExportAndMergeExceptions.hpp
    settingscore/core/exception/LevelAndStorageExceptions.hpp
    settingscore/core/exception/MessageIds.hpp
    settingscore/core/exception/SettingsException.hpp
    settingscore/core/exception/TreeExceptions.hpp
    settingscore/core/exception/ValidationExceptions.hpp
    settingscore/core/exception/detail/CatalogException.hpp
    settingscore/core/exception/detail/ExceptionShapes.hpp

    # host stand-ins
    platform/hf/app/FastExit.hpp
    platform/hf/except/Exception.hpp
    platform/hf/except/IException.hpp
    platform/hf/filesystem/FileSystem.hpp
    platform/hf/filesystem/FilesystemError.hpp
    platform/hf/filesystem/InstallPath.hpp
    platform/hf/filesystem/Operations.hpp
    platform/hf/filesystem/Path.hpp
    platform/hf/i18n/Conversion.hpp
    platform/hf/i18n/MessageCatalog.hpp
    platform/hf/io/Uostream.hpp
    platform/hf/log/Channels.hpp
    platform/hf/log/DiagnosticLogger.hpp
    platform/hf/resource/BaseMsgID.hpp
    platform/hlu/hlu.h
    platform/hlu/tv_is_valid_name.h
    platform/hostsvc/msg_svc/eventmgr/BaseEvent.hpp
    platform/hostsvc/msg_svc/eventmgr/Connection.hpp
    platform/hostsvc/msg_svc/eventmgr/EventMgr.hpp
    platform/hostsvc/msg_svc/eventmgr/TypeInformation.hpp
    platform/hostsvc/msg_svc/eventmgr/detail/DerivedTypeInformation.hpp
    platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp
    platform/hostsvc/msg_svc/exchange/IDType.hpp
    platform/tvutil/contextmgr/ContextBase.hpp
    platform/tvutil/contextmgr/ContextFactoryBase.hpp
    platform/tvutil/contextmgr/ContextRegistry.hpp
    platform/tvutil/contextmgr/InstanceID.hpp
    platform/tvutil/eventmgr/LocalEventMgr.hpp
)
