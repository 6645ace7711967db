// CFunctionInvoker: finds a function by name in a shared library named by a package name, and
// hands it out as a boost::function. Also the two C signatures that validators and run-time
// defaults in C libraries have.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>

#include <boost/any.hpp>
#include <boost/function.hpp>

#include <string>
#include <utility>

namespace settings {
namespace core {

// A validator accepts by returning and refuses by throwing.
using CValidatorSignature = void(const boost::shared_ptr<const Settings>& parent,
                                 const std::string& keyName, const boost::any& value);
// A run-time default stores its answer in *result; an untouched result means "no value".
using CRunTimeDefaultSignature = void(boost::any* result);

// What the boost::function of loadCFunction holds: the library the function came from and
// the function. Libraries are never unloaded, so destroying the guard releases nothing; the
// handle is kept to say where the function lives.
template <class F>
class FuncToRunWithLibHandleGuard {
public:
    FuncToRunWithLibHandleGuard(void* libraryHandle, F* function)
        : libraryHandle_(libraryHandle), function_(function) {}

    template <class... Args>
    decltype(auto) operator()(Args&&... args) const {
        return function_(std::forward<Args>(args)...);
    }

    void* getLibraryHandle() const { return libraryHandle_; }
    F* getFunction() const { return function_; }

private:
    void* libraryHandle_;
    F* function_;
};

// F is the signature of the function (CValidatorSignature or CRunTimeDefaultSignature); the
// library exports a function of that signature under the function name.
template <class F, class Function = boost::function<F>>
class CFunctionInvoker {
public:
    CFunctionInvoker(const std::string& packageName, const std::string& functionName)
        : packageName_(packageName), functionName_(functionName) {}

    const std::string& getPackageName() const { return packageName_; }
    const std::string& getFunctionName() const { return functionName_; }

    // Loads the package's library (afresh at each call: nothing is cached) and looks the
    // function up. Empty when both names are empty.
    // Throws: exception::ErrorLoadingLibrary when no library of the package loads;
    // MessageException<CFunctionNotFound> when the library lacks the function.
    Function loadCFunction() const;

private:
    std::string packageName_;
    std::string functionName_;
};

extern template class CFunctionInvoker<CValidatorSignature>;
extern template class CFunctionInvoker<CRunTimeDefaultSignature>;

}  // namespace core
}  // namespace settings
