#include <settingscore/core/callouts/TValidator.hpp>

#include <settingscore/core/callouts/detail/FailureText.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>

namespace settings {
namespace core {

namespace {

TValidator::ProxyFunction& valProxyFuncName() {
    static TValidator::ProxyFunction proxy;
    return proxy;
}

bool valProxyIsSet() {
    return !valProxyFuncName().empty();
}

}  // namespace

TValidator::TValidator(const std::string& packageName, const std::string& functionName)
    : TOLVANFunctionInvoker(packageName, functionName) {}

bool TValidator::operator==(const TValidator& other) const {
    return TOLVANFunctionInvoker::operator==(other);
}

void TValidator::checkConditions() const {
    checkProxyAndThread(&valProxyIsSet);
}

void TValidator::invokeValidationFunction(const boost::shared_ptr<const Settings>& parent,
                                          const std::string& keyName,
                                          const boost::any& value) const {
    const std::string functionName = getFunctionName();
    const std::string packageName = getPackageName();
    try {
        checkConditions();
        // A copy, so that the proxy may be replaced while it runs.
        const ProxyFunction proxy = valProxyFuncName();
        proxy(packageName, functionName, parent, keyName, value);
    } catch (
        const MessageException<TOLVAN::settings::core::TOLVANFuncMustBeInvokedByExecEngine>& e) {
        throw exception::ValidationFunctionInvokingError(functionName, packageName,
                                                         detail::catalogText(e));
    } catch (
        const MessageException<TOLVAN::settings::core::ExecEngineNotReadyForProcessingTFunction>&
            e) {
        throw exception::ValidationFunctionInvokingError(functionName, packageName,
                                                         detail::catalogText(e));
    } catch (const hf::except::IException& e) {
        throw exception::ExceptionFromValidationFunction(parent, keyName, value, functionName,
                                                         packageName, detail::whatText(e));
    } catch (...) {
        throw exception::ValidationFunctionInvokingError(functionName, packageName,
                                                         detail::unknownFailureText());
    }
}

void TValidator::setTOLVANValFuncInvokingProxyName(const ProxyFunction& proxy) {
    valProxyFuncName() = proxy;
}

TValidator::ProxyFunction TValidator::getTOLVANValFuncInvokingProxyName() {
    return valProxyFuncName();
}

}  // namespace core
}  // namespace settings
