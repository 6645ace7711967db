# The installed headers, relative to src/. Everything a client may name is here; headers under
# a detail/ folder are listed only where a public header includes them.
set(SETTINGSCORE_INSTALLED_HEADERS
    platform/hf/except/IException.hpp
    platform/hf/except/Exception.hpp
    platform/hf/resource/BaseMsgID.hpp
    platform/hf/i18n/Conversion.hpp
    platform/hf/i18n/MessageCatalog.hpp
    settingscore/core/SettingsFwd.hpp
    settingscore/core/exception/detail/CatalogException.hpp
    settingscore/core/callouts/VersionInfo.hpp
)
