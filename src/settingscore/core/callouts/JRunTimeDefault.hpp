// JRunTimeDefault: a run-time default function in Java, reached through a proxy that the
// host's Java bridge installs, with the level on which it was declared.
#pragma once

#include <boost/any.hpp>
#include <boost/function.hpp>

#include <string>

namespace settings {
namespace core {

class JRunTimeDefault {
public:
    // (packageName, functionName) -> the function's answer.
    using ProxyFunction = boost::function<boost::any(const std::string& packageName,
                                                     const std::string& functionName)>;

    JRunTimeDefault(const std::string& packageName, const std::string& functionName);
    JRunTimeDefault(const JRunTimeDefault&) = default;
    JRunTimeDefault& operator=(const JRunTimeDefault&) = default;

    std::string getFunctionName() const;
    std::string getPackageName() const;
    std::string getBelongingLevel() const;
    void setBelongingLevel(const std::string& level);

    // Same package, function and belonging level.
    bool operator==(const JRunTimeDefault& other) const;
    bool operator!=(const JRunTimeDefault& other) const { return !(*this == other); }

    // The proxy's answer. Unlike the other run-time defaults it translates nothing: without a
    // proxy it throws boost::bad_function_call, and what the proxy throws passes as it is.
    boost::any operator()() const;

    // Class-wide, without a lock: the host installs it at start-up.
    static void setJRuntimeDefaultProxy(const ProxyFunction& proxy);

private:
    std::string packageName_;
    std::string functionName_;
    std::string belongingLevel_;
};

}  // namespace core
}  // namespace settings
