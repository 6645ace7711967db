// The failures of the tree's own structure: adding, finding and removing nodes and keys, the
// names they may have, and reading a product's settings files into the tree.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/exception/detail/CatalogException.hpp>
#include <settingscore/core/exception/detail/ExceptionShapes.hpp>

#include <string>

namespace settings {
namespace core {
namespace exception {

class CanNotAddKeyToRootException
    : public detail::CausingNodeException<CanNotAddKeyToRootException, SettingsPtr> {
public:
    static constexpr char whatText[] = "Can't add key to the Settings root";
    using CausingNodeException::CausingNodeException;
    ~CanNotAddKeyToRootException() override;
};

class CannotAddKeyToRoot : public detail::CatalogException<CannotAddKeyToRoot, InternalException> {
public:
    static constexpr char whatText[] = "Settings root cannot contain any setting";
    explicit CannotAddKeyToRoot(const std::string& inputName);
    ~CannotAddKeyToRoot() override;

    const std::string& getInputName() const;

private:
    std::string inputName_;
};

class CannotAddRemoveNodeUnderReadOnlyParent
    : public detail::CatalogException<CannotAddRemoveNodeUnderReadOnlyParent, InternalException> {
public:
    static constexpr char whatText[] =
        "The parent group object is read-only. Cannot add/remove node to/from it.";
    CannotAddRemoveNodeUnderReadOnlyParent(const ConstSettingsPtr& parentObject,
                                           const ConstSettingsPtr& childObject);
    ~CannotAddRemoveNodeUnderReadOnlyParent() override;

    const ConstSettingsPtr& getChildObject() const;
    const ConstSettingsPtr& getParentObject() const;

private:
    ConstSettingsPtr parentObject_;
    ConstSettingsPtr childObject_;
};

// The node to attach, then the parent asked for, which is that node or lies below it.
class CannotAttachNodeBelowItself
    : public detail::CatalogException<CannotAttachNodeBelowItself, InternalException> {
public:
    static constexpr char whatText[] =
        "A node cannot be attached below itself or below one of its own descendants.";
    CannotAttachNodeBelowItself(const ConstSettingsPtr& childObject,
                                const ConstSettingsPtr& parentObject);
    ~CannotAttachNodeBelowItself() override;

    const ConstSettingsPtr& getChildObject() const;
    const ConstSettingsPtr& getParentObject() const;

private:
    ConstSettingsPtr childObject_;
    ConstSettingsPtr parentObject_;
};

class ErrorAddingChildNodeOrKey
    : public detail::CatalogException<ErrorAddingChildNodeOrKey, InternalException> {
public:
    static constexpr char whatText[] =
        "The parent object contains a child with the same name already.";
    ErrorAddingChildNodeOrKey(const ConstSettingsPtr& objectInvolved,
                              const std::string& existingNodeKeyName);
    ~ErrorAddingChildNodeOrKey() override;

    const std::string& getExistingNodeKeyName() const;
    const ConstSettingsPtr& getObjectInvovled() const;

private:
    ConstSettingsPtr objectInvolved_;
    std::string existingNodeKeyName_;
};

// Raised at the root, where product names must differ by more than case: the name that was
// passed in comes first, the one already there second.
class ErrorAddingTopLevelNode
    : public detail::CatalogException<ErrorAddingTopLevelNode, InternalException> {
public:
    static constexpr char whatText[] =
        "The product name has already existed. Product name cannot only vary by case.";
    ErrorAddingTopLevelNode(const std::string& productNamePassedIn,
                            const std::string& existingProductName);
    ~ErrorAddingTopLevelNode() override;

    const std::string& getExistingProductName() const;
    const std::string& getProductNamePassedIn() const;

private:
    std::string productNamePassedIn_;
    std::string existingProductName_;
};

class ErrorReadingSettingsData
    : public detail::CatalogException<ErrorReadingSettingsData, InternalException> {
public:
    // Where the read failed. The values are part of the interface: 2 and 3 are not used, and
    // nothing may be renumbered.
    enum ErrorCode {
        XmlReaderCreationFailed = 0,     // the XML reader could not be created
        SaxServiceNotFound = 1,          // the SAX service could not be found
        ParseError = 4,                  // the parser failed at a known position
        SaxError = 5,                    // any other failure the SAX layer reported
        MergingIncludedFilesFailed = 6,  // merging the files that one file names failed
        ProductNodeLoadingFailed = 7,    // errors collected while a product node was loaded
    };

    static constexpr char whatText[] =
        "Error reading setting's value for various reasons, please refer to detailedInfo for "
        "more information.";
    ErrorReadingSettingsData(ErrorCode errorCode, const std::wstring& detailErrorMsg);
    ~ErrorReadingSettingsData() override;

    const std::wstring& getDetailErrorMsg() const;
    ErrorCode getErrorCode() const;

private:
    ErrorCode errorCode_;
    std::wstring detailErrorMsg_;
};

class InvalidNodePath : public detail::CatalogException<InvalidNodePath, InternalException> {
public:
    static constexpr char whatText[] =
        "The setting name (could be dot separated path) does not represent a valid setting";
    InvalidNodePath(const ConstSettingsPtr& objectInvolved, const std::string& invalidName);
    ~InvalidNodePath() override;

    const std::string& getInvalidName() const;
    const ConstSettingsPtr& getObjectInvovled() const;

private:
    ConstSettingsPtr objectInvolved_;
    std::string invalidName_;
};

class InvalidSettingOrGroupName
    : public detail::CatalogException<InvalidSettingOrGroupName, InternalException> {
public:
    static constexpr char whatText[] =
        "Setting or group name should be a valid TOLVAN variable name";
    explicit InvalidSettingOrGroupName(const std::string& inputNodeName);
    ~InvalidSettingOrGroupName() override;

    const std::string& getInputNodeName() const;

private:
    std::string inputNodeName_;
};

// A removal touches files at several levels and some of them are read-only: the levels the
// change needs, then the levels that can be written.
class NoFileWritePermissionOnMultipleLevels
    : public detail::CatalogException<NoFileWritePermissionOnMultipleLevels, InternalException> {
public:
    static constexpr char whatText[] =
        "Need to update multiple Settings file, but don't have write permission on some levels.";
    NoFileWritePermissionOnMultipleLevels(const ConstSettingsPtr& objectInvolved,
                                          const std::string& levelNeedToBeUpdated,
                                          const std::string& levelsHasWritenPermissionOn);
    ~NoFileWritePermissionOnMultipleLevels() override;

    const std::string& getLevelNeedToBeUpdated() const;
    const std::string& getLevelsHasWritenPermissionOn() const;
    const ConstSettingsPtr& getObjectInvovled() const;

private:
    ConstSettingsPtr objectInvolved_;
    std::string levelNeedToBeUpdated_;
    std::string levelsHasWritenPermissionOn_;
};

class NoSuchKey : public detail::NodeAndInputNameException<NoSuchKey> {
public:
    static constexpr char whatText[] = "The request setting does not exist.";
    using NodeAndInputNameException::NodeAndInputNameException;
    ~NoSuchKey() override;
};

class NoSuchNode : public detail::NodeAndInputNameException<NoSuchNode> {
public:
    static constexpr char whatText[] = "The sub Settings node does not exist.";
    using NodeAndInputNameException::NodeAndInputNameException;
    ~NoSuchNode() override;
};

class NotAKeyName : public detail::NodeAndInputNameException<NotAKeyName> {
public:
    static constexpr char whatText[] =
        "The input name is a sub node name under the parent node. It is not a settings name.";
    using NodeAndInputNameException::NodeAndInputNameException;
    ~NotAKeyName() override;
};

class NotANodeName : public detail::NodeAndInputNameException<NotANodeName> {
public:
    static constexpr char whatText[] =
        "The input name is a settings name under the parent node. It is not a sub node name.";
    using NodeAndInputNameException::NodeAndInputNameException;
    ~NotANodeName() override;
};

// Kept for callers; the tree itself raises ErrorAddingTopLevelNode. Same argument order as
// that class: the name passed in, then the one already there.
class ProductNodeAlreadyExisted
    : public detail::CatalogException<ProductNodeAlreadyExisted, InternalException> {
public:
    static constexpr char whatText[] =
        "Product node already existed. The product node name cannot only be different by case.";
    ProductNodeAlreadyExisted(const std::string& inputName, const std::string& existingName);
    ~ProductNodeAlreadyExisted() override;

    const std::string& getExistingName() const;
    const std::string& getInputName() const;

private:
    std::string inputName_;
    std::string existingName_;
};

// Kept for callers; the tree itself raises ErrorAddingChildNodeOrKey.
class SameNameChildAlreadyExisted
    : public detail::NodeAndInputNameException<SameNameChildAlreadyExisted> {
public:
    static constexpr char whatText[] = "Error add node, same name child has already existed.";
    using NodeAndInputNameException::NodeAndInputNameException;
    ~SameNameChildAlreadyExisted() override;
};

}  // namespace exception
}  // namespace core
}  // namespace settings
