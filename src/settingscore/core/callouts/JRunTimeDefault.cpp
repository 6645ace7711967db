#include <settingscore/core/callouts/JRunTimeDefault.hpp>

namespace settings {
namespace core {

namespace {

JRunTimeDefault::ProxyFunction& runtimeDefaultProxy() {
    static JRunTimeDefault::ProxyFunction proxy;
    return proxy;
}

}  // namespace

JRunTimeDefault::JRunTimeDefault(const std::string& packageName, const std::string& functionName)
    : packageName_(packageName), functionName_(functionName) {}

std::string JRunTimeDefault::getFunctionName() const {
    return functionName_;
}

std::string JRunTimeDefault::getPackageName() const {
    return packageName_;
}

std::string JRunTimeDefault::getBelongingLevel() const {
    return belongingLevel_;
}

void JRunTimeDefault::setBelongingLevel(const std::string& level) {
    belongingLevel_ = level;
}

bool JRunTimeDefault::operator==(const JRunTimeDefault& other) const {
    return packageName_ == other.packageName_ && functionName_ == other.functionName_ &&
           belongingLevel_ == other.belongingLevel_;
}

boost::any JRunTimeDefault::operator()() const {
    // Copy first: calling an empty boost::function throws bad_function_call, as wanted.
    const ProxyFunction proxy = runtimeDefaultProxy();
    return proxy(packageName_, functionName_);
}

void JRunTimeDefault::setJRuntimeDefaultProxy(const ProxyFunction& proxy) {
    runtimeDefaultProxy() = proxy;
}

}  // namespace core
}  // namespace settings
