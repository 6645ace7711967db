// CValidator: a validation function in a C library, named by package and function.
#pragma once

#include <settingscore/core/callouts/CFunctionInvoker.hpp>

#include <boost/shared_ptr.hpp>

#include <string>

namespace settings {
namespace core {

class CValidator {
public:
    CValidator(const std::string& packageName, const std::string& functionName);
    CValidator(const CValidator&) = default;
    CValidator& operator=(const CValidator&) = default;

    std::string getFunctionName() const;
    std::string getPackageName() const;

    // Loads the library and calls the function with the three arguments.
    // Throws: boost::bad_function_call when both names are empty;
    // exception::ValidationFunctionInvokingError when the library or the function cannot be
    // found; exception::ExceptionFromValidationFunction when the function throws an
    // hf::except::IException (SettingsException among them); anything else the function
    // throws passes through.
    void invokeValidationFunction(const boost::shared_ptr<const Settings>& parent,
                                  const std::string& keyName, const boost::any& value) const;

    // Same package and function names.
    bool operator==(const CValidator& other) const;
    bool operator!=(const CValidator& other) const { return !(*this == other); }

private:
    // Shared by copies: a validator is copied with every node that carries it.
    boost::shared_ptr<CFunctionInvoker<CValidatorSignature>> invoker_;
};

}  // namespace core
}  // namespace settings
