#include "device/confine/ResultFile.h"

#include <csignal>
#include <sys/stat.h>

namespace dubrix {

namespace {

constexpr int manyOfOneName = 10000;

/// Keeps signals waiting for as long as it lives.
class WithoutSignals {
public:
    WithoutSignals() {
        sigset_t all;
        ::sigfillset(&all);
        ::sigprocmask(SIG_BLOCK, &all, &before_);
    }
    ~WithoutSignals() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;

private:
    sigset_t before_{};
};

} // namespace

ResultFile::ResultFile(std::filesystem::path path, Existing existing, ReplacementFile file)
    : path_(std::move(path)),
      existing_(existing),
      file_(std::move(file)) {}

Result<ResultFile> ResultFile::begin(const std::string& path, Existing existing) {
    struct stat status{};
    if (existing == Existing::Replaced && ::lstat(path.c_str(), &status) == 0 &&
        !S_ISREG(status.st_mode))
        return Failure{path + " is there already and is not a file"};
    std::optional<ReplacementFile> file = ReplacementFile::make(path, 0666);
    if (!file)
        return systemFailure(path + " cannot be written");
    return ResultFile(path, existing, std::move(*file));
}

Result<std::string> ResultFile::finish() {
    const WithoutSignals quiet;
    const std::filesystem::path name = path_.filename();
    if (existing_ == Existing::Replaced && file_.putInPlace(Durability::Process))
        return (path_.parent_path() / name).native();
    for (int number = 1; existing_ == Existing::Kept && number < manyOfOneName; ++number) {
        const std::string numbered = number == 1
                                         ? name.native()
                                         : name.stem().native() + " (" + std::to_string(number) +
                                               ")" + name.extension().native();
        if (file_.putBeside(numbered))
            return (path_.parent_path() / numbered).native();
        if (errno != EEXIST)
            break;
    }
    return systemFailure(name.native() + " cannot be written");
}

} // namespace dubrix
