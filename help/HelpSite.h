#pragma once

#include "platform/HelpPages.h"

#include <memory>

namespace dubrix {

/// The help pages, served by the application itself to this computer alone: a small web server on
/// the loopback address, at a port that the system chooses. It starts when the site's address is
/// first asked for and stops with the object, which waits for a connection at work for at most two
/// seconds.
class HelpSite final : public HelpPages {
public:
    HelpSite();
    ~HelpSite() override;
    HelpSite(const HelpSite&) = delete;
    HelpSite& operator=(const HelpSite&) = delete;

    std::string siteAddress() override;

private:
    class Server;

    std::unique_ptr<Server> server_;
    std::string address_;
};

} // namespace dubrix
