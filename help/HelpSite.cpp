#include "help/HelpSite.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <future>
#include <httplib.h>
#include <thread>

namespace dubrix {

namespace {

constexpr const char* loopback = "127.0.0.1";
/// Browsers open connections ahead of need, and each occupies a worker until it is given up.
constexpr std::size_t workers = 8;
constexpr time_t patienceInSeconds = 2;

struct Page {
    std::string_view path;
    const char* resource;
};

constexpr std::array pages = {
    Page{"/pages/dubrix-instructions.php", ":/help/instructions.html"},
    Page{"/pages/dubrix-changelog.php", ":/help/changelog.html"},
    Page{"/pages/dubrix-faqcredits.php", ":/help/faqcredits.html"},
};

std::string contentsOf(const char* resource) {
    QFile file{QString::fromLatin1(resource)};
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

/// Only the pages' own paths exist, and there is nothing to be done to them but reading.
httplib::Server::HandlerResponse answer(const httplib::Request& request,
                                        httplib::Response& response) {
    const auto page = std::ranges::find(pages, request.path, &Page::path);
    if (page == pages.end() || (request.method != "GET" && request.method != "HEAD")) {
        response.status = 404;
        response.set_content("There is no such page.\n", "text/plain; charset=utf-8");
    } else {
        response.set_content(contentsOf(page->resource), "text/html; charset=utf-8");
    }
    return httplib::Server::HandlerResponse::Handled;
}

} // namespace

class HelpSite::Server {
public:
    Server() {
        server_.set_pre_routing_handler(answer);
        // The pages are text and style of their own, nothing else is to be loaded for them.
        server_.set_default_headers(
            {{"Content-Security-Policy", "default-src 'none'; style-src 'unsafe-inline'"},
             {"X-Content-Type-Options", "nosniff"},
             {"Referrer-Policy", "no-referrer"}});
        server_.set_keep_alive_max_count(1);
        server_.set_keep_alive_timeout(1);
        server_.set_read_timeout(patienceInSeconds);
        server_.set_write_timeout(patienceInSeconds);
        server_.set_socket_options([](auto) {}); // the port is nobody else's
    }

    ~Server() {
        server_.stop();
        if (thread_.joinable())
            thread_.join();
    }

    /// The port; nothing when the system refuses one.
    std::optional<int> start() {
        const int port = server_.bind_to_any_port(loopback);
        if (port <= 0)
            return std::nullopt;
        // The library asks for its workers when it has begun to listen; only from then on does
        // stop() end it.
        server_.new_task_queue = [this] {
            auto* queue = new httplib::ThreadPool(workers); // owned by the library
            listening_.set_value();
            return queue;
        };
        thread_ = std::thread([this] { server_.listen_after_bind(); });
        listening_.get_future().wait();
        return port;
    }

private:
    httplib::Server server_;
    std::promise<void> listening_;
    std::thread thread_;
};

HelpSite::HelpSite() = default;
HelpSite::~HelpSite() = default;

std::string HelpSite::siteAddress() {
    if (!address_.empty())
        return address_;
    auto server = std::make_unique<Server>();
    if (const auto port = server->start()) {
        server_ = std::move(server);
        address_ = std::string("http://") + loopback + ":" + std::to_string(*port);
    }
    return address_;
}

} // namespace dubrix
