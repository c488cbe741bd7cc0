#include "network/NetworkServices.h"

#include <dlfcn.h>

namespace dubrix {

void NetworkServices::load() {
    // Bound whole at once: a library that does not fit is found out here, not in a later call.
    void* const library = ::dlopen(file_.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const entry = library ? ::dlsym(library, makeNetworkModuleName) : nullptr;
    if (entry)
        reinterpret_cast<MakeNetworkModule>(entry)(module_);
    else
        log_.log(std::string("The network module cannot be loaded: ") + ::dlerror());
}

const NetworkModule& NetworkServices::module() {
    std::call_once(loaded_, [this] { load(); });
    return module_;
}

std::optional<std::string> NetworkServices::dataWithContentsOfURL(const std::string& address) {
    const NetworkModule& services = module();
    return services.downloader ? services.downloader->dataWithContentsOfURL(address) : std::nullopt;
}

std::string NetworkServices::siteAddress() {
    const NetworkModule& services = module();
    return services.helpPages ? services.helpPages->siteAddress() : std::string();
}

} // namespace dubrix
