#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <platform/hf/i18n/Conversion.hpp>

namespace settings {
namespace core {
namespace exception {

namespace {

// The classes whose text is fixed report that same text as their error message.
std::wstring fixedErrorMsg(const char* whatText) {
    return hf::i18n::codecvt_ascii_to_ustring(whatText);
}

}  // namespace

ValidationException::ValidationException(const ConstSettingsPtr& causingObject,
                                         const ValidationErrorCode& code,
                                         const std::wstring& errorMsg)
    : causingObject_(causingObject), code_(code), errorMsg_(errorMsg) {}
ValidationException::~ValidationException() = default;
const ConstSettingsPtr& ValidationException::getCausingObject() const {
    return causingObject_;
}
ValidationErrorCode ValidationException::getErrorCode() const {
    return code_;
}
const std::wstring& ValidationException::getErrorMsg() const {
    return errorMsg_;
}

const boost::exception_detail::clone_base* ValidationException::clone() const {
    return new ValidationException(*this);
}
void ValidationException::rethrow() const {
    throw *this;
}

DataArraySizeOutOfRange::DataArraySizeOutOfRange(const ConstSettingsPtr& causingObject,
                                                 unsigned minArraySize, unsigned maxArraySize,
                                                 unsigned actualArraySize)
    : CatalogException(causingObject, ValidationErrorCode::ArraySizeOutOfRange,
                       fixedErrorMsg(whatText)),
      minArraySize_(minArraySize),
      maxArraySize_(maxArraySize),
      actualArraySize_(actualArraySize) {}
DataArraySizeOutOfRange::~DataArraySizeOutOfRange() = default;
unsigned DataArraySizeOutOfRange::getActualArraySize() const {
    return actualArraySize_;
}
unsigned DataArraySizeOutOfRange::getMaxArraySize() const {
    return maxArraySize_;
}
unsigned DataArraySizeOutOfRange::getMinArraySize() const {
    return minArraySize_;
}

DataTypeNotMatch::DataTypeNotMatch(const ConstSettingsPtr& causingObject,
                                   const std::string& expectedTypeName,
                                   const std::string& actualTypeName)
    : CatalogException(causingObject, ValidationErrorCode::TypeMismatch, fixedErrorMsg(whatText)),
      expectedTypeName_(expectedTypeName),
      actualTypeName_(actualTypeName) {}
DataTypeNotMatch::~DataTypeNotMatch() = default;
const std::string& DataTypeNotMatch::getActualTypeName() const {
    return actualTypeName_;
}
const std::string& DataTypeNotMatch::getExpectedTypeName() const {
    return expectedTypeName_;
}

DefaultValidationFailedOnVoidType::DefaultValidationFailedOnVoidType(
    const ConstSettingsPtr& causingObject)
    : CatalogException(causingObject, ValidationErrorCode::VoidOrUnsupportedType,
                       fixedErrorMsg(whatText)) {}
DefaultValidationFailedOnVoidType::~DefaultValidationFailedOnVoidType() = default;

ExceptionFromValidationFunction::ExceptionFromValidationFunction(
    const ConstSettingsPtr& parent, const std::string& keyName, const boost::any& value,
    const std::string& functionName, const std::string& packageName, const std::wstring& message)
    : CatalogException(parent, ValidationErrorCode::ValidationFunctionFailed, message),
      keyName_(keyName),
      value_(value),
      functionName_(functionName),
      packageName_(packageName) {}
ExceptionFromValidationFunction::~ExceptionFromValidationFunction() = default;
const std::string& ExceptionFromValidationFunction::getFunctionName() const {
    return functionName_;
}
const std::string& ExceptionFromValidationFunction::getKeyName() const {
    return keyName_;
}
const std::string& ExceptionFromValidationFunction::getPackageName() const {
    return packageName_;
}
const boost::any& ExceptionFromValidationFunction::getValue() const {
    return value_;
}

UnsupportedType::UnsupportedType(const ConstSettingsPtr& causingObject, const std::string& typeName)
    : CatalogException(causingObject, ValidationErrorCode::VoidOrUnsupportedType,
                       fixedErrorMsg(whatText)),
      typeName_(typeName) {}
UnsupportedType::~UnsupportedType() = default;
const std::string& UnsupportedType::getTypeName() const {
    return typeName_;
}

ValueIsNotInRange::ValueIsNotInRange(const ConstSettingsPtr& causingObject,
                                     const std::wstring& valueToSetStr,
                                     const std::wstring& minValueStr,
                                     const std::wstring& maxValueStr)
    : CatalogException(causingObject, ValidationErrorCode::NotInRange, fixedErrorMsg(whatText)),
      valueToSetStr_(valueToSetStr),
      minValueStr_(minValueStr),
      maxValueStr_(maxValueStr) {}
ValueIsNotInRange::~ValueIsNotInRange() = default;
const std::wstring& ValueIsNotInRange::getMaxValueStr() const {
    return maxValueStr_;
}
const std::wstring& ValueIsNotInRange::getMinValueStr() const {
    return minValueStr_;
}
const std::wstring& ValueIsNotInRange::getValueToSetStr() const {
    return valueToSetStr_;
}

ValueIsNotOneOfTheChoicesAndNotInRange::ValueIsNotOneOfTheChoicesAndNotInRange(
    const ConstSettingsPtr& causingObject, const std::wstring& valueToSetStr,
    const std::wstring& choicesStr, const std::wstring& minValueStr,
    const std::wstring& maxValueStr)
    : CatalogException(causingObject, ValidationErrorCode::NotAChoiceOrNotInRange,
                       fixedErrorMsg(whatText)),
      valueToSetStr_(valueToSetStr),
      choicesStr_(choicesStr),
      minValueStr_(minValueStr),
      maxValueStr_(maxValueStr) {}
ValueIsNotOneOfTheChoicesAndNotInRange::~ValueIsNotOneOfTheChoicesAndNotInRange() = default;
const std::wstring& ValueIsNotOneOfTheChoicesAndNotInRange::getChoicesStr() const {
    return choicesStr_;
}
const std::wstring& ValueIsNotOneOfTheChoicesAndNotInRange::getMaxValueStr() const {
    return maxValueStr_;
}
const std::wstring& ValueIsNotOneOfTheChoicesAndNotInRange::getMinValueStr() const {
    return minValueStr_;
}
const std::wstring& ValueIsNotOneOfTheChoicesAndNotInRange::getValueToSetStr() const {
    return valueToSetStr_;
}

}  // namespace exception
}  // namespace core
}  // namespace settings
