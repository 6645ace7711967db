#include <settingscore/core/exception/LevelAndStorageExceptions.hpp>

#include <utility>

namespace settings {
namespace core {
namespace exception {

AttemptToGetValueFromVoid::AttemptToGetValueFromVoid() = default;
AttemptToGetValueFromVoid::~AttemptToGetValueFromVoid() = default;

CannotChangeValueForReadOnlySetting::~CannotChangeValueForReadOnlySetting() = default;

CantModifyValuesOnReadOnlyLevel::CantModifyValuesOnReadOnlyLevel(
    const ConstSettingsPtr& objectInvolved, const std::string& levelToModify)
    : objectInvolved_(objectInvolved), levelToModify_(levelToModify) {}
CantModifyValuesOnReadOnlyLevel::~CantModifyValuesOnReadOnlyLevel() = default;
const std::string& CantModifyValuesOnReadOnlyLevel::getLevelToModify() const {
    return levelToModify_;
}
const ConstSettingsPtr& CantModifyValuesOnReadOnlyLevel::getObjectInvovled() const {
    return objectInvolved_;
}

UnSupportedLevel::UnSupportedLevel(const ConstSettingsPtr& objectInvolved,
                                   const std::string& inputLevel,
                                   const std::string& supportedLevelList)
    : objectInvolved_(objectInvolved),
      inputLevel_(inputLevel),
      supportedLevelList_(supportedLevelList) {}
UnSupportedLevel::~UnSupportedLevel() = default;
const std::string& UnSupportedLevel::getInputLevel() const {
    return inputLevel_;
}
const ConstSettingsPtr& UnSupportedLevel::getObjectInvovled() const {
    return objectInvolved_;
}
const std::string& UnSupportedLevel::getSupportedLevelList() const {
    return supportedLevelList_;
}

ValueNotDefinedForGivenLevel::ValueNotDefinedForGivenLevel(const ConstSettingsPtr& objectInvolved,
                                                           const std::string& inputLevel)
    : objectInvolved_(objectInvolved), inputLevel_(inputLevel) {}
ValueNotDefinedForGivenLevel::~ValueNotDefinedForGivenLevel() = default;
const std::string& ValueNotDefinedForGivenLevel::getInputLevel() const {
    return inputLevel_;
}
const ConstSettingsPtr& ValueNotDefinedForGivenLevel::getObjectInvovled() const {
    return objectInvolved_;
}

ErrorSaveSettingsDueToFileIOError::ErrorSaveSettingsDueToFileIOError(
    const ConstSettingsPtr& causingObject, const std::wstring& fileName)
    : causingObject_(causingObject), fileName_(fileName) {}
ErrorSaveSettingsDueToFileIOError::~ErrorSaveSettingsDueToFileIOError() = default;
const ConstSettingsPtr& ErrorSaveSettingsDueToFileIOError::getCausingObject() const {
    return causingObject_;
}
const std::wstring& ErrorSaveSettingsDueToFileIOError::getFileName() const {
    return fileName_;
}

ErrorWriteToTempSettingsFile::ErrorWriteToTempSettingsFile(const ConstSettingsPtr& causingObject,
                                                           const std::wstring& causingFilePath,
                                                           int errorNum,
                                                           const std::wstring& reasonStr)
    : causingObject_(causingObject),
      causingFilePath_(causingFilePath),
      errorNum_(errorNum),
      reasonStr_(reasonStr) {}
ErrorWriteToTempSettingsFile::~ErrorWriteToTempSettingsFile() = default;
const std::wstring& ErrorWriteToTempSettingsFile::getCausingFilePath() const {
    return causingFilePath_;
}
const ConstSettingsPtr& ErrorWriteToTempSettingsFile::getCausingObject() const {
    return causingObject_;
}
int ErrorWriteToTempSettingsFile::getErrorNum() const {
    return errorNum_;
}
const std::wstring& ErrorWriteToTempSettingsFile::getReasonStr() const {
    return reasonStr_;
}

NoFileWritePermission::NoFileWritePermission(const SettingsPtr& causingObject,
                                             const SettingsLevel& /*level*/,
                                             const std::wstring& causingFilePath,
                                             const std::wstring& additionalInfo,
                                             const std::wstring& thirdInfo, std::string levelName)
    : causingObject_(causingObject),
      causingFilePath_(causingFilePath),
      additionalInfo_(additionalInfo),
      thirdInfo_(thirdInfo),
      levelName_(std::move(levelName)) {}
NoFileWritePermission::~NoFileWritePermission() = default;
const std::wstring& NoFileWritePermission::getAdditionalInfo() const {
    return additionalInfo_;
}
const std::wstring& NoFileWritePermission::getCausingFilePath() const {
    return causingFilePath_;
}
const SettingsPtr& NoFileWritePermission::getCausingObject() const {
    return causingObject_;
}
const std::string& NoFileWritePermission::getLevelName() const {
    return levelName_;
}

ErrorMigratePrefsBetweenReleases::ErrorMigratePrefsBetweenReleases(
    const std::string& prevFullRelTag, const std::string& currFullRelTag)
    : prevFullRelTag_(prevFullRelTag), currFullRelTag_(currFullRelTag) {}
ErrorMigratePrefsBetweenReleases::~ErrorMigratePrefsBetweenReleases() = default;
const std::string& ErrorMigratePrefsBetweenReleases::getCurrFullRelTag() const {
    return currFullRelTag_;
}
const std::string& ErrorMigratePrefsBetweenReleases::getPrevFullRelTag() const {
    return prevFullRelTag_;
}

ErrorMigrateSettingsBetweenReleases::ErrorMigrateSettingsBetweenReleases(
    const std::wstring& srcRelease, const std::wstring& destRelease)
    : srcRelease_(srcRelease), destRelease_(destRelease) {}
ErrorMigrateSettingsBetweenReleases::~ErrorMigrateSettingsBetweenReleases() = default;
const std::wstring& ErrorMigrateSettingsBetweenReleases::getDestRelease() const {
    return destRelease_;
}
const std::wstring& ErrorMigrateSettingsBetweenReleases::getSrcRelease() const {
    return srcRelease_;
}

}  // namespace exception
}  // namespace core
}  // namespace settings
