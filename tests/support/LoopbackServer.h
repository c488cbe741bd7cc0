#pragma once

#include <atomic>
#include <future>
#include <httplib.h>
#include <string>
#include <thread>

namespace dubrix {

/// A web server for one test, on a port of the loopback address that the system chooses. The test
/// sets up what it answers before start().
template<typename Library>
class LoopbackServerOf : public Library {
public:
    using Library::Library;
    ~LoopbackServerOf() override {
        released_.set_value();
        this->stop();
        if (thread_.joinable())
            thread_.join();
    }

    void start() {
        this->set_keep_alive_timeout(1);
        this->set_keep_alive_max_count(1);
        port_ = this->bind_to_any_port("127.0.0.1");
        std::promise<void> listening;
        this->new_task_queue = [&listening] {
            listening.set_value();
            return new httplib::ThreadPool(8);
        };
        thread_ = std::thread([this] { this->listen_after_bind(); });
        listening.get_future().wait();
    }

    std::string address(const std::string& path, const std::string& scheme = "http") const {
        return scheme + "://127.0.0.1:" + std::to_string(port_) + path;
    }
    int port() const { return port_; }

    /// Holds a request back until the server is taken down.
    void holdBack() {
        holdsOneBack = true;
        release_.wait();
    }
    std::atomic<bool> holdsOneBack = false;

private:
    std::promise<void> released_;
    std::shared_future<void> release_ = released_.get_future().share();
    std::thread thread_;
    int port_ = 0;
};

using LoopbackServer = LoopbackServerOf<httplib::Server>;

} // namespace dubrix
