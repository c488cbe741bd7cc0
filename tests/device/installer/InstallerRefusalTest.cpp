#include "formats/lists/PropertyList.h"
#include "tests/device/DeviceFolder.h"

namespace dubrix {

namespace {

const std::string bundle = "Payload/X.app/";
const ZipItem info{bundle + "Info.plist", infoPlist("com.example.app", "2")};

/// An archive of a good bundle and something bad.
std::string with(ZipItem item) {
    return zipOf({info, std::move(item)});
}
std::string withInfo(const std::string& bytes) {
    return zipOf({{info.name, bytes}});
}
std::string withIdentifier(const std::string& text) {
    return withInfo(infoPlist(text));
}
ZipItem link(const std::string& name, const std::string& text) {
    return {bundle + name, text, S_IFLNK | 0777};
}

struct Refusal {
    std::string archive;
    std::string reason;
};

std::vector<Refusal> refusals() {
    const std::string good = zipOf({info});
    std::string deep = bundle;
    for (int level = 0; level < 99; ++level)
        deep += "a/";
    // More than a megabyte of links, each of them sound.
    std::vector<ZipItem> manyLinks{info};
    for (int number = 0; number < 300; ++number)
        manyLinks.push_back(link(std::to_string(number), "a" + std::string(3999, '/')));
    std::string badSignature = good;
    badSignature[good.find("PK\1\2")] = 'Q';
    return {
        {"", "is not an archive"},
        {std::string(70000, 'x'), "is not an archive"},
        {good.substr(0, good.size() - 1), "is cut short"},
        {good.substr(0, good.find("PK\1\2")), "is cut short"},
        {"PK\7\10" + good.substr(0, 40), "is cut short"}, // begun as the first of several volumes
        {std::string(good).replace(good.size() - 18, 1, "\1"), "is spread over several volumes"},
        {badSignature, "is damaged"},
        {good.substr(10), "is damaged"},
        {with({bundle + "a", "secret", S_IFREG | 0644, 0, 1}), "is encrypted"},
        {zipOf({{"Payload/X/Info.plist", info.data}}), "holds no application"},
        {zipOf({{"Outer/Payload/X.app/Info.plist", info.data}}), "holds no application"},
        {zipOf({{"Payload/X.app", "a file"}}), "holds no application"},
        {zipOf({{"Payload/._X.app/Info.plist", info.data}}), "holds no application"},
        {zipOf({info, {"Payload/Y.app/", "", S_IFDIR | 0755}}), "more than one application"},
        {zipOf({{bundle + "Sub/Info.plist", info.data}}), "has no Info.plist"},
        {zipOf({{info.name + "/", "", S_IFDIR | 0755}}), "has no Info.plist"},
        {zipOf({link("Info.plist", "a"), {bundle + "a", info.data}}), "has no Info.plist"},
        {withInfo("bplist00garbage"), "has a damaged Info.plist"},
        {withInfo(PropertyList::array().xml()), "has a damaged Info.plist"},
        {withInfo("{A = B;}"), "no usable CFBundleIdentifier"},
        {withIdentifier(""), "no usable CFBundleIdentifier"},
        {withIdentifier("a/b"), "no usable CFBundleIdentifier"},
        {withIdentifier("a\nb"), "no usable CFBundleIdentifier"},
        {withIdentifier(".."), "no usable CFBundleIdentifier"},
        {withIdentifier(std::string(256, 'a')), "no usable CFBundleIdentifier"},
        {withIdentifier("-l"), "no usable CFBundleIdentifier"},
        {withIdentifier("a\u202eb"), "no usable CFBundleIdentifier"},
        {withIdentifier("com.example.settings"), "is a system application and cannot be replaced"},
        {with({"/tmp/a", ""}), "forbidden name"},
        {with({"../a", ""}), "forbidden name"},
        {with({bundle + "a/../../../a", ""}), "forbidden name"},
        {with({bundle + "..", "", S_IFDIR | 0755}), "forbidden name"},
        {with({bundle + std::string("a\0b", 3), ""}), "forbidden name"},
        {with({bundle + std::string(256, 'a'), ""}), "forbidden name"},
        {with({deep, "", S_IFDIR | 0755}), "forbidden name"},
        {zipOf({info, link("l", "d"), {bundle + "l/f", "through"}}), "below what is not a folder"},
        {zipOf({{"Payload", "..", S_IFLNK | 0777}, info}), "below what is not a folder"},
        {zipOf({info, {bundle + "a", "1"}, {bundle + "a/b", "2"}}), "below what is not a folder"},
        {zipOf({info, link("l", "../../outside")}), "leads outside"},
        {zipOf({info, link("a/b/up", "../../..")}), "leads outside"},
        {zipOf({info, link("absolute", "/etc/passwd")}), "leads outside"},
        {zipOf({info, link("around", "../X.app/file")}), "leads outside"},
        {zipOf({info, link("self", "self")}), "leads outside"},
        {zipOf({info, link("one", "two/x"), link("two", "one/x")}), "leads outside"},
        {zipOf({info, link("empty", "")}), "leads outside"},
        {zipOf({info, link("cut", std::string("a\0b", 3))}), "leads outside"},
        // Each harmless by its own words: the second climbs from where the first arrives.
        {zipOf({info, link("a/b/top", "../.."), link("out", "a/b/top/../secret")}),
         "leads outside"},
        {zipOf(manyLinks), "an absurdly large"},
        {with({bundle + "pipe", "", S_IFIFO | 0644}), "neither a file, a folder nor a link"},
        {with({info.name, infoPlist("com.example.other")}), "holds Payload/X.app/Info.plist twice"},
        {zipOf({info, {bundle + "a", "1"}, {bundle + "./a", "2"}}), "twice"},
        // Found out only while unpacking: what lies there by then must go again.
        {with({bundle + "a", "text", S_IFREG | 0644, 0, 0, 3, {}, 1}), "is damaged at"},
        {with({bundle + "a", std::string(5000, 'a'), S_IFREG | 0644, 8, 0, 3, 4999}), "is damaged"},
        {with({bundle + "a", std::string(5000, 'a'), S_IFREG | 0644, 8, 0, 3, 5001}), "is damaged"},
        {with({bundle + "a", "text", S_IFREG | 0644, 12}), "by an unknown method"},
        // Sizes that the packed bytes cannot hold.
        {with({bundle + "a", "text", S_IFREG | 0644, 0, 0, 3, 5}), "is damaged"},
        {with({bundle + "a", "text", S_IFREG | 0644, 8, 0, 3, 4000000000}), "is damaged"},
    };
}

} // namespace

TEST(InstallerRefusal, ChangesNothingAndNamesTheFile) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
    const auto before = device.snapshot();
    int number = 0;
    for (const auto& [bytes, reason] : refusals()) {
        const auto archive = device.archive("Bad.ipa", bytes);
        const auto result = device.installer().install(archive);
        ++number;
        ASSERT_FALSE(result) << number << ": " << reason;
        EXPECT_EQ(result.failure().text.rfind("Bad.ipa: ", 0), 0u) << result.failure().text;
        EXPECT_NE(result.failure().text.find(reason), std::string::npos)
            << number << ": " << result.failure().text << " instead of: " << reason;
        EXPECT_TRUE(device.snapshot() == before) << number << ": " << reason;
    }
    EXPECT_FALSE(device.installer().install(device.root()));
    EXPECT_FALSE(device.installer().install(device.root() / "missing.ipa"));
    EXPECT_TRUE(device.snapshot() == before);
}

TEST(InstallerRefusal, NamesTheFirstOfSeveralFaultsHoweverManyUnpack) {
    const DeviceFolder device;
    std::vector<ZipItem> items{info};
    for (int number = 0; number < 200; ++number)
        items.push_back({bundle + std::to_string(number), std::string(20'000, 'a')});
    items.push_back({bundle + "large", std::string(3'000'000, 'a')}); // unpacked first
    for (const std::size_t damaged : {58U, 59U, 120U, 201U})
        items[damaged].crcError = 1;
    const auto result = device.installer().install(device.archive("Bad.ipa", zipOf(items)));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.failure().text, "Bad.ipa: is damaged at 57");
    EXPECT_EQ(device.leftovers(), 0);
}

} // namespace dubrix
