#include <settingscore/core/exception/TreeExceptions.hpp>

namespace settings {
namespace core {
namespace exception {

CanNotAddKeyToRootException::~CanNotAddKeyToRootException() = default;

CannotAddKeyToRoot::CannotAddKeyToRoot(const std::string& inputName) : inputName_(inputName) {}
CannotAddKeyToRoot::~CannotAddKeyToRoot() = default;
const std::string& CannotAddKeyToRoot::getInputName() const {
    return inputName_;
}

CannotAddRemoveNodeUnderReadOnlyParent::CannotAddRemoveNodeUnderReadOnlyParent(
    const ConstSettingsPtr& parentObject, const ConstSettingsPtr& childObject)
    : parentObject_(parentObject), childObject_(childObject) {}
CannotAddRemoveNodeUnderReadOnlyParent::~CannotAddRemoveNodeUnderReadOnlyParent() = default;
const ConstSettingsPtr& CannotAddRemoveNodeUnderReadOnlyParent::getChildObject() const {
    return childObject_;
}
const ConstSettingsPtr& CannotAddRemoveNodeUnderReadOnlyParent::getParentObject() const {
    return parentObject_;
}

CannotAttachNodeBelowItself::CannotAttachNodeBelowItself(const ConstSettingsPtr& childObject,
                                                         const ConstSettingsPtr& parentObject)
    : childObject_(childObject), parentObject_(parentObject) {}
CannotAttachNodeBelowItself::~CannotAttachNodeBelowItself() = default;
const ConstSettingsPtr& CannotAttachNodeBelowItself::getChildObject() const {
    return childObject_;
}
const ConstSettingsPtr& CannotAttachNodeBelowItself::getParentObject() const {
    return parentObject_;
}

ErrorAddingChildNodeOrKey::ErrorAddingChildNodeOrKey(const ConstSettingsPtr& objectInvolved,
                                                     const std::string& existingNodeKeyName)
    : objectInvolved_(objectInvolved), existingNodeKeyName_(existingNodeKeyName) {}
ErrorAddingChildNodeOrKey::~ErrorAddingChildNodeOrKey() = default;
const std::string& ErrorAddingChildNodeOrKey::getExistingNodeKeyName() const {
    return existingNodeKeyName_;
}
const ConstSettingsPtr& ErrorAddingChildNodeOrKey::getObjectInvovled() const {
    return objectInvolved_;
}

ErrorAddingTopLevelNode::ErrorAddingTopLevelNode(const std::string& productNamePassedIn,
                                                 const std::string& existingProductName)
    : productNamePassedIn_(productNamePassedIn), existingProductName_(existingProductName) {}
ErrorAddingTopLevelNode::~ErrorAddingTopLevelNode() = default;
const std::string& ErrorAddingTopLevelNode::getExistingProductName() const {
    return existingProductName_;
}
const std::string& ErrorAddingTopLevelNode::getProductNamePassedIn() const {
    return productNamePassedIn_;
}

ErrorReadingSettingsData::ErrorReadingSettingsData(ErrorCode errorCode,
                                                   const std::wstring& detailErrorMsg)
    : errorCode_(errorCode), detailErrorMsg_(detailErrorMsg) {}
ErrorReadingSettingsData::~ErrorReadingSettingsData() = default;
const std::wstring& ErrorReadingSettingsData::getDetailErrorMsg() const {
    return detailErrorMsg_;
}
ErrorReadingSettingsData::ErrorCode ErrorReadingSettingsData::getErrorCode() const {
    return errorCode_;
}

InvalidNodePath::InvalidNodePath(const ConstSettingsPtr& objectInvolved,
                                 const std::string& invalidName)
    : objectInvolved_(objectInvolved), invalidName_(invalidName) {}
InvalidNodePath::~InvalidNodePath() = default;
const std::string& InvalidNodePath::getInvalidName() const {
    return invalidName_;
}
const ConstSettingsPtr& InvalidNodePath::getObjectInvovled() const {
    return objectInvolved_;
}

InvalidSettingOrGroupName::InvalidSettingOrGroupName(const std::string& inputNodeName)
    : inputNodeName_(inputNodeName) {}
InvalidSettingOrGroupName::~InvalidSettingOrGroupName() = default;
const std::string& InvalidSettingOrGroupName::getInputNodeName() const {
    return inputNodeName_;
}

NoFileWritePermissionOnMultipleLevels::NoFileWritePermissionOnMultipleLevels(
    const ConstSettingsPtr& objectInvolved, const std::string& levelNeedToBeUpdated,
    const std::string& levelsHasWritenPermissionOn)
    : objectInvolved_(objectInvolved),
      levelNeedToBeUpdated_(levelNeedToBeUpdated),
      levelsHasWritenPermissionOn_(levelsHasWritenPermissionOn) {}
NoFileWritePermissionOnMultipleLevels::~NoFileWritePermissionOnMultipleLevels() = default;
const std::string& NoFileWritePermissionOnMultipleLevels::getLevelNeedToBeUpdated() const {
    return levelNeedToBeUpdated_;
}
const std::string& NoFileWritePermissionOnMultipleLevels::getLevelsHasWritenPermissionOn() const {
    return levelsHasWritenPermissionOn_;
}
const ConstSettingsPtr& NoFileWritePermissionOnMultipleLevels::getObjectInvovled() const {
    return objectInvolved_;
}

NoSuchKey::~NoSuchKey() = default;
NoSuchNode::~NoSuchNode() = default;
NotAKeyName::~NotAKeyName() = default;
NotANodeName::~NotANodeName() = default;

ProductNodeAlreadyExisted::ProductNodeAlreadyExisted(const std::string& inputName,
                                                     const std::string& existingName)
    : inputName_(inputName), existingName_(existingName) {}
ProductNodeAlreadyExisted::~ProductNodeAlreadyExisted() = default;
const std::string& ProductNodeAlreadyExisted::getExistingName() const {
    return existingName_;
}
const std::string& ProductNodeAlreadyExisted::getInputName() const {
    return inputName_;
}

SameNameChildAlreadyExisted::~SameNameChildAlreadyExisted() = default;

}  // namespace exception
}  // namespace core
}  // namespace settings
