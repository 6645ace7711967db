// The failures of calling out of the library: loading a library of functions, and invoking a
// key's validation function or run-time default function found by name in a package.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/exception/detail/CatalogException.hpp>
#include <settingscore/core/exception/detail/ExceptionShapes.hpp>

#include <string>
#include <typeinfo>

namespace settings {
namespace core {
namespace exception {

// The library's name, then the system's text of why it could not be loaded.
class ErrorLoadingLibrary
    : public detail::CatalogException<ErrorLoadingLibrary, InternalException> {
public:
    static constexpr char whatText[] =
        "Error loading the library, please refer to error message for reasons.";
    ErrorLoadingLibrary(const std::string& libName, const std::wstring& errorMsg);
    ~ErrorLoadingLibrary() override;

    const std::wstring& getErrorMsg() const;
    const std::string& getLibName() const;

private:
    std::string libName_;
    std::wstring errorMsg_;
};

class MultipleRuntimeFuncError : public detail::CausingNodeException<MultipleRuntimeFuncError> {
public:
    static constexpr char whatText[] =
        "There are multiple runtime function defined on this key. This is not allowed.";
    using CausingNodeException::CausingNodeException;
    ~MultipleRuntimeFuncError() override;
};

// Function name, package name, then the text of what went wrong.
class RunTimeFuncInvokingError
    : public detail::FunctionInvokingException<RunTimeFuncInvokingError> {
public:
    static constexpr char whatText[] =
        "Error invoking runtime function. Please refer to error message for detail.";
    using FunctionInvokingException::FunctionInvokingException;
    ~RunTimeFuncInvokingError() override;
};

// The function's result could not be turned into a value of a supported type; the type
// that was met is reported. type_info objects live as long as the program, so a pointer to
// it stays valid in every copy.
class RuntimeFuncErrorConvertingTvArrayToAny
    : public detail::CatalogException<RuntimeFuncErrorConvertingTvArrayToAny, InternalException> {
public:
    static constexpr char whatText[] =
        "The runtime function returns an tvArray that is not convertible to a supported type.";
    RuntimeFuncErrorConvertingTvArrayToAny(const std::string& functionName,
                                           const std::string& packageName,
                                           const std::type_info& typeInfo);
    ~RuntimeFuncErrorConvertingTvArrayToAny() override;

    const std::string& getFunctionName() const;
    const std::string& getPackageName() const;
    const std::type_info& getTypeInfo() const;

private:
    std::string functionName_;
    std::string packageName_;
    const std::type_info* typeInfo_;
};

// Function name, package name, then the text of what went wrong.
class ValidationFunctionInvokingError
    : public detail::FunctionInvokingException<ValidationFunctionInvokingError> {
public:
    static constexpr char whatText[] =
        "Error invoking validation function. Please refer to error message for detail.";
    using FunctionInvokingException::FunctionInvokingException;
    ~ValidationFunctionInvokingError() override;
};

}  // namespace exception
}  // namespace core
}  // namespace settings
