#pragma once

#include "files/Descriptor.h"
#include "tests/proof/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"

#include <array>
#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>

namespace dubrix {

/// A file system in a file. What the system still keeps in its memory is not in the file: a copy of
/// it is the disk as a cut of power would leave it.
class PowerCutDisk {
public:
    /// Mounts the file system in `image` on the folder; check isMounted. Only below PrivateMounts,
    /// so that nothing is left however the process ends.
    PowerCutDisk(std::filesystem::path image, std::filesystem::path folder)
        : image_(std::move(image)),
          folder_(std::move(folder)) {
        std::filesystem::create_directories(folder_);
        const Descriptor device = attach();
        // Nothing is written in time's course, and a rename does not flush what it puts in place:
        // not every file system does.
        isMounted_ = device.isOpen() && ::mount(device_.c_str(), folder_.c_str(), "ext4",
                                                MS_NOATIME, "commit=300,noauto_da_alloc") == 0;
    }
    ~PowerCutDisk() {
        // The loop device ends with the mount.
        if (isMounted_ && ::umount2(folder_.c_str(), 0) != 0)
            ::umount2(folder_.c_str(), MNT_DETACH);
    }
    PowerCutDisk(const PowerCutDisk&) = delete;
    PowerCutDisk& operator=(const PowerCutDisk&) = delete;

    bool isMounted() const { return isMounted_; }
    const std::filesystem::path& folder() const { return folder_; }

    /// Has the file system write down which files and folders there are, as it does by itself every
    /// few seconds. It need not write their bytes then.
    void commit() const {
        const Descriptor file(
            ::open((folder_ / "unrelated").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        ASSERT_EQ(::write(file.get(), "x", 1), 1);
        ASSERT_EQ(::fsync(file.get()), 0);
    }

    /// Everything, as one who wants to begin from a known state.
    void writeAll() const {
        const Descriptor open(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_EQ(::syncfs(open.get()), 0);
    }

    /// Copies the disk as it is at one moment: again, when a write was on its way.
    void copyTo(const std::filesystem::path& copy) const {
        for (int tries = 0; tries < 1000; ++tries) {
            const std::string before = writes();
            std::filesystem::copy_file(image_, copy,
                                       std::filesystem::copy_options::overwrite_existing);
            if (!before.empty() && before == writes())
                return;
        }
        FAIL() << "the disk does not come to rest";
    }

    /// How many writes have come to the disk; nothing while one is on its way.
    std::string writes() const {
        std::istringstream words(contentsOf("/sys/block/" + name_ + "/stat"));
        std::array<std::string, 17> fields;
        for (std::string& field : fields)
            words >> field;
        // In the kernel's order: reads by four fields, writes by four, requests on their way, two
        // times, discards by four, flushes.
        return fields[8] == "0" ? fields[4] + " " + fields[6] + " " + fields[11] + " " + fields[15]
                                : "";
    }

private:
    Descriptor attach() {
        const Descriptor control(::open("/dev/loop-control", O_RDWR | O_CLOEXEC));
        const Descriptor backing(::open(image_.c_str(), O_RDWR | O_CLOEXEC));
        loop_config config{};
        config.fd = static_cast<__u32>(backing.get());
        config.info.lo_flags = LO_FLAGS_AUTOCLEAR;
        // Another process may take the free one first.
        for (int tries = 0; tries < 100; ++tries) {
            const int number = ::ioctl(control.get(), LOOP_CTL_GET_FREE);
            if (number < 0)
                break;
            name_ = "loop" + std::to_string(number);
            device_ = "/dev/" + name_;
            Descriptor device(::open(device_.c_str(), O_RDWR | O_CLOEXEC));
            if (device.isOpen() && ::ioctl(device.get(), LOOP_CONFIGURE, &config) == 0)
                return device;
        }
        return {};
    }

    std::filesystem::path image_;
    std::filesystem::path folder_;
    std::string name_;
    std::string device_;
    bool isMounted_ = false;
};

} // namespace dubrix
