// TRunTimeDefault: a run-time default function in the host's language, reached through a
// proxy that the host installs, with the level on which it was declared.
#pragma once

#include <settingscore/core/callouts/TOLVANFunctionInvoker.hpp>

#include <boost/any.hpp>
#include <boost/function.hpp>

#include <string>

namespace settings {
namespace core {

class TRunTimeDefault : public TOLVANFunctionInvoker {
public:
    // (packageName, functionName, result): stores the function's answer in *result.
    using ProxyFunction = boost::function<void(
        const std::string& packageName, const std::string& functionName, boost::any* result)>;

    TRunTimeDefault(const std::string& packageName, const std::string& functionName);

    std::string getBelongingLevel() const;
    void setBelongingLevel(const std::string& level);

    // Same package, function and belonging level.
    bool operator==(const TRunTimeDefault& other) const;
    bool operator!=(const TRunTimeDefault& other) const { return !(*this == other); }

    // As TValidator::checkConditions, over this class's proxy.
    void checkConditions() const;

    // The proxy's answer, empty when it stored nothing.
    // Throws: exception::RunTimeFuncInvokingError for every failure.
    boost::any operator()() const;

    // Class-wide, without a lock.
    static void setTRunTimeProxyFname(const ProxyFunction& proxy);
    static ProxyFunction getTRunTimeProxyFname();

private:
    std::string belongingLevel_;
};

}  // namespace core
}  // namespace settings
