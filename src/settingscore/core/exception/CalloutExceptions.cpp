#include <settingscore/core/exception/CalloutExceptions.hpp>

namespace settings {
namespace core {
namespace exception {

ErrorLoadingLibrary::ErrorLoadingLibrary(const std::string& libName, const std::wstring& errorMsg)
    : libName_(libName), errorMsg_(errorMsg) {}
ErrorLoadingLibrary::~ErrorLoadingLibrary() = default;
const std::wstring& ErrorLoadingLibrary::getErrorMsg() const {
    return errorMsg_;
}
const std::string& ErrorLoadingLibrary::getLibName() const {
    return libName_;
}

MultipleRuntimeFuncError::~MultipleRuntimeFuncError() = default;

RunTimeFuncInvokingError::~RunTimeFuncInvokingError() = default;

RuntimeFuncErrorConvertingTvArrayToAny::RuntimeFuncErrorConvertingTvArrayToAny(
    const std::string& functionName, const std::string& packageName, const std::type_info& typeInfo)
    : functionName_(functionName), packageName_(packageName), typeInfo_(&typeInfo) {}
RuntimeFuncErrorConvertingTvArrayToAny::~RuntimeFuncErrorConvertingTvArrayToAny() = default;
const std::string& RuntimeFuncErrorConvertingTvArrayToAny::getFunctionName() const {
    return functionName_;
}
const std::string& RuntimeFuncErrorConvertingTvArrayToAny::getPackageName() const {
    return packageName_;
}
const std::type_info& RuntimeFuncErrorConvertingTvArrayToAny::getTypeInfo() const {
    return *typeInfo_;
}

ValidationFunctionInvokingError::~ValidationFunctionInvokingError() = default;

}  // namespace exception
}  // namespace core
}  // namespace settings
