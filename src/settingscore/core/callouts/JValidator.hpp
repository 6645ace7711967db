// JValidator: a validation function in Java, reached through a proxy that the host's Java
// bridge installs, either directly or through an initialiser run at the first call.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>

#include <boost/any.hpp>
#include <boost/function.hpp>

#include <string>

namespace settings {
namespace core {

class JValidator {
public:
    // (packageName, functionName, parent, keyName, value); refuses by throwing.
    using ProxyFunction =
        boost::function<void(const std::string& packageName, const std::string& functionName,
                             const boost::shared_ptr<const Settings>& parent,
                             const std::string& keyName, const boost::any& value)>;
    // Starts the bridge and installs the proxy; an empty text on success, else why not.
    using InitializerFunction = boost::function<std::wstring()>;

    JValidator(const std::string& packageName, const std::string& functionName);
    JValidator(const JValidator&) = default;
    JValidator& operator=(const JValidator&) = default;

    std::string getFunctionName() const;
    std::string getPackageName() const;

    // Same package and function names.
    bool operator==(const JValidator& other) const;
    bool operator!=(const JValidator& other) const { return !(*this == other); }

    // Runs under the class-wide recursive mutex, which is held until the proxy returns: Java
    // validators are serialised, and one may reach another Java-validated key on its thread.
    // Throws: exception::ValidationFunctionInvokingError (no proxy and no initialiser, the
    // initialiser failed, or the proxy threw something outside hf::except::IException:
    // "Unknown"); exception::ExceptionFromValidationFunction (the proxy threw an
    // hf::except::IException). These two classes thrown by the proxy pass unchanged.
    void invokeValidationFunction(const boost::shared_ptr<const Settings>& parent,
                                  const std::string& keyName, const boost::any& value) const;

    // Each takes the mutex, so they wait for a running validator.
    static void setJValProxy(const ProxyFunction& proxy);
    static void setJValInitializer(const InitializerFunction& initializer);
    // Empties the proxy and the initialiser: the Java side went away.
    static void clearFunctions();

private:
    std::string packageName_;
    std::string functionName_;
};

}  // namespace core
}  // namespace settings
