// The failures of moving whole subtrees in and out of the tree: export, import, factory files
// made from a standalone tree, and merging one tree into another.
//
// In the merge failures the node passed in to be merged (the "other" node) is the involved
// object; the node merged into comes first where both are given.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/exception/detail/CatalogException.hpp>
#include <settingscore/core/exception/detail/ExceptionShapes.hpp>

#include <string>

namespace settings {
namespace core {
namespace exception {

class CannotExportSettingsRoot : public detail::InvolvedNodeException<CannotExportSettingsRoot> {
public:
    static constexpr char whatText[] = "Users can only export product node or sub product node.";
    using InvolvedNodeException::InvolvedNodeException;
    ~CannotExportSettingsRoot() override;
};

class CannotExportStandaloneSettings
    : public detail::InvolvedNodeException<CannotExportStandaloneSettings> {
public:
    static constexpr char whatText[] = "Users can only export settings node on the settings tree.";
    using InvolvedNodeException::InvolvedNodeException;
    ~CannotExportStandaloneSettings() override;
};

class NoNodeSelectedForExport
    : public detail::CatalogException<NoNodeSelectedForExport, InternalException> {
public:
    static constexpr char whatText[] = "No settings node was selected to export.";
    NoNodeSelectedForExport();
    ~NoNodeSelectedForExport() override;
};

class ErrorExportMultipleNodesBelongsToDiffProducts
    : public detail::CatalogException<ErrorExportMultipleNodesBelongsToDiffProducts,
                                      InternalException> {
public:
    static constexpr char whatText[] = "The exported node belongs to the different product.";
    ErrorExportMultipleNodesBelongsToDiffProducts(const std::string& product1Name,
                                                  const std::string& product2Name);
    ~ErrorExportMultipleNodesBelongsToDiffProducts() override;

    const std::string& getProduct1Name() const;
    const std::string& getProduct2Name() const;

private:
    std::string product1Name_;
    std::string product2Name_;
};

// Import has only the path to report; export also the node it was asked to write. Without a
// node, getObjectInvovled is null.
class ErrorExportOrImportSettingsUsingRelativePath
    : public detail::CatalogException<ErrorExportOrImportSettingsUsingRelativePath,
                                      InternalException> {
public:
    static constexpr char whatText[] =
        "The Settings import or export function can only take full path";
    explicit ErrorExportOrImportSettingsUsingRelativePath(const std::wstring& relativePath);
    ErrorExportOrImportSettingsUsingRelativePath(const ConstSettingsPtr& objectInvolved,
                                                 const std::wstring& relativePath);
    ~ErrorExportOrImportSettingsUsingRelativePath() override;

    const ConstSettingsPtr& getObjectInvovled() const;
    const std::wstring& getRelativePath() const;

private:
    ConstSettingsPtr objectInvolved_;
    std::wstring relativePath_;
};

class ErrorCreateFactoryFileFromATreeNode
    : public detail::InvolvedNodeException<ErrorCreateFactoryFileFromATreeNode> {
public:
    static constexpr char whatText[] =
        "Cannot create a factory file from a settings node on the Settings tree. Please "
        "create/edit factory file with a standalone node.";
    using InvolvedNodeException::InvolvedNodeException;
    ~ErrorCreateFactoryFileFromATreeNode() override;
};

class CannotMergeWithSettingsRoot
    : public detail::InvolvedNodeException<CannotMergeWithSettingsRoot> {
public:
    // The double blank is part of the text.
    static constexpr char whatText[] =
        "Users can only  merge settings with product node or sub-product node. Users cannot "
        "merge settings directly with Settings root.";
    using InvolvedNodeException::InvolvedNodeException;
    ~CannotMergeWithSettingsRoot() override;
};

// The node merged into, then the node on the tree that was passed in. Only the second has an
// accessor; the first is held all the same, so that both stay alive with the exception.
class CanOnlyMergeTreeNodeWithStandaloneNode
    : public detail::CatalogException<CanOnlyMergeTreeNodeWithStandaloneNode, InternalException> {
public:
    static constexpr char whatText[] =
        "Cannot only merge a node on the tree with a standalone node.";
    CanOnlyMergeTreeNodeWithStandaloneNode(const ConstSettingsPtr& mergeTarget,
                                           const ConstSettingsPtr& objectInvolved);
    ~CanOnlyMergeTreeNodeWithStandaloneNode() override;

    const ConstSettingsPtr& getObjectInvovled() const;

private:
    ConstSettingsPtr mergeTarget_;
    ConstSettingsPtr objectInvolved_;
};

// The destination node, the source node, then the names of the differing attributes, each
// followed by a comma.
class ErrorMergingNodesWithDiffAttr
    : public detail::CatalogException<ErrorMergingNodesWithDiffAttr, InternalException> {
public:
    static constexpr char whatText[] =
        "The nodes should be the same, but they have different attributes' value. Cannot merge "
        "them.";
    ErrorMergingNodesWithDiffAttr(const ConstSettingsPtr& desObject,
                                  const ConstSettingsPtr& srcObject,
                                  const std::wstring& diffAttrNameList);
    ~ErrorMergingNodesWithDiffAttr() override;

    const ConstSettingsPtr& getDesObject() const;
    const std::wstring& getDiffAttrNameList() const;
    const ConstSettingsPtr& getSrcObject() const;

private:
    ConstSettingsPtr desObject_;
    ConstSettingsPtr srcObject_;
    std::wstring diffAttrNameList_;
};

// The node merged into (the causing object: its ancestry closes the circle), then the node
// passed in, which is that node or one of its ancestors.
class ErrorMergingWithCircularReference
    : public detail::CatalogException<ErrorMergingWithCircularReference, InternalException> {
public:
    static constexpr char whatText[] = "Cannot merge two settings who has same ancestor.";
    ErrorMergingWithCircularReference(const ConstSettingsPtr& causingObject,
                                      const ConstSettingsPtr& objectInvolved);
    ~ErrorMergingWithCircularReference() override;

    const ConstSettingsPtr& getCausingObject() const;
    const ConstSettingsPtr& getObjectInvovled() const;

private:
    ConstSettingsPtr causingObject_;
    ConstSettingsPtr objectInvolved_;
};

}  // namespace exception
}  // namespace core
}  // namespace settings
