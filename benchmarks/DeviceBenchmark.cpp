#include "benchmarks/BareDevice.h"
#include "benchmarks/RealPlatform.h"
#include "engine/DXShared.h"
#include "files/WholeFile.h"
#include "formats/lists/PropertyList.h"

#include <benchmark/benchmark.h>

// device_benchmark FEW MANY [OPTION…]: what the engine asks of a device, next to the bare calls
// that it takes, for a device with few applications in the folder FEW and one with many in MANY.
// Both have all hundred duplicates of the chosen application, none of them stale.

namespace dubrix {

namespace {

const std::string source = "com.example.source";

void failUnless(bool fits, benchmark::State& state) {
    if (!fits)
        state.SkipWithError("the device is not as it should be");
}

/// What is said when all numbers are taken and no duplicate is stale: then every number is asked
/// for.
bool isWholeCensus(const RealEngine& real) {
    return real.alerts.said == "No duplicates for this app";
}

/// The questions behind "Update duplicates".
void census(benchmark::State& state, const std::string& root) {
    RealEngine real(root, "");
    for (auto _ : state)
        real.engine.showUpdateAlert();
    failUnless(isWholeCensus(real), state);
}

void bareVersions(benchmark::State& state, const std::string& root) {
    const BareDevice bare(root);
    for (auto _ : state)
        failUnless(bare.readVersions(source) > 0, state);
}

void list(benchmark::State& state, const std::string& root) {
    const PosixApplicationList applications(root);
    for (auto _ : state)
        failUnless(applications.entries().size() > 100, state);
}

void bareNames(benchmark::State& state, const std::string& root) {
    const BareDevice bare(root);
    for (auto _ : state)
        failUnless(bare.readAllNames() > 100, state);
}

void settings(benchmark::State& state, const std::string& root) {
    PosixFileManager files(root);
    Silence log;
    DXShared shared(files, log);
    int number = 0;
    for (auto _ : state) {
        shared.addKey("customText", PropertyList::string(std::to_string(number++)));
        failUnless(shared.retrieveValueForKey("customText").has_value(), state);
    }
}

void bareSettings(benchmark::State& state, const std::string& root) {
    const std::string path = root + settingsFilePath;
    const std::string bytes = readWholeFile(path).value_or("");
    for (auto _ : state) {
        BareDevice::replace(path, bytes);
        failUnless(BareDevice::readText(path, "customText") > 0, state);
    }
}

void add(const std::string& name, void (*work)(benchmark::State&, const std::string&),
         const std::string& root) {
    benchmark::RegisterBenchmark(name.c_str(), work, root)
        ->Unit(benchmark::kMicrosecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}

} // namespace

} // namespace dubrix

int main(int count, char** words) {
    using namespace dubrix;
    if (count < 3)
        return 2;
    const std::string few = words[1];
    const std::string many = words[2];
    add("census/few", census, few);
    add("census/many", census, many);
    add("census/bare", bareVersions, many);
    add("list/ours", list, many);
    add("list/bare", bareNames, many);
    add("settings/ours", settings, few);
    add("settings/bare", bareSettings, few);
    words[2] = words[0];
    int left = count - 2;
    benchmark::Initialize(&left, words + 2);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
