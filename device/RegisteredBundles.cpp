#include "device/RegisteredBundles.h"

#include "device/FileTree.h"

#include <algorithm>
#include <system_error>
#include <thread>

namespace dubrix {

namespace {

/// As many bundles must be looked at by a thread to be worth its start.
constexpr std::size_t enoughForThread = 256;
constexpr std::size_t mostThreads = 4;

/// Calls `work` for each of `bundles`, by several threads when they are many.
template<class Bundle, class Work>
void forEach(std::vector<Bundle>& bundles, Work work) {
    const std::size_t most =
        std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, mostThreads);
    const std::size_t threads = std::clamp<std::size_t>(bundles.size() / enoughForThread, 1, most);
    const auto workOn = [&](std::size_t part) {
        const std::size_t end = bundles.size() * (part + 1) / threads;
        for (std::size_t index = bundles.size() * part / threads; index < end; ++index)
            work(bundles[index]);
    };
    std::vector<std::jthread> others;
    for (std::size_t part = 1; part < threads; ++part) {
        try {
            others.emplace_back(workOn, part);
        } catch (const std::system_error&) {
            workOn(part); // the system gives no more threads
        }
    }
    workOn(0);
}

} // namespace

const std::vector<RegisteredBundles::Bundle>& RegisteredBundles::current() {
    const FileStamp::Time now = FileStamp::now();
    const FileStamp links = FileStamp::of(registry_.hostPathText(Registry::registryPath).c_str());
    const Descriptor applications =
        openFolderAt(AT_FDCWD, registry_.hostPathText(Registry::applicationPath));
    // A link that comes, goes or leads elsewhere changes the folder that it is in.
    const Look look{applications.get(), now, links != links_};
    if (look.linksChanged)
        takeNames();
    links_ = links.keptAt(now, settling_);
    forEach(bundles_, [&](Bundle& bundle) { update(bundle, look); });
    return bundles_;
}

void RegisteredBundles::takeNames() {
    std::vector<Bundle> earlier = std::exchange(bundles_, {});
    auto known = earlier.begin();
    Result<std::vector<std::string>> names = registry_.names();
    if (!names)
        return;
    for (std::string& name : *names) {
        while (known != earlier.end() && known->identifier < name)
            ++known;
        if (known != earlier.end() && known->identifier == name)
            bundles_.push_back(std::move(*known));
        else
            bundles_.push_back(
                {.identifier = std::move(name), .path = {}, .info = {}, .file = {}, .stamp = {}});
    }
}

void RegisteredBundles::update(Bundle& bundle, const Look& look) const {
    if (look.linksChanged || bundle.path.empty())
        follow(bundle);
    // The Info.plist of one that is replaced meanwhile lies elsewhere.
    for (int tries = 0; tries < Registry::mostReplacements && !bundle.path.empty(); ++tries)
        if (read(bundle, look) || !follow(bundle))
            break;
}

bool RegisteredBundles::read(Bundle& bundle, const Look& look) const {
    // Looked at before it is read: a change between the two shows at the next look.
    const FileStamp stamp = FileStamp::of(bundle.file.c_str(), look.applications);
    if (stamp == bundle.stamp)
        return bundle.info.has_value();
    bundle.stamp = stamp.keptAt(look.time, settling_);
    const std::string_view path = bundle.path;
    bundle.info = BundleInfo::readFile(registry_.hostPathText(path) + "/Info.plist",
                                       path.substr(path.rfind('/') + 1));
    return bundle.info.has_value();
}

bool RegisteredBundles::follow(Bundle& bundle) const {
    const std::string path = registry_.pathOf(bundle.identifier).value_or("");
    if (path == bundle.path)
        return false;
    bundle.file = registry_.pathBelowApplications(path) + "/Info.plist";
    bundle.path = path;
    bundle.info.reset();
    bundle.stamp = {};
    return true;
}

} // namespace dubrix
