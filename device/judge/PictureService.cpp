#include "device/judge/Ending.h"
#include "device/judge/PictureFile.h"
#include "device/judge/Services.h"
#include "device/judge/Streams.h"

#include <array>
#include <cstdio>
#include <sys/stat.h>

namespace dubrix {

namespace {

constexpr int pictureDescriptor = 3;
constexpr int answerDescriptor = 4;
constexpr std::size_t longestScriptFile = std::size_t{16} << 20;

bool isFile(int descriptor) {
    struct stat status{};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// The script on its way to the window. What a piece of it asks for is known before the window gets
/// that piece.
class ScriptRelay {
public:
    explicit ScriptRelay(ShotNames& names) : names_(names), window_(STDOUT_FILENO) {}

    void read() {
        const std::string bytes = readPiece(STDIN_FILENO);
        names_.read(bytes);
        window_.add(bytes);
        size_ += bytes.size();
        if (!bytes.empty())
            return;
        ended_ = true;
        names_.finish();
    }
    void handOn() {
        window_.flow();
        closeAtEnd();
    }
    void closeAtEnd() {
        if (ended_ && window_.isEmpty() && window_.isOpen())
            window_.close();
    }
    /// A file may be changed from the device while the window plays it: it is read before. False
    /// when it is too long for that.
    bool readFile() {
        while (!ended_ && size_ <= longestScriptFile)
            read();
        return ended_;
    }
    /// Read on only while the window takes it.
    int source() const {
        return !ended_ && window_.isOpen() && window_.isEmpty() ? STDIN_FILENO : -1;
    }
    int target() const { return window_.descriptor(); }

private:
    ShotNames& names_;
    Outflow window_;
    std::size_t size_ = 0;
    bool ended_ = false;
};

void takePicturesUntilTheirEnd(Ending& ending, ScriptRelay& script, PictureReader& pictures) {
    Outflow answers(answerDescriptor);
    answers.add("ready\n");
    while (true) {
        script.closeAtEnd();
        std::array ready = {pollfd{.fd = script.source(), .events = POLLIN, .revents = 0},
                            pollfd{.fd = script.target(), .events = POLLOUT, .revents = 0},
                            pollfd{.fd = answers.isEmpty() ? pictureDescriptor : -1,
                                   .events = POLLIN,
                                   .revents = 0},
                            pollfd{.fd = answers.descriptor(), .events = POLLOUT, .revents = 0}};
        if (!ending.wait(ready))
            return;
        if (ready[0].revents != 0)
            script.read();
        if (ready[1].revents != 0)
            script.handOn();
        if (ready[2].revents != 0) {
            const std::string bytes = readPiece(pictureDescriptor);
            if (bytes.empty())
                return;
            for (const std::string& answer : pictures.read(bytes))
                answers.add(answer + "\n");
        }
        if (ready[3].revents != 0)
            answers.flow();
    }
}

} // namespace

int takePictures(pid_t launcher, const std::string& also) {
    Ending ending(launcher);
    ShotNames names;
    if (!also.empty())
        names.add(also);
    ScriptRelay script(names);
    if (isFile(STDIN_FILENO) && !script.readFile()) {
        std::fprintf(stderr, "dubrix: a script's file may have 16 MiB at most\n");
        return 2;
    }
    PictureFile file;
    PictureReader pictures(names, file);
    takePicturesUntilTheirEnd(ending, script, pictures);
    return 0;
}

} // namespace dubrix
