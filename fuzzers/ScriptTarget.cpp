#include "driver/script/ScriptReader.h"
#include "driver/script/ScriptStep.h"
#include "fuzzers/Target.h"

#include <array>
#include <sys/mman.h>
#include <unistd.h>

namespace dubrix::fuzz {

namespace {

/// In the order of ScriptStep::Verb.
constexpr std::array names = {"tap",    "type", "wait", "gone", "expect",
                              "absent", "shot", "hold", "drop"};

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text)
        if (character == '\n')
            result += "\\n";
        else
            (result += character == '"' || character == '\\' ? "\\" : "") += character;
    return result + '"';
}

std::string spelled(const ScriptStep& step) {
    std::string line =
        std::string(names.at(static_cast<std::size_t>(step.verb))) + " " + quoted(step.target);
    if (step.verb == ScriptStep::Verb::Type)
        line += " " + quoted(step.text);
    if (!step.waits())
        return line;
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), " %.17g", step.seconds);
    return line + digits.data();
}

void tryLine(const std::string& line) {
    const ScriptLine read = parseScriptLine(line);
    require(!read.step || read.error.empty(), "a line is a step or a mistake, not both");
    if (!read.step)
        return;
    const ScriptStep& step = *read.step;
    require(!step.target.empty(), "every step has something to work on");
    require(step.seconds >= 0 && step.seconds <= 3600, "no wait is longer than an hour");
    const ScriptLine again = parseScriptLine(spelled(step));
    require(again.step && again.step->verb == step.verb && again.step->target == step.target &&
                again.step->text == step.text && again.step->seconds == step.seconds,
            "a step spelled out is the same step");
}

std::string readFromFile(std::string_view bytes) {
    const int file = ::memfd_create("script", MFD_CLOEXEC);
    require(::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) &&
                ::lseek(file, 0, SEEK_SET) == 0,
            "the script can be handed over");
    std::string all;
    const char* separator = "";
    for (ScriptReader reader(file); !reader.atEnd();)
        while (const auto line = reader.nextLine()) {
            all.append(separator).append(*line);
            separator = "\n";
        }
    ::close(file);
    return all;
}

} // namespace

void tryInput(std::string_view bytes) {
    require(readFromFile(bytes) == bytes, "the lines are the script");
    tryLine("type \"a field\" " + quoted(std::string(bytes)));
    eachLine(bytes, [](std::string_view line) { tryLine(std::string(line)); });
}

std::vector<std::string> seeds() {
    return {
        "# a comment\n\n  tap Duplicate\r\nwait \"Duplicates: 0\"\nshot question.png\n",
        "type Name My App\ntype \"App Name\" \"two\\nlines \\\"quoted\\\" \\\\\"\n",
        "wait All done. 60\nwait \"All done.\" 0.5\nwait 7\nexpect a \"b\" c\nabsent -\n",
        "tap\ntap \"open\nwait x 3601\nwait \"x\" 1e2 3\nwait \"x\" nan\nleap up\ntap \"a\" b\n"};
}

const std::vector<std::string>& vocabulary() {
    static const std::vector<std::string> words = {
        "tap ", "type ",   "wait ",  "expect ", "absent ", "shot ", "\"",  "\\\"",
        "\\n",  "\\\\",    "\n",     "\r",      "\t",      " ",     "#",   " 3600",
        " 1e3", " 1e-320", " 0x1p4", " inf",    " -0",     " .5",   " 5.", "\"\""};
    return words;
}

std::string restructured(const std::string& bytes, Random& random) {
    return withMovedPieces(bytes, "\n", random);
}

} // namespace dubrix::fuzz
