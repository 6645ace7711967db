// Lock: the class-wide recursive mutex below, taken after the root mutex when a validation
// runs under it, and held by invokeValidationFunction until the proxy has returned.

#include <settingscore/core/callouts/JValidator.hpp>

#include <settingscore/core/callouts/detail/FailureText.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <boost/thread/locks.hpp>
#include <boost/thread/recursive_mutex.hpp>

namespace settings {
namespace core {

namespace {

// The class-wide state, guarded by mutex_.
struct JavaBridge {
    boost::recursive_mutex mutex_;
    JValidator::ProxyFunction valProxy_;
    JValidator::InitializerFunction jValInitializer_;
};

JavaBridge& javaBridge() {
    static JavaBridge bridge;
    return bridge;
}

using Lock = boost::lock_guard<boost::recursive_mutex>;

// REQUIRES: bridge.mutex_ held. Runs the initialiser when the proxy is missing.
void ensureValProxy(JavaBridge& bridge) {
    if (bridge.valProxy_) {
        return;
    }
    if (!bridge.jValInitializer_) {
        throw makeMessageException<TOLVAN::settings::core::JVMNotReadyForProcessingJavaFunction>();
    }
    // A copy: the initialiser may replace itself or call clearFunctions while it runs.
    const JValidator::InitializerFunction initializer = bridge.jValInitializer_;
    const std::wstring failure = initializer();
    if (!failure.empty() || !bridge.valProxy_) {
        throw makeMessageException<TOLVAN::settings::core::SettingsLibraryNotInitialized>(failure);
    }
}

}  // namespace

JValidator::JValidator(const std::string& packageName, const std::string& functionName)
    : packageName_(packageName), functionName_(functionName) {}

std::string JValidator::getFunctionName() const {
    return functionName_;
}

std::string JValidator::getPackageName() const {
    return packageName_;
}

bool JValidator::operator==(const JValidator& other) const {
    return packageName_ == other.packageName_ && functionName_ == other.functionName_;
}

void JValidator::invokeValidationFunction(const boost::shared_ptr<const Settings>& parent,
                                          const std::string& keyName,
                                          const boost::any& value) const {
    try {
        JavaBridge& bridge = javaBridge();
        const Lock lock(bridge.mutex_);
        ensureValProxy(bridge);
        // A copy: a recursive call on this thread may clear or replace the proxy.
        const ProxyFunction proxy = bridge.valProxy_;
        proxy(packageName_, functionName_, parent, keyName, value);
    } catch (
        const MessageException<TOLVAN::settings::core::JVMNotReadyForProcessingJavaFunction>& e) {
        throw exception::ValidationFunctionInvokingError(functionName_, packageName_,
                                                         detail::catalogText(e));
    } catch (const MessageException<TOLVAN::settings::core::SettingsLibraryNotInitialized>& e) {
        throw exception::ValidationFunctionInvokingError(functionName_, packageName_,
                                                         detail::catalogText(e));
    } catch (const exception::ExceptionFromValidationFunction&) {
        throw;  // the proxy built it itself
    } catch (const exception::ValidationFunctionInvokingError&) {
        throw;
    } catch (const hf::except::IException& e) {
        throw exception::ExceptionFromValidationFunction(parent, keyName, value, functionName_,
                                                         packageName_, detail::whatText(e));
    } catch (...) {
        throw exception::ValidationFunctionInvokingError(functionName_, packageName_,
                                                         detail::unknownFailureText());
    }
}

void JValidator::setJValProxy(const ProxyFunction& proxy) {
    JavaBridge& bridge = javaBridge();
    const Lock lock(bridge.mutex_);
    bridge.valProxy_ = proxy;
}

void JValidator::setJValInitializer(const InitializerFunction& initializer) {
    JavaBridge& bridge = javaBridge();
    const Lock lock(bridge.mutex_);
    bridge.jValInitializer_ = initializer;
}

void JValidator::clearFunctions() {
    JavaBridge& bridge = javaBridge();
    const Lock lock(bridge.mutex_);
    bridge.valProxy_.clear();
    bridge.jValInitializer_.clear();
}

}  // namespace core
}  // namespace settings
