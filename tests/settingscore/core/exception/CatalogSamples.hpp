// One sample per class of the failure catalogue: the exact `what` text, the constructor's
// arguments for a seed, and the accessors that must hand those arguments back, in constructor
// order. The typed tests run every check over all samples.
#pragma once

#include "ExceptionTestSupport.hpp"

#include <settingscore/core/exception/Exceptions.hpp>

#include <boost/any.hpp>

#include <functional>
#include <tuple>
#include <typeindex>
#include <vector>

namespace exceptiontest {

using namespace settings::core;
using namespace settings::core::exception;

template <class E>
struct Sample;

template <class E>
struct Tag {};

// By default a class is built from its arguments in order, hands each back through one
// accessor, and, as a validation failure, carries its fixed text as its message. Overloads for
// a class's Tag below say otherwise.
template <class E, class In>
E build(Tag<E>, const In& in) {
    return std::make_from_tuple<E>(in);
}
template <class E, class In>
In handedBack(Tag<E>, const In& in) {
    return in;
}
template <class E, class In>
std::wstring validationMessage(Tag<E>, const In&) {
    return ascii(Sample<E>::what);
}

// The fields of E read through `Get...`, and what they must equal for given arguments.
// Validation failures (Code >= 0) also carry a code and a message as a ValidationException:
// both are appended.
template <class E, int Code, auto... Get>
struct Fields {
    static constexpr bool validation = Code >= 0;
    template <class In>
    static E make(const In& in) {
        return build(Tag<E>(), in);
    }
    static auto fields(const E& e) {
        auto own = std::make_tuple(std::invoke(Get, e)...);
        if constexpr (validation) {
            return std::tuple_cat(
                own, std::make_tuple(static_cast<int>(e.getErrorCode()), e.getErrorMsg()));
        } else {
            return own;
        }
    }
    template <class In>
    static auto expected(const In& in) {
        auto own = handedBack(Tag<E>(), in);
        if constexpr (validation) {
            return std::tuple_cat(own, std::make_tuple(Code, validationMessage(Tag<E>(), in)));
        } else {
            return own;
        }
    }
};

// SAMPLE(Class, what text, (arguments for seed s), &E::accessor...); VALIDATION_SAMPLE also
// takes the class's validation code.
#define VALIDATION_SAMPLE(Cls, Code, Text, Inputs, ...)                               \
    namespace sample_##Cls {                                                          \
        using E = Cls;                                                                \
        using Base = Fields<E, Code, __VA_ARGS__>;                                    \
    }                                                                                 \
    template <>                                                                       \
    struct Sample<Cls> : sample_##Cls::Base {                                         \
        using E = Cls;                                                                \
        static constexpr char what[] = Text;                                          \
        static auto inputs([[maybe_unused]] int s) { return std::make_tuple Inputs; } \
    }
#define SAMPLE(Cls, Text, Inputs, ...) VALIDATION_SAMPLE(Cls, -1, Text, Inputs, __VA_ARGS__)

// ---- the tree's structure

SAMPLE(CanNotAddKeyToRootException, "Can't add key to the Settings root", (mutableNode()),
       &E::getCausingObject);
SAMPLE(CannotAddKeyToRoot, "Settings root cannot contain any setting", (text(s, 0)),
       &E::getInputName);
SAMPLE(CannotAddRemoveNodeUnderReadOnlyParent,
       "The parent group object is read-only. Cannot add/remove node to/from it.", (node(), node()),
       &E::getParentObject, &E::getChildObject);
SAMPLE(ErrorAddingChildNodeOrKey, "The parent object contains a child with the same name already.",
       (node(), text(s, 1)), &E::getObjectInvovled, &E::getExistingNodeKeyName);
SAMPLE(ErrorAddingTopLevelNode,
       "The product name has already existed. Product name cannot only vary by case.",
       (text(s, 0), text(s, 1)), &E::getProductNamePassedIn, &E::getExistingProductName);
SAMPLE(ErrorReadingSettingsData,
       "Error reading setting's value for various reasons, please refer to detailedInfo for more "
       "information.",
       (s == 1 ? E::ParseError : E::ProductNodeLoadingFailed, wtext(s, 1)), &E::getErrorCode,
       &E::getDetailErrorMsg);
SAMPLE(InvalidNodePath,
       "The setting name (could be dot separated path) does not represent a valid setting",
       (node(), text(s, 1)), &E::getObjectInvovled, &E::getInvalidName);
SAMPLE(InvalidSettingOrGroupName, "Setting or group name should be a valid TOLVAN variable name",
       (text(s, 0)), &E::getInputNodeName);
SAMPLE(NoFileWritePermissionOnMultipleLevels,
       "Need to update multiple Settings file, but don't have write permission on some levels.",
       (node(), text(s, 1), text(s, 2)), &E::getObjectInvovled, &E::getLevelNeedToBeUpdated,
       &E::getLevelsHasWritenPermissionOn);
SAMPLE(NoSuchKey, "The request setting does not exist.", (node(), text(s, 1)),
       &E::getObjectInvovled, &E::getInputName);
SAMPLE(NoSuchNode, "The sub Settings node does not exist.", (node(), text(s, 1)),
       &E::getObjectInvovled, &E::getInputName);
SAMPLE(NotAKeyName,
       "The input name is a sub node name under the parent node. It is not a settings name.",
       (node(), text(s, 1)), &E::getObjectInvovled, &E::getInputName);
SAMPLE(NotANodeName,
       "The input name is a settings name under the parent node. It is not a sub node name.",
       (node(), text(s, 1)), &E::getObjectInvovled, &E::getInputName);
SAMPLE(SameNameChildAlreadyExisted, "Error add node, same name child has already existed.",
       (node(), text(s, 1)), &E::getObjectInvovled, &E::getInputName);
SAMPLE(ProductNodeAlreadyExisted,
       "Product node already existed. The product node name cannot only be different by case.",
       (text(s, 0), text(s, 1)), &E::getInputName, &E::getExistingName);

// ---- validation

VALIDATION_SAMPLE(DataArraySizeOutOfRange, 0, "The array size is out of range ",
                  (node(), 1u + s, 10u + s, 100u + s), &E::getCausingObject, &E::getMinArraySize,
                  &E::getMaxArraySize, &E::getActualArraySize);
VALIDATION_SAMPLE(
    DataTypeNotMatch, 5,
    "The type of the value passed in does not match the type in the setting definition.",
    (node(), text(s, 1), text(s, 2)), &E::getCausingObject, &E::getExpectedTypeName,
    &E::getActualTypeName);
VALIDATION_SAMPLE(DefaultValidationFailedOnVoidType, 1, "The value passed in is void", (node()),
                  &E::getCausingObject);
VALIDATION_SAMPLE(UnsupportedType, 1,
                  "The type of the value passed in is not on the supported list.",
                  (node(), text(s, 1)), &E::getCausingObject, &E::getTypeName);
VALIDATION_SAMPLE(ValueIsNotInRange, 3, "The value passed in is not in the predefined range",
                  (node(), wtext(s, 1), wtext(s, 2), wtext(s, 3)), &E::getCausingObject,
                  &E::getValueToSetStr, &E::getMinValueStr, &E::getMaxValueStr);
VALIDATION_SAMPLE(ValueIsNotOneOfTheChoicesAndNotInRange, 2,
                  "The value passed in is not one of the predefined choices and/or it is not in "
                  "the predefined range.",
                  (node(), wtext(s, 1), wtext(s, 2), wtext(s, 3), wtext(s, 4)),
                  &E::getCausingObject, &E::getValueToSetStr, &E::getChoicesStr, &E::getMinValueStr,
                  &E::getMaxValueStr);
// The validator's value goes in as an int and is read back by content; the text is the
// validator's (the last argument), not the fixed one.
inline int valueAsInt(const ExceptionFromValidationFunction& e) {
    return boost::any_cast<int>(e.getValue());
}
VALIDATION_SAMPLE(ExceptionFromValidationFunction, 6,
                  "Exception thrown by the validation function.",
                  (node(), text(s, 1), 40 + s, text(s, 3), text(s, 4), wtext(s, 5)),
                  &E::getCausingObject, &E::getKeyName, &valueAsInt, &E::getFunctionName,
                  &E::getPackageName);
template <class In>
auto handedBack(Tag<ExceptionFromValidationFunction>, const In& in) {
    const auto& [object, key, value, function, package, message] = in;
    return std::make_tuple(object, key, value, function, package);
}
template <class In>
std::wstring validationMessage(Tag<ExceptionFromValidationFunction>, const In& in) {
    return std::get<5>(in);
}

// ---- values, levels, saving, migration

template <>
struct Sample<AttemptToGetValueFromVoid> : Fields<AttemptToGetValueFromVoid, -1> {
    static constexpr char what[] = "Attempt to retrieve value from a void boost::any variable.";
    static auto inputs(int) { return std::make_tuple(); }
};
SAMPLE(CannotChangeValueForReadOnlySetting, "The setting is read-only, cannot change its value.",
       (node()), &E::getCausingObject);
SAMPLE(CantModifyValuesOnReadOnlyLevel, "The Settings file on the give level is read-only",
       (node(), text(s, 1)), &E::getObjectInvovled, &E::getLevelToModify);
SAMPLE(UnSupportedLevel, "The level specified is not a supported level.",
       (node(), text(s, 1), text(s, 2)), &E::getObjectInvovled, &E::getInputLevel,
       &E::getSupportedLevelList);
SAMPLE(ValueNotDefinedForGivenLevel, "No value is not defined for this setting on the given level",
       (node(), text(s, 1)), &E::getObjectInvovled, &E::getInputLevel);
SAMPLE(ErrorSaveSettingsDueToFileIOError, "Error open a file stream for write.",
       (node(), wtext(s, 1)), &E::getCausingObject, &E::getFileName);
SAMPLE(ErrorWriteToTempSettingsFile,
       "Cannot open a temp file to save the Settings object. It could be due to out of file "
       "handle or other reasons.",
       (node(), wtext(s, 1), 20 + s, wtext(s, 3)), &E::getCausingObject, &E::getCausingFilePath,
       &E::getErrorNum, &E::getReasonStr);
// The level is only forward-declared: a reference to raw storage stands in for it, which the
// class must not look at. No accessor hands back the level or the fifth argument.
inline const SettingsLevel& levelStandIn() {
    alignas(std::max_align_t) static unsigned char storage[64];
    return *reinterpret_cast<const SettingsLevel*>(storage);
}
SAMPLE(NoFileWritePermission,
       "Cannot write to the level specified. You may not have write permission on that "
       "level.",
       (mutableNode(), std::cref(levelStandIn()), wtext(s, 2), wtext(s, 3), wtext(s, 4),
        text(s, 5)),
       &E::getCausingObject, &E::getCausingFilePath, &E::getAdditionalInfo, &E::getLevelName);
template <class In>
auto handedBack(Tag<NoFileWritePermission>, const In& in) {
    return std::make_tuple(std::get<0>(in), std::get<2>(in), std::get<3>(in), std::get<5>(in));
}
SAMPLE(ErrorMigratePrefsBetweenReleases,
       "Error copying the files from the previous release prefdir to the current release prefdir.",
       (text(s, 0), text(s, 1)), &E::getPrevFullRelTag, &E::getCurrFullRelTag);
SAMPLE(ErrorMigrateSettingsBetweenReleases,
       "Error migrating settings from previous release to the current release.",
       (wtext(s, 0), wtext(s, 1)), &E::getSrcRelease, &E::getDestRelease);

// ---- export, import, merge

SAMPLE(CannotExportSettingsRoot, "Users can only export product node or sub product node.",
       (node()), &E::getObjectInvovled);
SAMPLE(CannotExportStandaloneSettings, "Users can only export settings node on the settings tree.",
       (node()), &E::getObjectInvovled);
SAMPLE(ErrorExportMultipleNodesBelongsToDiffProducts,
       "The exported node belongs to the different product.", (text(s, 0), text(s, 1)),
       &E::getProduct1Name, &E::getProduct2Name);
// Seed 1 takes the constructor without a node (import), seed 2 the one with (export).
SAMPLE(ErrorExportOrImportSettingsUsingRelativePath,
       "The Settings import or export function can only take full path",
       (s == 1 ? ConstSettingsPtr() : node(), wtext(s, 1)), &E::getObjectInvovled,
       &E::getRelativePath);
template <class In>
auto build(Tag<ErrorExportOrImportSettingsUsingRelativePath>, const In& in) {
    using E = ErrorExportOrImportSettingsUsingRelativePath;
    return std::get<0>(in) ? E(std::get<0>(in), std::get<1>(in)) : E(std::get<1>(in));
}
SAMPLE(ErrorCreateFactoryFileFromATreeNode,
       "Cannot create a factory file from a settings node on the Settings tree. Please "
       "create/edit factory file with a standalone node.",
       (node()), &E::getObjectInvovled);
SAMPLE(CannotMergeWithSettingsRoot,
       "Users can only  merge settings with product node or sub-product node. Users cannot merge "
       "settings directly with Settings root.",
       (node()), &E::getObjectInvovled);
// The node involved is the second argument; the first is handed back by no accessor.
SAMPLE(CanOnlyMergeTreeNodeWithStandaloneNode,
       "Cannot only merge a node on the tree with a standalone node.", (node(), node()),
       &E::getObjectInvovled);
template <class In>
auto handedBack(Tag<CanOnlyMergeTreeNodeWithStandaloneNode>, const In& in) {
    return std::make_tuple(std::get<1>(in));
}
SAMPLE(ErrorMergingNodesWithDiffAttr,
       "The nodes should be the same, but they have different attributes' value. Cannot merge "
       "them.",
       (node(), node(), wtext(s, 2)), &E::getDesObject, &E::getSrcObject, &E::getDiffAttrNameList);
SAMPLE(ErrorMergingWithCircularReference, "Cannot merge two settings who has same ancestor.",
       (node(), node()), &E::getCausingObject, &E::getObjectInvovled);

// ---- callouts

SAMPLE(ErrorLoadingLibrary, "Error loading the library, please refer to error message for reasons.",
       (text(s, 0), wtext(s, 1)), &E::getLibName, &E::getErrorMsg);
SAMPLE(MultipleRuntimeFuncError,
       "There are multiple runtime function defined on this key. This is not allowed.", (node()),
       &E::getCausingObject);
SAMPLE(RunTimeFuncInvokingError,
       "Error invoking runtime function. Please refer to error message for detail.",
       (text(s, 0), text(s, 1), wtext(s, 2)), &E::getFunctionName, &E::getPackageName,
       &E::getErrorMsg);
SAMPLE(ValidationFunctionInvokingError,
       "Error invoking validation function. Please refer to error message for detail.",
       (text(s, 0), text(s, 1), wtext(s, 2)), &E::getFunctionName, &E::getPackageName,
       &E::getErrorMsg);
// The type goes in as a type_info and is compared as a type_index.
inline std::type_index typeOf(const RuntimeFuncErrorConvertingTvArrayToAny& e) {
    return e.getTypeInfo();
}
SAMPLE(RuntimeFuncErrorConvertingTvArrayToAny,
       "The runtime function returns an tvArray that is not convertible to a supported type.",
       (text(s, 0), text(s, 1), std::cref(s == 1 ? typeid(double) : typeid(std::vector<int>))),
       &E::getFunctionName, &E::getPackageName, &typeOf);
template <class In>
auto handedBack(Tag<RuntimeFuncErrorConvertingTvArrayToAny>, const In& in) {
    return std::make_tuple(std::get<0>(in), std::get<1>(in), std::type_index(std::get<2>(in)));
}

#undef SAMPLE
#undef VALIDATION_SAMPLE

// Every class of the catalogue except ValidationException, which cannot be built on its own
// and is tested as a sliced copy.
using CatalogClasses = ::testing::Types<
    CanNotAddKeyToRootException, CannotAddKeyToRoot, CannotAddRemoveNodeUnderReadOnlyParent,
    ErrorAddingChildNodeOrKey, ErrorAddingTopLevelNode, ErrorReadingSettingsData, InvalidNodePath,
    InvalidSettingOrGroupName, NoFileWritePermissionOnMultipleLevels, NoSuchKey, NoSuchNode,
    NotAKeyName, NotANodeName, ProductNodeAlreadyExisted, SameNameChildAlreadyExisted,
    DataArraySizeOutOfRange, DataTypeNotMatch, DefaultValidationFailedOnVoidType,
    ExceptionFromValidationFunction, UnsupportedType, ValueIsNotInRange,
    ValueIsNotOneOfTheChoicesAndNotInRange, AttemptToGetValueFromVoid,
    CannotChangeValueForReadOnlySetting, CantModifyValuesOnReadOnlyLevel, UnSupportedLevel,
    ValueNotDefinedForGivenLevel, ErrorSaveSettingsDueToFileIOError, ErrorWriteToTempSettingsFile,
    NoFileWritePermission, ErrorMigratePrefsBetweenReleases, ErrorMigrateSettingsBetweenReleases,
    CannotExportSettingsRoot, CannotExportStandaloneSettings,
    ErrorExportMultipleNodesBelongsToDiffProducts, ErrorExportOrImportSettingsUsingRelativePath,
    ErrorCreateFactoryFileFromATreeNode, CannotMergeWithSettingsRoot,
    CanOnlyMergeTreeNodeWithStandaloneNode, ErrorMergingNodesWithDiffAttr,
    ErrorMergingWithCircularReference, ErrorLoadingLibrary, MultipleRuntimeFuncError,
    RunTimeFuncInvokingError, RuntimeFuncErrorConvertingTvArrayToAny,
    ValidationFunctionInvokingError>;

}  // namespace exceptiontest
