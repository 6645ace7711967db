#include <settingscore/core/callouts/TRunTimeDefault.hpp>

#include <settingscore/core/callouts/detail/FailureText.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/MessageIds.hpp>

namespace settings {
namespace core {

namespace {

TRunTimeDefault::ProxyFunction& runtimeProxyFname() {
    static TRunTimeDefault::ProxyFunction proxy;
    return proxy;
}

bool runtimeProxyIsSet() {
    return !runtimeProxyFname().empty();
}

}  // namespace

TRunTimeDefault::TRunTimeDefault(const std::string& packageName, const std::string& functionName)
    : TOLVANFunctionInvoker(packageName, functionName) {}

std::string TRunTimeDefault::getBelongingLevel() const {
    return belongingLevel_;
}

void TRunTimeDefault::setBelongingLevel(const std::string& level) {
    belongingLevel_ = level;
}

bool TRunTimeDefault::operator==(const TRunTimeDefault& other) const {
    return TOLVANFunctionInvoker::operator==(other) && belongingLevel_ == other.belongingLevel_;
}

void TRunTimeDefault::checkConditions() const {
    checkProxyAndThread(&runtimeProxyIsSet);
}

boost::any TRunTimeDefault::operator()() const {
    const std::string functionName = getFunctionName();
    const std::string packageName = getPackageName();
    boost::any result;
    try {
        checkConditions();
        const ProxyFunction proxy = runtimeProxyFname();
        proxy(packageName, functionName, &result);
    } catch (
        const MessageException<TOLVAN::settings::core::TOLVANFuncMustBeInvokedByExecEngine>& e) {
        throw exception::RunTimeFuncInvokingError(functionName, packageName,
                                                  detail::catalogText(e));
    } catch (
        const MessageException<TOLVAN::settings::core::ExecEngineNotReadyForProcessingTFunction>&
            e) {
        throw exception::RunTimeFuncInvokingError(functionName, packageName,
                                                  detail::catalogText(e));
    } catch (const hf::except::IException& e) {
        // RuntimeFuncErrorConvertingTvArrayToAny from a proxy arrives here.
        throw exception::RunTimeFuncInvokingError(functionName, packageName, detail::whatText(e));
    } catch (...) {
        throw exception::RunTimeFuncInvokingError(functionName, packageName,
                                                  detail::unknownFailureText());
    }
    return result;
}

void TRunTimeDefault::setTRunTimeProxyFname(const ProxyFunction& proxy) {
    runtimeProxyFname() = proxy;
}

TRunTimeDefault::ProxyFunction TRunTimeDefault::getTRunTimeProxyFname() {
    return runtimeProxyFname();
}

}  // namespace core
}  // namespace settings
