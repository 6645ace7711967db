// Shared libraries through the dynamic loader. dlerror forgets its text at the next call, so
// each failure's text is copied into a buffer of the calling thread at once.

#include <platform/hlu/hlu.h>

#include <string>

#include <dlfcn.h>

namespace {

std::string& lastLibraryError() {
    thread_local std::string text;
    return text;
}

void rememberLoaderError(const char* fallback) {
    const char* text = ::dlerror();
    lastLibraryError() = text ? text : fallback;
}

}  // namespace

void* hluLoadLibrary(const char* name, int* status) {
    if (status) {
        *status = 1;
    }
    // dlopen of "" or null answers the main program, which is not what a caller names.
    if (!name || !*name) {
        lastLibraryError() = "no library name given";
        return nullptr;
    }
    void* handle = ::dlopen(name, RTLD_NOW);
    if (!handle) {
        rememberLoaderError("the library could not be loaded");
        return nullptr;
    }
    if (status) {
        *status = 0;
    }
    return handle;
}

void* hluFindSymbolInLibrary(void* handle, const char* name) {
    // dlsym with a null handle would search the whole process (RTLD_DEFAULT).
    if (!handle || !name) {
        lastLibraryError() = "no library handle or symbol name given";
        return nullptr;
    }
    ::dlerror();
    void* symbol = ::dlsym(handle, name);
    if (!symbol) {
        rememberLoaderError("the symbol has no address");
    }
    return symbol;
}

const char* hluLastLibraryError(void) {
    return lastLibraryError().c_str();
}
