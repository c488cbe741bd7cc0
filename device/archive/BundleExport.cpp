#include "device/archive/BundleExport.h"

#include "device/archive/Interruption.h"
#include "files/Descriptor.h"
#include "files/FileTree.h"
#include "formats/text/Unicode.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <clocale>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <vector>

namespace dubrix {

namespace {

constexpr std::size_t bufferSize = std::size_t{256} << 10;

using Archive = std::unique_ptr<archive, int (*)(archive*)>;
using Entry = std::unique_ptr<archive_entry, void (*)(archive_entry*)>;

/// Made once and kept: a thread may use it to the end.
locale_t localeFor(std::string_view name) {
    static const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    static const locale_t bytes = ::newlocale(LC_CTYPE_MASK, "C", nullptr);
    return isUtf8(name) ? utf8 : bytes;
}

/// While it lives, the calling thread's encoding is UTF-8 if `name` is UTF-8, and that of the "C"
/// locale if not. libarchive writes a name's bytes as they are and marks them as UTF-8 where that
/// is the thread's encoding. Changes nothing where the system lacks such a locale.
class NameEncoding {
public:
    explicit NameEncoding(std::string_view name) : before_(::uselocale(localeFor(name))) {}
    ~NameEncoding() { ::uselocale(before_); }
    NameEncoding(const NameEncoding&) = delete;
    NameEncoding& operator=(const NameEncoding&) = delete;

private:
    locale_t before_;
};

Failure packingFailure(archive* packer) {
    if (archive_errno(packer) > 0)
        return systemFailure("cannot be written", archive_errno(packer));
    return Failure{"cannot be written"};
}

/// Walks one bundle and puts everything into an archive.
class BundlePacker {
public:
    BundlePacker(archive* packer, std::uint64_t total, const Progress& progress)
        : packer_(packer),
          buffer_(bufferSize, '\0'),
          total_(total),
          progress_(progress) {}

    /// Packs the open folder with all that is below it under the name `packedName`.
    Outcome packFolder(int folder, const std::string& packedName) {
        struct stat status{};
        const auto names = namesIn(folder);
        if (!names || ::fstat(folder, &status) != 0)
            return systemFailure("cannot read " + packedName);
        const std::string prefix = packedName + "/";
        if (Outcome done = packHeader(entryFor(prefix, status).get()); !done)
            return done;
        for (const std::string& name : *names)
            if (Outcome done = pack(folder, name, prefix + name); !done)
                return done;
        return Success{};
    }

private:
    Outcome pack(int parent, const std::string& name, const std::string& packedName) {
        struct stat status{};
        if (Interruption::isAsked())
            return Failure{"was interrupted"};
        if (::fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return systemFailure("cannot read " + packedName);
        if (S_ISDIR(status.st_mode)) {
            const Descriptor folder = openFolderAt(parent, name);
            return folder.isOpen() ? packFolder(folder.get(), packedName)
                                   : systemFailure("cannot read " + packedName);
        }
        if (S_ISREG(status.st_mode))
            return packFile(parent, name, packedName);
        if (S_ISLNK(status.st_mode))
            return packLink(parent, name, packedName, status);
        return Failure{"cannot hold " + packedName + ", which is neither file, folder nor link"};
    }

    Entry entryFor(const std::string& packedName, const struct stat& status) {
        Entry entry(archive_entry_new(), archive_entry_free);
        archive_entry_copy_pathname(entry.get(), packedName.c_str());
        archive_entry_set_mode(entry.get(), status.st_mode);
        archive_entry_set_mtime(entry.get(), status.st_mtim.tv_sec, 0);
        archive_entry_set_size(entry.get(), S_ISREG(status.st_mode) ? status.st_size : 0);
        return entry;
    }

    Outcome packHeader(archive_entry* entry) {
        const NameEncoding encoding(archive_entry_pathname(entry));
        // A mere warning, too, would mean that something is not kept.
        if (archive_write_header(packer_, entry) != ARCHIVE_OK)
            return packingFailure(packer_);
        return Success{};
    }

    Outcome packFile(int parent, const std::string& name, const std::string& packedName) {
        const Descriptor file(
            ::openat(parent, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat status{};
        if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
            return systemFailure("cannot read " + packedName);
        if (!S_ISREG(status.st_mode))
            return Failure{"cannot hold " + packedName + ", which changes meanwhile"};
        if (Outcome done = packHeader(entryFor(packedName, status).get()); !done)
            return done;
        for (off_t left = status.st_size; left > 0;) {
            const ssize_t got = ::read(file.get(), buffer_.data(), buffer_.size());
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                return systemFailure("cannot read " + packedName);
            if (Interruption::isAsked())
                return Failure{"was interrupted"};
            if (got == 0 || got > left)
                return Failure{"cannot hold " + packedName + ", which changes meanwhile"};
            if (archive_write_data(packer_, buffer_.data(), static_cast<std::size_t>(got)) != got)
                return packingFailure(packer_);
            left -= got;
            packed_ += static_cast<std::uint64_t>(got);
            if (progress_)
                progress_(packed_, std::max(packed_, total_));
        }
        return Success{};
    }

    Outcome packLink(int parent, const std::string& name, const std::string& packedName,
                     const struct stat& status) {
        std::string text(static_cast<std::size_t>(status.st_size) + 1, '\0');
        const ssize_t size = ::readlinkat(parent, name.c_str(), text.data(), text.size());
        if (size < 0 || static_cast<std::size_t>(size) == text.size())
            return systemFailure("cannot read " + packedName);
        text.resize(static_cast<std::size_t>(size));
        const Entry entry = entryFor(packedName, status);
        archive_entry_copy_symlink(entry.get(), text.c_str());
        return packHeader(entry.get());
    }

    archive* packer_;
    std::string buffer_;
    std::uint64_t packed_ = 0;
    /// Bytes in all files, as they were counted before.
    std::uint64_t total_;
    const Progress& progress_;
};

/// In all files below the open folder; links are not followed, and what cannot be read is left out.
std::uint64_t bytesIn(int folder) {
    std::uint64_t bytes = 0;
    for (const std::string& name : namesIn(folder).value_or(std::vector<std::string>{})) {
        struct stat status{};
        if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISREG(status.st_mode))
            bytes += static_cast<std::uint64_t>(status.st_size);
        else if (S_ISDIR(status.st_mode))
            bytes += bytesIn(openFolderAt(folder, name).get());
    }
    return bytes;
}

} // namespace

Outcome packBundle(int bundle, const std::string& folderName, int archive,
                   const Progress& progress) {
    const Archive packer(archive_write_new(), archive_write_free);
    if (archive_write_set_format_zip(packer.get()) != ARCHIVE_OK ||
        archive_write_open_fd(packer.get(), archive) != ARCHIVE_OK)
        return packingFailure(packer.get());
    BundlePacker work(packer.get(), progress ? bytesIn(bundle) : 0, progress);
    if (Outcome done = work.packFolder(bundle, "Payload/" + folderName); !done)
        return done;
    if (archive_write_close(packer.get()) != ARCHIVE_OK)
        return packingFailure(packer.get());
    return Success{};
}

} // namespace dubrix
