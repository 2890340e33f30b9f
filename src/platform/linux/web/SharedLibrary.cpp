#include "platform/linux/web/SharedLibrary.h"

#include <dlfcn.h>

namespace korvalin {

SharedLibrary::SharedLibrary(const char* name) : library_(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {}

void* SharedLibrary::Symbol(const char* name) const {
    return library_ != nullptr ? dlsym(library_, name) : nullptr;
}

} // namespace korvalin
