// The failures around a key's values at the levels, and around putting them into files:
// unknown or read-only levels, missing values, saving, and moving settings between releases.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/exception/detail/CatalogException.hpp>
#include <settingscore/core/exception/detail/ExceptionShapes.hpp>

#include <string>

namespace settings {
namespace core {
namespace exception {

class AttemptToGetValueFromVoid
    : public detail::CatalogException<AttemptToGetValueFromVoid, InternalException> {
public:
    static constexpr char whatText[] = "Attempt to retrieve value from a void boost::any variable.";
    AttemptToGetValueFromVoid();
    ~AttemptToGetValueFromVoid() override;
};

class CannotChangeValueForReadOnlySetting
    : public detail::CausingNodeException<CannotChangeValueForReadOnlySetting> {
public:
    static constexpr char whatText[] = "The setting is read-only, cannot change its value.";
    using CausingNodeException::CausingNodeException;
    ~CannotChangeValueForReadOnlySetting() override;
};

class CantModifyValuesOnReadOnlyLevel
    : public detail::CatalogException<CantModifyValuesOnReadOnlyLevel, InternalException> {
public:
    static constexpr char whatText[] = "The Settings file on the give level is read-only";
    CantModifyValuesOnReadOnlyLevel(const ConstSettingsPtr& objectInvolved,
                                    const std::string& levelToModify);
    ~CantModifyValuesOnReadOnlyLevel() override;

    const std::string& getLevelToModify() const;
    const ConstSettingsPtr& getObjectInvovled() const;

private:
    ConstSettingsPtr objectInvolved_;
    std::string levelToModify_;
};

// The level asked for, then the levels there are, as one display text.
class UnSupportedLevel : public detail::CatalogException<UnSupportedLevel, InternalException> {
public:
    static constexpr char whatText[] = "The level specified is not a supported level.";
    UnSupportedLevel(const ConstSettingsPtr& objectInvolved, const std::string& inputLevel,
                     const std::string& supportedLevelList);
    ~UnSupportedLevel() override;

    const std::string& getInputLevel() const;
    const ConstSettingsPtr& getObjectInvovled() const;
    const std::string& getSupportedLevelList() const;

private:
    ConstSettingsPtr objectInvolved_;
    std::string inputLevel_;
    std::string supportedLevelList_;
};

class ValueNotDefinedForGivenLevel
    : public detail::CatalogException<ValueNotDefinedForGivenLevel, InternalException> {
public:
    static constexpr char whatText[] =
        "No value is not defined for this setting on the given level";
    ValueNotDefinedForGivenLevel(const ConstSettingsPtr& objectInvolved,
                                 const std::string& inputLevel);
    ~ValueNotDefinedForGivenLevel() override;

    const std::string& getInputLevel() const;
    const ConstSettingsPtr& getObjectInvovled() const;

private:
    ConstSettingsPtr objectInvolved_;
    std::string inputLevel_;
};

class ErrorSaveSettingsDueToFileIOError
    : public detail::CatalogException<ErrorSaveSettingsDueToFileIOError, InternalException> {
public:
    static constexpr char whatText[] = "Error open a file stream for write.";
    ErrorSaveSettingsDueToFileIOError(const ConstSettingsPtr& causingObject,
                                      const std::wstring& fileName);
    ~ErrorSaveSettingsDueToFileIOError() override;

    const ConstSettingsPtr& getCausingObject() const;
    const std::wstring& getFileName() const;

private:
    ConstSettingsPtr causingObject_;
    std::wstring fileName_;
};

// The file, then the system's error number and its text.
class ErrorWriteToTempSettingsFile
    : public detail::CatalogException<ErrorWriteToTempSettingsFile, InternalException> {
public:
    static constexpr char whatText[] =
        "Cannot open a temp file to save the Settings object. It could be due to out of file "
        "handle or other reasons.";
    ErrorWriteToTempSettingsFile(const ConstSettingsPtr& causingObject,
                                 const std::wstring& causingFilePath, int errorNum,
                                 const std::wstring& reasonStr);
    ~ErrorWriteToTempSettingsFile() override;

    const std::wstring& getCausingFilePath() const;
    const ConstSettingsPtr& getCausingObject() const;
    int getErrorNum() const;
    const std::wstring& getReasonStr() const;

private:
    ConstSettingsPtr causingObject_;
    std::wstring causingFilePath_;
    int errorNum_;
    std::wstring reasonStr_;
};

// The level object itself is not kept: the exception may outlive it, and its name comes as
// the last argument. The third text is kept with the others but has no accessor of its own.
class NoFileWritePermission
    : public detail::CatalogException<NoFileWritePermission, InternalException> {
public:
    static constexpr char whatText[] =
        "Cannot write to the level specified. You may not have write permission on that level.";
    NoFileWritePermission(const SettingsPtr& causingObject, const SettingsLevel& level,
                          const std::wstring& causingFilePath, const std::wstring& additionalInfo,
                          const std::wstring& thirdInfo, std::string levelName);
    ~NoFileWritePermission() override;

    const std::wstring& getAdditionalInfo() const;
    const std::wstring& getCausingFilePath() const;
    const SettingsPtr& getCausingObject() const;
    const std::string& getLevelName() const;

private:
    SettingsPtr causingObject_;
    std::wstring causingFilePath_;
    std::wstring additionalInfo_;
    std::wstring thirdInfo_;
    std::string levelName_;
};

// The previous release's tag first, then the current one's.
class ErrorMigratePrefsBetweenReleases
    : public detail::CatalogException<ErrorMigratePrefsBetweenReleases, InternalException> {
public:
    static constexpr char whatText[] =
        "Error copying the files from the previous release prefdir to the current release "
        "prefdir.";
    ErrorMigratePrefsBetweenReleases(const std::string& prevFullRelTag,
                                     const std::string& currFullRelTag);
    ~ErrorMigratePrefsBetweenReleases() override;

    const std::string& getCurrFullRelTag() const;
    const std::string& getPrevFullRelTag() const;

private:
    std::string prevFullRelTag_;
    std::string currFullRelTag_;
};

// The release migrated from, then the one migrated to.
class ErrorMigrateSettingsBetweenReleases
    : public detail::CatalogException<ErrorMigrateSettingsBetweenReleases, InternalException> {
public:
    static constexpr char whatText[] =
        "Error migrating settings from previous release to the current release.";
    ErrorMigrateSettingsBetweenReleases(const std::wstring& srcRelease,
                                        const std::wstring& destRelease);
    ~ErrorMigrateSettingsBetweenReleases() override;

    const std::wstring& getDestRelease() const;
    const std::wstring& getSrcRelease() const;

private:
    std::wstring srcRelease_;
    std::wstring destRelease_;
};

}  // namespace exception
}  // namespace core
}  // namespace settings
