#include "device/judge/AddressQueue.h"
#include "device/judge/Addresses.h"
#include "device/judge/Ending.h"
#include "device/judge/Records.h"
#include "device/judge/Services.h"
#include "device/judge/Streams.h"

#include <csignal>
#include <filesystem>
#include <map>
#include <spawn.h>
#include <sys/wait.h>

namespace dubrix {

namespace {

/// Starts the desktop's opener in a session of its own, which a terminal's signals do not reach. It
/// may outlive this process: it can become the browser.
std::optional<pid_t> startOpener(std::string address) {
    posix_spawn_file_actions_t streams;
    posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&streams);
    ::posix_spawnattr_init(&attributes);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&streams, stream, "/dev/null", O_RDWR, 0);
    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    ::posix_spawnattr_setsigdefault(&attributes, &all);
    ::posix_spawnattr_setflags(&attributes,
                               POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    std::string program = "xdg-open";
    char* const words[] = {program.data(), address.data(), nullptr};
    pid_t opener = 0;
    const int error =
        ::posix_spawnp(&opener, program.c_str(), &streams, &attributes, words, environ);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&streams);
    return error == 0 ? std::optional(opener) : std::nullopt;
}

class AddressService {
public:
    /// `window` is where to say what could not be opened; it may be no open descriptor.
    AddressService(int pipe, int window) : pipe_(pipe), window_(window) {}

    int pipe() const { return pipe_; }
    /// Takes the lines that are in the pipe.
    void read() {
        const std::string bytes = readPiece(pipe_);
        std::string_view rest = bytes;
        while (auto line = lines_.take(rest))
            if (line->bytes && mayBeOpened(*line->bytes))
                queue_.add(std::move(*line->bytes));
    }
    void open() {
        int status = 0;
        while (const pid_t opener = ::waitpid(-1, &status, WNOHANG)) {
            if (opener < 0)
                break;
            queue_.ended(opener);
            const auto address = opening_.extract(opener);
            if (address && status != 0)
                tell(address.mapped());
        }
        const auto now = AddressQueue::Clock::now();
        auto address = queue_.next(now);
        if (!address)
            return;
        if (const auto opener = startOpener(*address)) {
            queue_.started(*opener, now);
            opening_.emplace(*opener, std::move(*address));
        } else {
            tell(*address);
        }
    }
    int pause() const {
        using std::chrono::milliseconds;
        const auto pause = queue_.pause(AddressQueue::Clock::now());
        return pause ? static_cast<int>(std::chrono::ceil<milliseconds>(*pause).count()) : -1;
    }

private:
    /// The address has been judged: it breaks no line.
    void tell(const std::string& address) const {
        const std::string line = "unopened\t" + address + "\n";
        [[maybe_unused]] const ssize_t told = ::write(window_, line.data(), line.size());
    }

    int pipe_;
    int window_;
    RecordReader lines_{'\n', 2048};
    AddressQueue queue_;
    std::map<pid_t, std::string> opening_;
};

} // namespace

int openAddresses(pid_t launcher, const std::string& path, const std::string& answers) {
    Ending ending(launcher);
    // For writing, too: it does not end with its first writer.
    const Descriptor pipe(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    if (!pipe.isOpen())
        return 1;
    const Descriptor window(::open(answers.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    AddressService service(pipe.get(), window.get());
    pollfd come{.fd = pipe.get(), .events = POLLIN, .revents = 0};
    while (ending.wait({&come, 1}, service.pause())) {
        if (come.revents != 0)
            service.read();
        service.open();
    }
    if (ending.launcherIsGone()) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        std::filesystem::remove(std::filesystem::path(path).parent_path(), ignored);
    } else {
        // What was handed over just before the end, as far as it need not wait.
        service.read();
        service.open();
    }
    return 0;
}

} // namespace dubrix
