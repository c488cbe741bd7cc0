#include "driver/script/ScriptReader.h"
#include "driver/script/ScriptStep.h"
#include "fuzzers/Mutation.h"

#include <array>
#include <charconv>
#include <sys/mman.h>
#include <unistd.h>

namespace dubrix::fuzz {

namespace {

const char* nameOf(ScriptStep::Verb verb) {
    switch (verb) {
    case ScriptStep::Verb::Tap:
        return "tap";
    case ScriptStep::Verb::Type:
        return "type";
    case ScriptStep::Verb::Wait:
        return "wait";
    case ScriptStep::Verb::Gone:
        return "gone";
    case ScriptStep::Verb::Hold:
        return "hold";
    case ScriptStep::Verb::Drop:
        return "drop";
    case ScriptStep::Verb::Expect:
        return "expect";
    case ScriptStep::Verb::Absent:
        return "absent";
    case ScriptStep::Verb::Shot:
        return "shot";
    }
    require(false, "a step has one of the verbs");
    return "";
}

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (char character : text) {
        if (character == '"' || character == '\\')
            result += '\\';
        if (character == '\n')
            result += "\\n";
        else
            result += character;
    }
    return result + '"';
}

std::string spelled(const ScriptStep& step) {
    std::string line = std::string(nameOf(step.verb)) + " " + quoted(step.target);
    if (step.verb == ScriptStep::Verb::Type)
        line += " " + quoted(step.text);
    if (!step.waits())
        return line;
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), step.seconds);
    return line + " " + std::string(digits.data(), end.ptr);
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

void tryText(const std::string& text) {
    const ScriptLine read = parseScriptLine("type \"a field\" " + quoted(text));
    require(read.step && read.step->target == "a field" && read.step->text == text,
            "every text can be typed");
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
    tryText(std::string(bytes));
    while (true) {
        const std::size_t end = bytes.find('\n');
        tryLine(std::string(bytes.substr(0, end)));
        if (end == std::string_view::npos)
            return;
        bytes.remove_prefix(end + 1);
    }
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

/// Moves and doubles whole lines.
std::string restructured(const std::string& bytes, Random& random) {
    std::vector<std::string> lines(1);
    for (char character : bytes) {
        if (character == '\n')
            lines.emplace_back();
        else
            lines.back() += character;
    }
    std::swap(anyOf(lines, random), anyOf(lines, random));
    if (once(2, random))
        lines.push_back(withChangedBytes(anyOf(lines, random), random));
    else
        anyOf(lines, random) = anyOf(vocabulary(), random) + anyOf(lines, random);
    std::string joined = lines.front();
    for (std::size_t index = 1; index < lines.size(); ++index)
        joined += "\n" + lines[index];
    return joined;
}

} // namespace dubrix::fuzz
