#pragma once

#include "network/NetworkModule.h"
#include "platform/SystemLog.h"

#include <filesystem>
#include <mutex>

namespace dubrix {

/// The application's network services, answered by the module at `file`, which is loaded with the
/// first question. While it cannot be loaded (said once in the log) downloads fail and there is no
/// help site. The module stays loaded until the process ends; its services end with this object.
class NetworkServices final : public Downloader, public HelpPages {
public:
    NetworkServices(std::filesystem::path file, SystemLog& log)
        : file_(std::move(file)),
          log_(log) {}

    std::optional<std::string> dataWithContentsOfURL(const std::string& address) override;
    std::string siteAddress() override;

private:
    const NetworkModule& module();
    void load();

    std::filesystem::path file_;
    SystemLog& log_;
    std::once_flag loaded_;
    NetworkModule module_;
};

} // namespace dubrix
