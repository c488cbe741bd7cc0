#pragma once

#include "platform/Downloader.h"
#include "platform/HelpPages.h"

#include <memory>

namespace dubrix {

/// What the module "dubrix-network.so" answers. Transfers, encryption and the web server bring some
/// twenty libraries with them, which would take half the application's time to its first frame:
/// they are kept out of the program, in a module that is loaded when one of its services is first
/// asked for something.
struct NetworkModule {
    std::unique_ptr<Downloader> downloader;
    std::unique_ptr<HelpPages> helpPages;
};

/// The module's only entry, named `makeNetworkModuleName` in it. Fills the structure in.
using MakeNetworkModule = void (*)(NetworkModule& module);
constexpr auto makeNetworkModuleName = "dubrixMakeNetworkModule";

} // namespace dubrix
