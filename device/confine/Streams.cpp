#include "device/confine/Streams.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>

namespace dubrix {

namespace {

constexpr std::size_t pieceSize = 4096;
constexpr std::size_t longestLine = std::size_t{64} << 10;
constexpr std::string_view progressWord = "progress ";

/// Reading end first.
std::array<Descriptor, 2> makePipe() {
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return {};
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

bool isTerminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

} // namespace

Output::Output(int target, Shown shown)
    : raw_(shown == Shown::VisibleOnTerminal && !isTerminal(target)) {
    if (shown == Shown::Progress)
        bar_.emplace(STDERR_FILENO);
}

void Output::pass(std::string_view bytes, const Write& write) {
    if (raw_)
        return write(bytes);
    if (!bar_)
        return write(visible_.take(bytes));
    unfinished_ += bytes;
    while (!unfinished_.empty()) {
        const std::size_t end = unfinished_.find('\n');
        if (end == std::string::npos && unfinished_.size() < longestLine)
            break;
        const std::string line = unfinished_.substr(0, end == std::string::npos ? end : end + 1);
        unfinished_.erase(0, line.size());
        if (drawProgress(line))
            continue;
        bar_->clear();
        write(visible_.take(line));
    }
}

/// False when the line says nothing of progress.
bool Output::drawProgress(std::string_view line) {
    if (!line.starts_with(progressWord) || !line.ends_with('\n'))
        return false;
    line.remove_prefix(progressWord.size());
    line.remove_suffix(1);
    unsigned percent = 0;
    const auto [end, error] = std::from_chars(line.begin(), line.end(), percent);
    percent = std::min(percent, 100U);
    if (error != std::errc())
        return false;
    if (end != line.end())
        bar_->start(VisibleText().take({end + 1, line.end()}), percent);
    else
        bar_->show(percent, 100);
    return true;
}

void Output::passRest(const Write& write) {
    makeWay();
    write(visible_.take(std::exchange(unfinished_, {})) + visible_.end());
}

void Output::makeWay() {
    if (bar_)
        bar_->clear();
}

Streams::Streams(bool input, Shown shown)
    : out_{{}, {}, STDOUT_FILENO, Output(STDOUT_FILENO, shown)},
      err_{{},
           {},
           STDERR_FILENO,
           Output(STDERR_FILENO, shown == Shown::Progress ? Shown::Visible : shown)} {
    for (Channel* channel : {&out_, &err_}) {
        auto [reading, writing] = makePipe();
        channel->ours = std::move(reading);
        channel->theirs = std::move(writing);
    }
    if (input) {
        auto [reading, writing] = makePipe();
        inputTheirs_ = std::move(reading);
        inputOurs_ = std::move(writing);
        ::fcntl(inputOurs_.get(), F_SETFL, O_NONBLOCK);
    } else {
        inputTheirs_ = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    }
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGCHLD, SIGHUP, SIGINT, SIGTERM})
        ::sigaddset(&signals, signal);
    signals_ = Descriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    std::signal(SIGPIPE, SIG_IGN);
}

bool Streams::enter() const {
    return ::dup2(inputTheirs_.get(), STDIN_FILENO) >= 0 &&
           ::dup2(out_.theirs.get(), STDOUT_FILENO) >= 0 &&
           ::dup2(err_.theirs.get(), STDERR_FILENO) >= 0;
}

/// Whether the command has ended; it can still be signalled afterwards.
bool Streams::hasEnded() const {
    siginfo_t ended{};
    return ::waitid(P_PID, static_cast<id_t>(command_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           ended.si_pid == command_;
}

void Streams::takeSignals() {
    signalfd_siginfo signal{};
    while (::read(signals_.get(), &signal, sizeof signal) == sizeof signal) {
        int status = 0;
        if (signal.ssi_signo != SIGCHLD) {
            if (!status_)
                askForEnd(static_cast<int>(signal.ssi_signo));
        } else if (!status_ && hasEnded()) {
            // Of a namespace that was not complete, a process may wait for the one that has ended.
            if (endsWhole_)
                ::kill(-command_, SIGKILL);
            ::waitpid(command_, &status, 0);
            status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
    }
}

/// One wish may come as two signals: from the terminal to all in front of it, and from the
/// launcher.
void Streams::askForEnd(int signal) {
    const bool isNew = asked_.insert(signal).second;
    if (isStoppable_ && isNew)
        stop_.close();
    else
        ::kill(command_, SIGTERM);
}

Descriptor Streams::makeStop() {
    auto [reading, writing] = makePipe();
    stop_ = std::move(writing);
    isStoppable_ = true;
    return std::move(reading);
}

/// Whether the descriptor becomes ready in that time; signals are taken meanwhile.
bool Streams::ready(int descriptor, short events, int milliseconds) {
    std::array<pollfd, 2> watched{{{descriptor, events, 0}, {signals_.get(), POLLIN, 0}}};
    while (::poll(watched.data(), watched.size(), milliseconds) > 0) {
        if (watched[1].revents != 0)
            takeSignals();
        if (watched[0].revents != 0)
            return true;
    }
    return false;
}

/// Nobody who does not read any more is written to; the command then learns it from its pipe.
void Streams::write(Channel& channel, std::string_view bytes) {
    while (!bytes.empty() && channel.ours.isOpen()) {
        const ssize_t count =
            ::write(channel.target, bytes.data(), std::min(bytes.size(), pieceSize));
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno == EAGAIN)
            ready(channel.target, POLLOUT, -1);
        else if (errno != EINTR)
            channel.ours.close();
    }
}

Output::Write Streams::writer(Channel& channel) {
    return [this, &channel](std::string_view bytes) { write(channel, bytes); };
}

void Streams::passOn(Channel& channel) {
    char bytes[pieceSize];
    const ssize_t count = ::read(channel.ours.get(), bytes, sizeof bytes);
    if (count < 0 && errno == EINTR)
        return;
    if (&channel == &err_)
        out_.output.makeWay();
    if (count > 0) {
        channel.output.pass({bytes, static_cast<std::size_t>(count)}, writer(channel));
        return;
    }
    channel.output.passRest(writer(channel));
    channel.ours.close();
}

void Streams::passInput() {
    if (typed_.empty()) {
        char bytes[pieceSize];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count > 0)
            typed_.assign(bytes, static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EINTR && errno != EAGAIN))
            inputOurs_.close();
        return;
    }
    const ssize_t count = ::write(inputOurs_.get(), typed_.data(), typed_.size());
    if (count > 0)
        typed_.erase(0, static_cast<std::size_t>(count));
    else if (errno != EINTR && errno != EAGAIN)
        inputOurs_.close();
}

int Streams::serve(pid_t command, int grace) {
    command_ = command;
    endsWhole_ = grace > 0;
    out_.theirs.close();
    err_.theirs.close();
    inputTheirs_.close();
    while (!status_ || out_.ours.isOpen() || err_.ours.isOpen()) {
        const bool reading = typed_.empty();
        const int input = !inputOurs_.isOpen() ? -1 : reading ? STDIN_FILENO : inputOurs_.get();
        std::array<pollfd, 4> watched{{{signals_.get(), POLLIN, 0},
                                       {out_.ours.get(), POLLIN, 0},
                                       {err_.ours.get(), POLLIN, 0},
                                       {input, static_cast<short>(reading ? POLLIN : POLLOUT), 0}}};
        const int count = ::poll(watched.data(), watched.size(), status_ ? grace : -1);
        if (count == 0)
            break;
        if (count < 0)
            continue;
        if (watched[0].revents != 0)
            takeSignals();
        if (watched[1].revents != 0)
            passOn(out_);
        if (watched[2].revents != 0)
            passOn(err_);
        if (watched[3].revents != 0)
            passInput();
    }
    for (Channel* channel : {&out_, &err_})
        if (channel->ours.isOpen())
            channel->output.passRest(writer(*channel));
    return *status_;
}

} // namespace dubrix
