// TValidator: a validation function in the host's language, reached through a proxy that the
// host installs.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/callouts/TOLVANFunctionInvoker.hpp>

#include <boost/any.hpp>
#include <boost/function.hpp>

#include <string>

namespace settings {
namespace core {

class TValidator : public TOLVANFunctionInvoker {
public:
    // (packageName, functionName, parent, keyName, value); refuses by throwing.
    using ProxyFunction =
        boost::function<void(const std::string& packageName, const std::string& functionName,
                             const boost::shared_ptr<const Settings>& parent,
                             const std::string& keyName, const boost::any& value)>;

    TValidator(const std::string& packageName, const std::string& functionName);

    // Same package and function names.
    bool operator==(const TValidator& other) const;
    bool operator!=(const TValidator& other) const { return !(*this == other); }

    // Starts the host's language through the load-configuration proxy when this class's proxy
    // is missing, then tests that the proxy is there and that this is the signal thread.
    // Throws: MessageException<ExecEngineNotReadyForProcessingTFunction>,
    // MessageException<TOLVANFuncMustBeInvokedByExecEngine>.
    void checkConditions() const;

    // Throws: exception::ValidationFunctionInvokingError (conditions not met, or the proxy
    // threw something outside hf::except::IException: "Unknown");
    // exception::ExceptionFromValidationFunction (the proxy threw an hf::except::IException).
    void invokeValidationFunction(const boost::shared_ptr<const Settings>& parent,
                                  const std::string& keyName, const boost::any& value) const;

    // Class-wide, without a lock.
    static void setTOLVANValFuncInvokingProxyName(const ProxyFunction& proxy);
    static ProxyFunction getTOLVANValFuncInvokingProxyName();
};

}  // namespace core
}  // namespace settings
