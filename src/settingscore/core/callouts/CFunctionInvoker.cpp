#include <settingscore/core/callouts/CFunctionInvoker.hpp>

#include <platform/hlu/hlu.h>
#include <settingscore/core/callouts/detail/LibrarySearch.hpp>
#include <settingscore/core/exception/MessageIds.hpp>

namespace settings {
namespace core {

template <class F, class Function>
Function CFunctionInvoker<F, Function>::loadCFunction() const {
    if (functionName_.empty() && packageName_.empty()) {
        return Function();
    }
    // Loaded at every call: a library that failed may be there next time, and loading a
    // loaded library again only raises its count.
    void* handle = detail::buildLibraryName(packageName_);
    void* symbol = hluFindSymbolInLibrary(handle, functionName_.c_str());
    if (!symbol) {
        throw makeMessageException<TOLVAN::settings::core::CFunctionNotFound>(functionName_,
                                                                              packageName_);
    }
    return Function(FuncToRunWithLibHandleGuard<F>(handle, reinterpret_cast<F*>(symbol)));
}

template class CFunctionInvoker<CValidatorSignature>;
template class CFunctionInvoker<CRunTimeDefaultSignature>;

}  // namespace core
}  // namespace settings
