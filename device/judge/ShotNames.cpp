#include "device/judge/ShotNames.h"

#include "driver/script/ScriptStep.h"

namespace dubrix {

void ShotNames::read(std::string_view script) {
    while (const auto line = lines_.take(script))
        takeLine(*line);
}

void ShotNames::finish() {
    takeLine(lines_.finish());
}

void ShotNames::add(std::string name) {
    // What a name costs beside its bytes.
    constexpr std::size_t overhead = 64;
    const std::size_t cost = name.size() + overhead;
    // No system call takes a name with a zero byte as it is.
    if (cost > mostBytes - bytes_ || name.find('\0') != std::string::npos)
        return;
    if (names_.insert(std::move(name)).second)
        bytes_ += cost;
}

void ShotNames::takeLine(const RecordReader::Record& line) {
    if (!line.bytes)
        return;
    ScriptLine parsed = parseScriptLine(*line.bytes);
    if (parsed.step && parsed.step->verb == ScriptStep::Verb::Shot)
        add(std::move(parsed.step->target));
}

} // namespace dubrix
