#include <settingscore/core/callouts/TOLVANFunctionInvoker.hpp>

#include <platform/hlu/hlu.h>
#include <settingscore/core/exception/MessageIds.hpp>

namespace settings {
namespace core {

namespace {

// Class-wide; a function-local static so that a static initialiser elsewhere may set it.
boost::function<void()>& loadConfigProxy() {
    static boost::function<void()> proxy;
    return proxy;
}

}  // namespace

TOLVANFunctionInvoker::TOLVANFunctionInvoker(const std::string& packageName,
                                             const std::string& functionName)
    : packageName_(packageName), functionName_(functionName) {}

std::string TOLVANFunctionInvoker::getFunctionName() const {
    return functionName_;
}

std::string TOLVANFunctionInvoker::getPackageName() const {
    return packageName_;
}

void TOLVANFunctionInvoker::setLoadConfigProxy(const boost::function<void()>& proxy) {
    loadConfigProxy() = proxy;
}

boost::function<void()> TOLVANFunctionInvoker::getLoadConfigProxy() {
    return loadConfigProxy();
}

void TOLVANFunctionInvoker::checkThreadToRun() const {
    if (hluIsSignalThread() == 0) {
        throw makeMessageException<TOLVAN::settings::core::TOLVANFuncMustBeInvokedByExecEngine>();
    }
}

bool TOLVANFunctionInvoker::operator==(const TOLVANFunctionInvoker& other) const {
    return packageName_ == other.packageName_ && functionName_ == other.functionName_;
}

void TOLVANFunctionInvoker::checkProxyAndThread(bool (*proxyIsSet)()) const {
    // A copy: the load-configuration proxy may replace itself while it runs.
    const boost::function<void()> loadConfig = loadConfigProxy();
    if (loadConfig && !proxyIsSet()) {
        loadConfig();
    }
    if (!proxyIsSet()) {
        throw makeMessageException<
            TOLVAN::settings::core::ExecEngineNotReadyForProcessingTFunction>();
    }
    checkThreadToRun();
}

}  // namespace core
}  // namespace settings
