// Runs a command where it sees the device and nothing of the desktop: what bubblewrap cannot do by
// itself is done here, on the desktop's side, before and around it.

#include "device/confine/NamespaceTrial.h"
#include "device/confine/ProcessCount.h"
#include "device/confine/Request.h"

#include "files/FileTree.h"
#include "formats/text/PlainText.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <linux/keyctl.h>
#include <span>
#include <string_view>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <vector>

namespace {

using namespace dubrix;

constexpr int refused = 66;
constexpr int cannotStart = 71;
constexpr int notFound = 127;

/// The descriptor at which a command finds its result.
constexpr int resultDescriptor = 10;
/// And the one that is closed at its other end when the command is to end.
constexpr int stopDescriptor = 11;

/// More than any application, its web pages and the commands of a duplication need together.
constexpr unsigned mostProcesses = 2048;
constexpr rlim_t mostDescriptors = 4096;
constexpr rlim_t largestFile = rlim_t{64} << 30;

constexpr int manyTries = 3;

/// How long, in milliseconds, output is awaited after the command's end: in a namespace everything
/// ends with the command and nothing is cut off.
constexpr int graceInNamespace = 5000;
constexpr int graceWithout = 0;

[[noreturn]] void end(int status, const std::string& text) {
    std::fprintf(stderr, "dubrix: %s\n", text.c_str());
    std::exit(status);
}

/// What was open before is nobody's business on the device.
void closeAllBut(std::vector<int> kept) {
    std::ranges::sort(kept);
    unsigned from = STDERR_FILENO + 1;
    for (const int descriptor : kept) {
        const auto number = static_cast<unsigned>(descriptor);
        if (number > from)
            ::close_range(from, number - 1, 0);
        from = std::max(from, number + 1);
    }
    ::close_range(from, ~0U, 0);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(standard, F_GETFD) < 0)
            ::open("/dev/null", O_RDWR);
}

void lower(__rlimit_resource what, rlim_t most) {
    struct rlimit limit{};
    ::getrlimit(what, &limit);
    limit.rlim_max = std::min(limit.rlim_max, most);
    limit.rlim_cur = std::min(limit.rlim_cur, limit.rlim_max);
    ::setrlimit(what, &limit);
}

/// A file in memory that the next program can read; its descriptor.
int inMemory(const std::string& bytes) {
    const int file = ::memfd_create("given", 0);
    if (file < 0 || !writeAll(file, bytes) || ::lseek(file, 0, SEEK_SET) != 0)
        end(cannotStart, systemFailure("no memory for the command's namespace").text);
    return file;
}

std::string filterFor(Confined whom) {
    const Result<std::string> filter = systemCallFilter(whom);
    if (!filter)
        end(cannotStart, filter.failure().text);
    return *filter;
}

/// Opens what is shared and appends bubblewrap's options for it.
void share(const Request& request, std::vector<std::string>& options) {
    for (const Shared& shared : request.shared) {
        Descriptor file = shared.asked ? openAskedFor(shared.path, shared.kind, request.device)
                                       : openNamed(shared.path, shared.kind);
        if (!file.isOpen() && shared.asked)
            std::exit(refused); // without a word: whether it exists is not for the window to know
        if (!file.isOpen())
            end(refused, "cannot read " + shared.path);
        if (request.bare)
            continue;
        const int number = file.release();
        ::fcntl(number, F_SETFD, 0);
        options.insert(options.end(), {"--ro-bind-fd", std::to_string(number), shared.place});
    }
}

/// bubblewrap's whole command line. Its options go through a file in memory, so that the first
/// process of the namespace shows none of the desktop's paths.
std::vector<std::string> namespaceLine(const Request& request) {
    std::vector<std::string> options;
    share(request, options);
    if (request.whom == Confined::WebPages) {
        const int stricter = inMemory(filterFor(Confined::EngineCommand));
        options.insert(options.end(),
                       {"--ro-bind-data", std::to_string(stricter), "/command-filter"});
    }
    options.insert(options.end(), request.namespaceOptions.begin(), request.namespaceOptions.end());
    options.insert(options.end(), {"--seccomp", std::to_string(inMemory(filterFor(request.whom)))});
    std::string bytes;
    for (const std::string& option : options)
        bytes += option + '\0';
    std::vector<std::string> line = {"bwrap", "--args", std::to_string(inMemory(bytes)), "--"};
    if (::geteuid() != 0) {
        const std::string most = std::to_string(mostProcesses);
        line.insert(line.end(), {"/usr/bin/prlimit", "--nproc=" + most + ":" + most, "--"});
    }
    line.insert(line.end(), request.command.begin(), request.command.end());
    return line;
}

/// Without a namespace there is nothing to put files into; what may not be given is still refused.
std::vector<std::string> bareLine(const Request& request) {
    std::vector<std::string> none;
    share(request, none);
    return request.command;
}

[[noreturn]] void execute(const std::vector<std::string>& line, bool bare) {
    std::vector<char*> words;
    words.reserve(line.size() + 1);
    for (const std::string& word : line)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    char* none = nullptr;
    ::execvpe(words[0], words.data(), bare ? environ : &none);
    end(notFound, systemFailure(line[0] + " cannot be started").text);
}

/// The signals that Streams::serve takes.
void block(bool blocked) {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGCHLD, SIGHUP, SIGINT, SIGTERM})
        ::sigaddset(&signals, signal);
    ::sigprocmask(blocked ? SIG_BLOCK : SIG_UNBLOCK, &signals, nullptr);
}

/// The new process becomes the command.
[[noreturn]] void become(const std::vector<std::string>& line, const Request& request,
                         const Streams& streams, const ProcessCount& processes, int result,
                         int stop) {
    block(false);
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGXFSZ, SIG_IGN);
    ::setsid();
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (!processes.join())
        end(cannotStart, "the number of processes cannot be bounded");
    // The lowest free descriptors are taken by bubblewrap's own; this one must be where it is said.
    if ((result >= 0 && ::dup2(result, resultDescriptor) < 0) ||
        (stop >= 0 && ::dup2(stop, stopDescriptor) < 0) || !streams.enter())
        end(cannotStart, systemFailure("the command's streams cannot be set up").text);
    execute(line, request.bare);
}

/// Takes a number before anything else is opened, so that it is nobody else's.
void reserve(int number) {
    const int reserved = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup3(reserved, number, O_CLOEXEC);
    ::close(reserved);
}

int run(const Request& request) {
    if (!request.result.empty())
        reserve(resultDescriptor);
    if (request.stoppable)
        reserve(stopDescriptor);
    ProcessCount processes;
    for (int tries = 0; !request.bare && ::geteuid() == 0 && tries < manyTries; ++tries)
        if (processes.bound(mostProcesses))
            break;
    const std::vector<std::string> line = request.bare ? bareLine(request) : namespaceLine(request);
    if (request.terminal) {
        processes.join();
        execute(line, request.bare);
    }
    std::optional<ResultFile> result;
    if (!request.result.empty()) {
        Result<ResultFile> begun = ResultFile::begin(request.result, request.existing);
        if (!begun)
            end(EXIT_FAILURE, begun.failure().text);
        result.emplace(std::move(*begun));
    }
    block(true);
    Streams streams(request.input, request.shown);
    const Descriptor stop = request.stoppable ? streams.makeStop() : Descriptor();
    const pid_t command = ::fork();
    if (command < 0)
        end(cannotStart, systemFailure("the command cannot be started").text);
    if (command == 0)
        become(line, request, streams, processes, result ? result->descriptor() : -1, stop.get());
    const int status = streams.serve(command, request.bare ? graceWithout : graceInNamespace);
    if (status != 0 || !result)
        return status;
    const Result<std::string> placed = result->finish();
    if (!placed)
        end(EXIT_FAILURE, placed.failure().text);
    if (request.existing == ResultFile::Existing::Kept)
        std::printf("saved\t%s\n", onOneLine(*placed).c_str());
    return status;
}

int whyNot() {
    const NamespaceRefusal refusal = tryNamespaces();
    if (!refusal.reason.empty())
        std::printf("%s\n", refusal.reason.c_str());
    return refusal.forGood ? 0 : 1;
}

} // namespace

int main(int count, char* words[]) {
    const std::span<char* const> given(words + 1, static_cast<std::size_t>(count - 1));
    if (given.size() == 1 && given[0] == std::string_view("--why-not"))
        return whyNot();
    // Nothing of this outlives the launcher.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    const Request request = parseRequest(given);
    closeAllBut(request.kept);
    // The person's keys stay where they are. Where the kernel has no keyrings, there is nothing.
    ::syscall(SYS_keyctl, KEYCTL_JOIN_SESSION_KEYRING, nullptr);
    lower(RLIMIT_NOFILE, mostDescriptors);
    lower(RLIMIT_FSIZE, largestFile);
    lower(RLIMIT_CORE, 0);
    return run(request);
}
