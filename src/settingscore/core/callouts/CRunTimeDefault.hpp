// CRunTimeDefault: a run-time default function in a C library, named by package and
// function, with the level on which it was declared.
#pragma once

#include <settingscore/core/callouts/CFunctionInvoker.hpp>

#include <boost/shared_ptr.hpp>

#include <string>

namespace settings {
namespace core {

class CRunTimeDefault {
public:
    CRunTimeDefault(const std::string& packageName, const std::string& functionName);
    CRunTimeDefault(const CRunTimeDefault&) = default;
    CRunTimeDefault& operator=(const CRunTimeDefault&) = default;

    std::string getFunctionName() const;
    std::string getPackageName() const;
    // The name of the level whose file declared the default; empty until set.
    std::string getBelongingLevel() const;
    void setBelongingLevel(const std::string& level);

    // The function's answer, empty when it stored nothing. The value is not checked here.
    // Throws: exception::RunTimeFuncInvokingError for every failure, the function's own
    // included ("Unknown" for anything that is neither a missing library nor a missing
    // function, also when both names are empty).
    boost::any operator()() const;

    // Same package, function and belonging level.
    bool operator==(const CRunTimeDefault& other) const;
    bool operator!=(const CRunTimeDefault& other) const { return !(*this == other); }

private:
    boost::shared_ptr<CFunctionInvoker<CRunTimeDefaultSignature>> invoker_;
    std::string belongingLevel_;
};

}  // namespace core
}  // namespace settings
