#include "device/judge/Services.h"
#include "driver/script/ShotPipe.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace {

constexpr const char* usage = "Usage: dubrix-judge addresses LAUNCHER PIPE ANSWERS\n"
                              "       dubrix-judge requests LAUNCHER FOLDER VERB...\n"
                              "       dubrix-judge drive|shot LAUNCHER\n"
                              "\n"
                              "Judges what comes from windows on the device for the launcher with\n"
                              "this process id.\n";

} // namespace

int main(int count, char* words[]) {
    using namespace dubrix;
    const std::vector<std::string> arguments(words + 1, words + count);
    const std::string command = arguments.empty() ? "" : arguments[0];
    // Whatever the launcher has open at the moment must end with others and not with this process.
    const bool takesPictures = command == "drive" || command == "shot";
    ::closefrom(takesPictures ? 5 : 3);
    const pid_t launcher = arguments.size() < 2 ? 0 : std::atoi(arguments[1].c_str());
    if (launcher > 0 && command == "addresses" && arguments.size() == 4)
        return openAddresses(launcher, arguments[2], arguments[3]);
    if (launcher > 0 && command == "requests" && arguments.size() >= 3)
        return judgeRequests(launcher, arguments[2], {arguments.begin() + 3, arguments.end()});
    if (launcher > 0 && takesPictures && arguments.size() == 2)
        return takePictures(launcher, command == "drive" ? std::string(failureShot) : "");
    std::fputs(usage, stderr);
    return 2;
}
