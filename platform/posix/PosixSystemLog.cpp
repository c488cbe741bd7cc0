#include "platform/posix/PosixSystemLog.h"

#include <iostream>
#include <syslog.h>

namespace dubrix {

void PosixSystemLog::log(const std::string& text) {
    ::syslog(LOG_USER | LOG_INFO, "%s", text.c_str());
    std::cerr << text + "\n";
}

} // namespace dubrix
