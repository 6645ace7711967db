#include <settingscore/core/exception/ExportAndMergeExceptions.hpp>

namespace settings {
namespace core {
namespace exception {

CannotExportSettingsRoot::~CannotExportSettingsRoot() = default;
CannotExportStandaloneSettings::~CannotExportStandaloneSettings() = default;
NoNodeSelectedForExport::NoNodeSelectedForExport() = default;
NoNodeSelectedForExport::~NoNodeSelectedForExport() = default;

ErrorExportMultipleNodesBelongsToDiffProducts::ErrorExportMultipleNodesBelongsToDiffProducts(
    const std::string& product1Name, const std::string& product2Name)
    : product1Name_(product1Name), product2Name_(product2Name) {}
ErrorExportMultipleNodesBelongsToDiffProducts::~ErrorExportMultipleNodesBelongsToDiffProducts() =
    default;
const std::string& ErrorExportMultipleNodesBelongsToDiffProducts::getProduct1Name() const {
    return product1Name_;
}
const std::string& ErrorExportMultipleNodesBelongsToDiffProducts::getProduct2Name() const {
    return product2Name_;
}

ErrorExportOrImportSettingsUsingRelativePath::ErrorExportOrImportSettingsUsingRelativePath(
    const std::wstring& relativePath)
    : relativePath_(relativePath) {}
ErrorExportOrImportSettingsUsingRelativePath::ErrorExportOrImportSettingsUsingRelativePath(
    const ConstSettingsPtr& objectInvolved, const std::wstring& relativePath)
    : objectInvolved_(objectInvolved), relativePath_(relativePath) {}
ErrorExportOrImportSettingsUsingRelativePath::~ErrorExportOrImportSettingsUsingRelativePath() =
    default;
const ConstSettingsPtr& ErrorExportOrImportSettingsUsingRelativePath::getObjectInvovled() const {
    return objectInvolved_;
}
const std::wstring& ErrorExportOrImportSettingsUsingRelativePath::getRelativePath() const {
    return relativePath_;
}

ErrorCreateFactoryFileFromATreeNode::~ErrorCreateFactoryFileFromATreeNode() = default;
CannotMergeWithSettingsRoot::~CannotMergeWithSettingsRoot() = default;

CanOnlyMergeTreeNodeWithStandaloneNode::CanOnlyMergeTreeNodeWithStandaloneNode(
    const ConstSettingsPtr& mergeTarget, const ConstSettingsPtr& objectInvolved)
    : mergeTarget_(mergeTarget), objectInvolved_(objectInvolved) {}
CanOnlyMergeTreeNodeWithStandaloneNode::~CanOnlyMergeTreeNodeWithStandaloneNode() = default;
const ConstSettingsPtr& CanOnlyMergeTreeNodeWithStandaloneNode::getObjectInvovled() const {
    return objectInvolved_;
}

ErrorMergingNodesWithDiffAttr::ErrorMergingNodesWithDiffAttr(const ConstSettingsPtr& desObject,
                                                             const ConstSettingsPtr& srcObject,
                                                             const std::wstring& diffAttrNameList)
    : desObject_(desObject), srcObject_(srcObject), diffAttrNameList_(diffAttrNameList) {}
ErrorMergingNodesWithDiffAttr::~ErrorMergingNodesWithDiffAttr() = default;
const ConstSettingsPtr& ErrorMergingNodesWithDiffAttr::getDesObject() const {
    return desObject_;
}
const std::wstring& ErrorMergingNodesWithDiffAttr::getDiffAttrNameList() const {
    return diffAttrNameList_;
}
const ConstSettingsPtr& ErrorMergingNodesWithDiffAttr::getSrcObject() const {
    return srcObject_;
}

ErrorMergingWithCircularReference::ErrorMergingWithCircularReference(
    const ConstSettingsPtr& causingObject, const ConstSettingsPtr& objectInvolved)
    : causingObject_(causingObject), objectInvolved_(objectInvolved) {}
ErrorMergingWithCircularReference::~ErrorMergingWithCircularReference() = default;
const ConstSettingsPtr& ErrorMergingWithCircularReference::getCausingObject() const {
    return causingObject_;
}
const ConstSettingsPtr& ErrorMergingWithCircularReference::getObjectInvovled() const {
    return objectInvolved_;
}

}  // namespace exception
}  // namespace core
}  // namespace settings
