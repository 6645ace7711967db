// The failures of validating a value against a key's definition (type, array size, range,
// choices, the key's validation function). All derive from ValidationException, which tells
// them apart by ValidationErrorCode and carries the node and a text.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/exception/detail/CatalogException.hpp>

#include <boost/any.hpp>

#include <string>

namespace settings {
namespace core {
namespace exception {

// The values are part of the interface; 4 is not used. Two classes share VoidOrUnsupportedType
// on purpose: for a caller both mean that the value's type cannot be stored in the key.
enum class ValidationErrorCode : int {
    ArraySizeOutOfRange = 0,      // DataArraySizeOutOfRange
    VoidOrUnsupportedType = 1,    // DefaultValidationFailedOnVoidType, UnsupportedType
    NotAChoiceOrNotInRange = 2,   // ValueIsNotOneOfTheChoicesAndNotInRange
    NotInRange = 3,               // ValueIsNotInRange
    TypeMismatch = 5,             // DataTypeNotMatch
    ValidationFunctionFailed = 6  // ExceptionFromValidationFunction
};

// Base of the validation failures; only its subclasses are raised. It keeps the `what` of its
// base, but has its own clone and rethrow, so that a copy sliced to this class still crosses
// an exception_ptr as itself.
class ValidationException : public InternalException {
public:
    ValidationException(const ValidationException&) = default;
    ~ValidationException() override;

    const ConstSettingsPtr& getCausingObject() const;
    ValidationErrorCode getErrorCode() const;
    const std::wstring& getErrorMsg() const;

    const boost::exception_detail::clone_base* clone() const override;
    void rethrow() const override;

protected:
    ValidationException(const ConstSettingsPtr& causingObject, const ValidationErrorCode& code,
                        const std::wstring& errorMsg);

private:
    ConstSettingsPtr causingObject_;
    ValidationErrorCode code_;
    std::wstring errorMsg_;
};

// The bounds first, then the size that was found.
class DataArraySizeOutOfRange
    : public detail::CatalogException<DataArraySizeOutOfRange, ValidationException> {
public:
    static constexpr char whatText[] = "The array size is out of range ";
    DataArraySizeOutOfRange(const ConstSettingsPtr& causingObject, unsigned minArraySize,
                            unsigned maxArraySize, unsigned actualArraySize);
    ~DataArraySizeOutOfRange() override;

    unsigned getActualArraySize() const;
    unsigned getMaxArraySize() const;
    unsigned getMinArraySize() const;

private:
    unsigned minArraySize_;
    unsigned maxArraySize_;
    unsigned actualArraySize_;
};

// The declared type name first, then the value's. The library's own type checks raise the
// message-id form of the same name; this class is for callers.
class DataTypeNotMatch : public detail::CatalogException<DataTypeNotMatch, ValidationException> {
public:
    static constexpr char whatText[] =
        "The type of the value passed in does not match the type in the setting definition.";
    DataTypeNotMatch(const ConstSettingsPtr& causingObject, const std::string& expectedTypeName,
                     const std::string& actualTypeName);
    ~DataTypeNotMatch() override;

    const std::string& getActualTypeName() const;
    const std::string& getExpectedTypeName() const;

private:
    std::string expectedTypeName_;
    std::string actualTypeName_;
};

class DefaultValidationFailedOnVoidType
    : public detail::CatalogException<DefaultValidationFailedOnVoidType, ValidationException> {
public:
    static constexpr char whatText[] = "The value passed in is void";
    explicit DefaultValidationFailedOnVoidType(const ConstSettingsPtr& causingObject);
    ~DefaultValidationFailedOnVoidType() override;
};

// A key's validation function refused the value or failed. The node is the key's parent, and
// getErrorMsg gives the text the function reported.
class ExceptionFromValidationFunction
    : public detail::CatalogException<ExceptionFromValidationFunction, ValidationException> {
public:
    static constexpr char whatText[] = "Exception thrown by the validation function.";
    ExceptionFromValidationFunction(const ConstSettingsPtr& parent, const std::string& keyName,
                                    const boost::any& value, const std::string& functionName,
                                    const std::string& packageName, const std::wstring& message);
    ~ExceptionFromValidationFunction() override;

    const std::string& getFunctionName() const;
    const std::string& getKeyName() const;
    const std::string& getPackageName() const;
    const boost::any& getValue() const;

private:
    std::string keyName_;
    boost::any value_;
    std::string functionName_;
    std::string packageName_;
};

class UnsupportedType : public detail::CatalogException<UnsupportedType, ValidationException> {
public:
    static constexpr char whatText[] =
        "The type of the value passed in is not on the supported list.";
    UnsupportedType(const ConstSettingsPtr& causingObject, const std::string& typeName);
    ~UnsupportedType() override;

    const std::string& getTypeName() const;

private:
    std::string typeName_;
};

// The value, then the bounds, all as display text.
class ValueIsNotInRange : public detail::CatalogException<ValueIsNotInRange, ValidationException> {
public:
    static constexpr char whatText[] = "The value passed in is not in the predefined range";
    ValueIsNotInRange(const ConstSettingsPtr& causingObject, const std::wstring& valueToSetStr,
                      const std::wstring& minValueStr, const std::wstring& maxValueStr);
    ~ValueIsNotInRange() override;

    const std::wstring& getMaxValueStr() const;
    const std::wstring& getMinValueStr() const;
    const std::wstring& getValueToSetStr() const;

private:
    std::wstring valueToSetStr_;
    std::wstring minValueStr_;
    std::wstring maxValueStr_;
};

// The value, the choices, then the bounds, all as display text.
class ValueIsNotOneOfTheChoicesAndNotInRange
    : public detail::CatalogException<ValueIsNotOneOfTheChoicesAndNotInRange, ValidationException> {
public:
    static constexpr char whatText[] =
        "The value passed in is not one of the predefined choices and/or it is not in the "
        "predefined range.";
    ValueIsNotOneOfTheChoicesAndNotInRange(const ConstSettingsPtr& causingObject,
                                           const std::wstring& valueToSetStr,
                                           const std::wstring& choicesStr,
                                           const std::wstring& minValueStr,
                                           const std::wstring& maxValueStr);
    ~ValueIsNotOneOfTheChoicesAndNotInRange() override;

    const std::wstring& getChoicesStr() const;
    const std::wstring& getMaxValueStr() const;
    const std::wstring& getMinValueStr() const;
    const std::wstring& getValueToSetStr() const;

private:
    std::wstring valueToSetStr_;
    std::wstring choicesStr_;
    std::wstring minValueStr_;
    std::wstring maxValueStr_;
};

}  // namespace exception
}  // namespace core
}  // namespace settings
