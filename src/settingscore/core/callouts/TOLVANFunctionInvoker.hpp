// TOLVANFunctionInvoker: the base of validators and run-time defaults written in the host's
// language. Holds the two names, the class-wide load-configuration proxy through which the
// host starts its language lazily, and the test that a call runs on the host's signal thread.
#pragma once

#include <boost/function.hpp>

#include <string>

namespace settings {
namespace core {

class TOLVANFunctionInvoker {
public:
    TOLVANFunctionInvoker(const std::string& packageName, const std::string& functionName);
    TOLVANFunctionInvoker(const TOLVANFunctionInvoker&) = default;
    TOLVANFunctionInvoker& operator=(const TOLVANFunctionInvoker&) = default;

    std::string getFunctionName() const;
    std::string getPackageName() const;

    // Class-wide, without a lock: the host installs its proxies at start-up, before any call.
    static void setLoadConfigProxy(const boost::function<void()>& proxy);
    static boost::function<void()> getLoadConfigProxy();

    // Throws: MessageException<TOLVANFuncMustBeInvokedByExecEngine> off the signal thread.
    void checkThreadToRun() const;

protected:
    // Same package and function names.
    bool operator==(const TOLVANFunctionInvoker& other) const;

    // The preconditions of a call through the subclass's proxy: when that proxy is missing
    // and a load-configuration proxy is set, the latter runs (it is expected to install the
    // former); then the proxy must be there, and only then is the thread tested, so that a
    // call from a wrong thread can still start the language.
    // Throws: MessageException<ExecEngineNotReadyForProcessingTFunction>, then as
    // checkThreadToRun.
    void checkProxyAndThread(bool (*proxyIsSet)()) const;

private:
    std::string packageName_;
    std::string functionName_;
};

}  // namespace core
}  // namespace settings
