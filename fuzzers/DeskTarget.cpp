#include "device/judge/Addresses.h"
#include "device/judge/Pictures.h"
#include "device/judge/Requests.h"
#include "device/registry/Registry.h"
#include "driver/script/ScriptStep.h"
#include "formats/text/PlainText.h"
#include "fuzzers/Target.h"

#include <algorithm>
#include <functional>
#include <set>

namespace dubrix::fuzz {

namespace {

/// Between the script and the pictures of an input.
constexpr char separator = '\x1e';

const std::vector<std::string> applicationVerbs = {"install"};
const std::vector<std::string> homeVerbs = {"install", "remove", "restore", "export", "start"};

/// Feeds `bytes` in pieces whose size `random` chooses; at once without it.
void feed(std::string_view bytes, Random* random,
          const std::function<void(std::string_view)>& take) {
    while (!bytes.empty()) {
        const std::size_t size = random ? 1 + below(64, *random) : bytes.size();
        take(bytes.substr(0, size));
        bytes.remove_prefix(std::min(size, bytes.size()));
    }
}

std::vector<DeskRequest> requestsIn(std::string_view bytes, const std::vector<std::string>& verbs,
                                    Random* random) {
    RequestReader reader(verbs);
    std::vector<DeskRequest> all;
    feed(bytes, random, [&](std::string_view piece) {
        std::ranges::move(reader.read(piece), std::back_inserter(all));
        require(reader.held() <= RequestReader::longest + 8, "an unfinished request is short");
    });
    return all;
}

void tryRequests(std::string_view bytes, Random& random) {
    const std::vector<DeskRequest> requests = requestsIn(bytes, homeVerbs, nullptr);
    require(requests == requestsIn(bytes, homeVerbs, &random), "pieces make the same requests");
    require(std::cmp_equal(requests.size(), std::ranges::count(bytes, '\0') / 2),
            "two texts make a request");
    std::vector<DeskRequest> allowed = requests;
    for (DeskRequest& request : allowed) {
        const std::string& argument = request.argument;
        const bool isIdentifier = Registry::mayBeRegistered(argument);
        require((request.verb.empty() && argument.empty()) ||
                    (request.verb == "install" && argument.starts_with('/') &&
                     argument.size() <= RequestReader::longest) ||
                    ((request.verb == "remove" || request.verb == "restore" ||
                      request.verb == "export") &&
                     isIdentifier) ||
                    (request.verb == "start" && argument.empty()),
                "what is handed on has its verb's form");
        if (request.verb != "install")
            request = {};
    }
    require(requestsIn(bytes, applicationVerbs, &random) == allowed, "a window has its own verbs");
}

void tryAddress(std::string_view address) {
    if (!mayBeOpened(address))
        return;
    const auto isPlain = [](char byte) { return byte > ' ' && byte < '\x7f'; };
    require(address.size() <= 2048 && std::ranges::all_of(address, isPlain) &&
                address.find_first_of("\"'\\`") == address.npos,
            "an address is one plain word");
    const std::string scheme = lowerCase(address.substr(0, address.find(':')));
    require(scheme == "http" || scheme == "https" || scheme == "mailto", "pages and mail only");
    if (scheme != "mailto")
        return;
    // As the most generous mail program takes it apart.
    std::string parameters(address);
    std::ranges::replace(parameters, '?', '&');
    std::size_t at = 0;
    while ((at = parameters.find('&', at)) != std::string::npos) {
        ++at;
        std::string key = parameters.substr(at, parameters.find('=', at) - at);
        for (std::size_t sign = 0; (sign = key.find('%', sign)) != std::string::npos; ++sign)
            key.replace(sign, 3, 1,
                        static_cast<char>(std::stoi(key.substr(sign + 1, 2), nullptr, 16)));
        key = lowerCase(key);
        require(key == "to" || key == "subject" || key == "body", "nothing is attached");
    }
}

struct Taken final : PictureWriter {
    std::string begin(const std::string& name) override {
        all += name;
        names.push_back(name);
        return name.size() % 7 == 0 ? "full" : "";
    }
    void write(std::string_view bytes) override { all += bytes; }
    std::string end() override { return ++ended % 5 == 0 ? "full" : ""; }

    std::vector<std::string> answers{}, names{};
    std::string all{};
    int ended = 0;
};

Taken picturesIn(std::string_view script, std::string_view pictures, Random* random) {
    Taken taken;
    ShotNames names;
    feed(script, random, [&](std::string_view piece) {
        names.read(piece);
        require(names.held() <= ShotNames::mostBytes + ShotNames::longestLine,
                "a script is bounded");
    });
    names.finish();
    PictureReader reader(names, taken);
    feed(pictures, random, [&](std::string_view piece) {
        std::ranges::move(reader.read(piece), std::back_inserter(taken.answers));
        require(reader.held() <= 2 * PictureReader::longestName, "a picture's head is short");
    });
    return taken;
}

void tryPictures(std::string_view script, std::string_view pictures, Random& random) {
    const Taken taken = picturesIn(script, pictures, nullptr);
    const Taken again = picturesIn(script, pictures, &random);
    require(taken.answers == again.answers && taken.all == again.all,
            "pieces make the same pictures");
    std::set<std::string> asked;
    eachLine(script, [&asked](std::string_view line) {
        const ScriptLine read = parseScriptLine(line);
        if (read.step && read.step->verb == ScriptStep::Verb::Shot)
            asked.insert(read.step->target);
    });
    for (const std::string& name : taken.names)
        require(asked.contains(name) && name.find('\0') == name.npos,
                "what is written stands in the script");
    for (const std::string& answer : taken.answers)
        require(!answer.empty() && answer.find('\n') == answer.npos, "an answer is one line");
}

} // namespace

void tryInput(std::string_view bytes) {
    Random random(static_cast<Random::result_type>(bytes.size()));
    tryRequests(bytes, random);
    const std::size_t middle = std::min(bytes.find(separator), bytes.size());
    tryPictures(bytes.substr(0, middle), bytes.substr(std::min(middle + 1, bytes.size())), random);
    eachLine(bytes, tryAddress);
}

std::vector<std::string> seeds() {
    using namespace std::string_literals;
    return {"install\0/home/a b/c.ipa\0remove\0com.example.a\0export\0com.example.a\0start\0\0"s,
            "export\0../..\0start\0x\0install\0x\0nonsense\0y\0"s + std::string(5000, 'z') +
                "\0\0"s,
            "https://example.org/?a=b&c=%27\nmailto:a@b?subject=x&body=one%0Atwo\n"
            "mailto:a@b?attach=/etc/passwd\nfile:///etc/passwd\n",
            "shot a.png\nshot \"b \\\"c\\\".png\"\n\x1e"
            "a.png\n4\nabcdb \"c\".png\n0\nother\n2\nxx",
            "shot a.png\x1e"
            "a.png\n-1\na.png\n3\nabc",
            "shot a.png\n\x1e"
            "a.png\n99999999999\nabc"};
}

const std::vector<std::string>& vocabulary() {
    using namespace std::string_view_literals;
    static const std::vector<std::string> words = wordsOf(
        "install\0/|remove\0|export\0|start\0\0|\0|\n|\x1e|shot |shot \"|a.png\n|1\n|536870912\n|"
        "18446744073709551616\n|https://a|http://|mailto:a|?subject=|?body=|&to=|&attach=|"
        "&cc=|&|=|%61|%0a|%0D|%27|%5c|%|#|..|-l|\\n|\\\"|\""sv);
    return words;
}

/// Among others, a piece becomes a picture that the script asks for, with the size that it has.
std::string restructured(const std::string& bytes, Random& random) {
    if (!once(4, random))
        return withMovedPieces(bytes, std::string_view("\0\n\x1e", 3), random);
    const std::string& text = anyOf(vocabulary(), random);
    return "shot " + text + "\n" + bytes + separator + text + "\n" + std::to_string(text.size()) +
           "\n" + text;
}

} // namespace dubrix::fuzz
