// Part of every program that is built with a sanitizer: what the sanitizers report and only the
// libraries can mend. In the program rather than in a file beside it, since the application runs
// where no such file is to be seen.

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" const char* __lsan_default_suppressions() {
    return
        // The software renderer of Qt Quick frees no texture of an Image: a window with one Image
        // and nothing of ours shows it.
        "leak:QSGTexture::QSGTexture\n"
        // The web engine keeps some memory to the end, and so does the font configuration.
        "leak:libQt6WebEngineCore\n"
        "leak:libqtwebview_webengine\n"
        "leak:libfontconfig\n"
        // libarchive's writer of zip archives does not free its compressor when a write has failed:
        // a full disk shows it.
        "leak:deflateInit2_\n";
}

// What was suppressed is not told: tests compare what a program says. Leaks are looked for by
// tracing, which is forbidden where system calls are filtered.
extern "C" const char* __lsan_default_options() {
    return ::syscall(SYS_prctl, PR_GET_SECCOMP) == 0 ? "print_suppressions=0" : "detect_leaks=0";
}

extern "C" const char* __tsan_default_suppressions() {
    return
        // A queued call's last owner deletes it: Qt counts the owners by atomics in code of its own
        // that the sanitizer does not see.
        "race:QMetaObject::invokeMethodImpl\n";
}
