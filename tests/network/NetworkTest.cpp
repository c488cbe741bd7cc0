#include "network/CurlDownloader.h"
#include "network/NetworkServices.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/RecordedPlatform.h"
#include "tests/support/TemporaryFolder.h"

namespace dubrix {
namespace {

using httplib::Request;
using httplib::Response;

constexpr std::size_t bodyLimit = 100'000;

CurlDownloader impatientDownloader() {
    return CurlDownloader({.bodySize = bodyLimit,
                           .redirects = 5,
                           .connecting = std::chrono::milliseconds(2000),
                           .stalled = std::chrono::seconds(1),
                           .total = std::chrono::milliseconds(3000)});
}

/// Answers in `size` bytes, of which it sends `sent`, and says the length beforehand or not.
void answerInPart(Response& response, std::size_t size, std::size_t sent, bool lengthTold) {
    const auto send = [size, sent](std::size_t offset, httplib::DataSink& sink) {
        if (offset == 0)
            return sink.write(std::string(sent, 'x').data(), sent);
        if (sent == size)
            sink.done();
        return sent == size;
    };
    if (!lengthTold)
        return response.set_chunked_content_provider("text/plain", send);
    response.set_content_provider(size, "text/plain",
                                  [send](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                                      return send(offset, sink);
                                  });
}

TEST(CurlDownloader, GivesTheWholeBodyOrNothing) {
    const std::string whole("one\0two\r\n", 9);
    LoopbackServer server;
    server.Get(R"(/status/(\d+))", [&whole](const Request& request, Response& response) {
        response.status = std::stoi(request.matches[1]);
        response.set_content(whole, "application/octet-stream");
    });
    server.Get("/empty", [](const Request&, Response&) {});
    server.Get(R"(/hops/(\d+))", [](const Request& request, Response& response) {
        const int left = std::stoi(request.matches[1]);
        response.set_redirect(left == 1 ? "/status/200" : "/hops/" + std::to_string(left - 1));
    });
    server.Get("/to-file", [](const Request&, Response& response) {
        response.set_redirect("file:///etc/hostname");
    });
    server.Get(R"(/part/(\d+)/(\d+)/(\w+))", [](const Request& request, Response& response) {
        answerInPart(response, std::stoul(request.matches[1]), std::stoul(request.matches[2]),
                     request.matches[3] == "told");
    });
    server.Get("/silent", [&server](const Request&, Response&) { server.holdBack(); });
    server.start();
    CurlDownloader downloader = impatientDownloader();
    const std::pair<const char*, Text> cases[] = {
        {"/status/200", whole},
        {"/empty", ""},
        {"/status/400", {}},
        {"/hops/5", whole},
        {"/hops/6", {}},
        {"/to-file", {}},
        {"/silent", {}},
        {"/part/100000/100000/told", std::string(bodyLimit, 'x')},
        {"/part/100001/100001/told", {}},
        {"/part/100000/100000/untold", std::string(bodyLimit, 'x')},
        {"/part/100001/100001/untold", {}},
        {"/part/20000/10000/told", {}}};
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(downloader.dataWithContentsOfURL(server.address(path)), expected) << path;

    const TemporaryFolder folder;
    putFile(folder / "file", "secret");
    for (const std::string& address :
         {std::string(), std::string("nonsense"), "file://" + (folder / "file").string(),
          std::string("http://127.0.0.1:1/"), "ftp" + server.address("/empty").substr(4),
          server.address("/empty") + std::string("\0.example.org", 13)})
        EXPECT_FALSE(downloader.dataWithContentsOfURL(address)) << address;
}

TEST(CurlDownloader, RefusesAServerThatNobodyVouchesFor) {
    const TemporaryFolder folder;
    const std::string key = folder / "key.pem";
    const std::string certificate = folder / "certificate.pem";
    const std::string make = "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes "
                             "-days 2 -subj /CN=127.0.0.1"
                             " -addext subjectAltName=IP:127.0.0.1 -keyout " +
                             key + " -out " + certificate + " 2>/dev/null";
    if (std::system(make.c_str()) != 0)
        GTEST_SKIP() << "openssl makes no certificate here";
    LoopbackServerOf<httplib::SSLServer> server(certificate.c_str(), key.c_str());
    server.Get("/", [](const Request&, Response& response) {
        response.set_content("body", "text/plain");
    });
    server.start();
    EXPECT_FALSE(impatientDownloader().dataWithContentsOfURL(server.address("/", "https")));
    httplib::SSLClient trusting("127.0.0.1", server.port());
    trusting.enable_server_certificate_verification(false);
    const auto answer = trusting.Get("/");
    EXPECT_TRUE(answer && answer->body == "body") << "the server itself works";
}

TEST(NetworkServices, AnswerFromTheirModuleIfItIsThere) {
    RecordedLog log;
    NetworkServices services(NETWORK_MODULE, log);
    const std::string site = services.siteAddress();
    ASSERT_TRUE(site.starts_with("http://127.0.0.1:")) << site;
    const auto page = services.dataWithContentsOfURL(site + "/pages/dubrix-instructions.php");
    EXPECT_TRUE(page && page->ends_with("</html>\n"));
    EXPECT_EQ(log.lines, Journal());
    // Missing, no library at all, and a library that is none of ours.
    for (const char* const file : {"/none/dubrix-network.so", "/etc/passwd", "libz.so.1"}) {
        log.lines.clear();
        NetworkServices without(file, log);
        EXPECT_EQ(without.siteAddress(), "") << file;
        EXPECT_EQ(without.dataWithContentsOfURL("http://127.0.0.1/"), std::nullopt) << file;
        ASSERT_EQ(log.lines.size(), 1U) << "each says so once";
        EXPECT_TRUE(log.lines[0].starts_with("The network module cannot be loaded: "));
    }
}

} // namespace
} // namespace dubrix
