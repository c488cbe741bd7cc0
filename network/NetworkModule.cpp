#include "network/NetworkModule.h"

#include "help/HelpSite.h"
#include "network/CurlDownloader.h"

extern "C" __attribute__((visibility("default"))) void
dubrixMakeNetworkModule(dubrix::NetworkModule& module) {
    module.downloader = std::make_unique<dubrix::CurlDownloader>();
    module.helpPages = std::make_unique<dubrix::HelpSite>();
}
