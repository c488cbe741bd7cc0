#include "network/CurlDownloader.h"
#include "tests/support/LoopbackServer.h"
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
    const auto send = [sent](std::size_t offset, httplib::DataSink& sink) {
        const std::string part(std::min<std::size_t>(sent - offset, 1000), 'x');
        return !part.empty() && sink.write(part.data(), part.size());
    };
    if (lengthTold)
        response.set_content_provider(
            size, "text/plain", [send](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                return send(offset, sink);
            });
    else
        response.set_chunked_content_provider(
            "text/plain", [send, sent, size](std::size_t offset, httplib::DataSink& sink) {
                if (offset < sent)
                    return send(offset, sink);
                if (sent == size)
                    sink.done();
                return sent == size;
            });
}

class CurlDownloaderTest : public testing::Test {
protected:
    CurlDownloaderTest() {
        server.Get("/whole", [](const Request&, Response& response) {
            response.set_content(std::string("one\0two\r\n", 9), "application/octet-stream");
        });
        server.Get("/empty", [](const Request&, Response&) {});
        server.Get(R"(/status/(\d+))", [](const Request& request, Response& response) {
            response.status = std::stoi(request.matches[1]);
            response.set_content("an error page", "text/html");
        });
        server.Get(R"(/hops/(\d+))", [](const Request& request, Response& response) {
            const int left = std::stoi(request.matches[1]);
            response.set_redirect(left == 1 ? "/whole" : "/hops/" + std::to_string(left - 1));
        });
        server.Get("/loop",
                   [](const Request&, Response& response) { response.set_redirect("/loop"); });
        server.Get("/to-file", [](const Request&, Response& response) {
            response.set_redirect("file:///etc/hostname");
        });
        server.Get(R"(/part/(\d+)/(\d+)/(\w+))", [](const Request& request, Response& response) {
            answerInPart(response, std::stoul(request.matches[1]), std::stoul(request.matches[2]),
                         request.matches[3] == "told");
        });
        server.Get("/silent", [this](const Request&, Response&) { server.holdBack(); });
        server.start();
    }

    LoopbackServer server;
    CurlDownloader downloader = impatientDownloader();
};

TEST_F(CurlDownloaderTest, GivesTheWholeBodyOrNothing) {
    const std::string whole("one\0two\r\n", 9);
    const struct {
        const char* path;
        std::optional<std::string> expected;
    } cases[] = {
        {"/whole", whole},
        {"/empty", ""},
        {"/status/404", std::nullopt},
        {"/status/500", std::nullopt},
        {"/hops/5", whole},
        {"/hops/6", std::nullopt},
        {"/loop", std::nullopt},
        {"/to-file", std::nullopt},
        {"/part/100000/100000/told", std::string(bodyLimit, 'x')},
        {"/part/100001/100001/told", std::nullopt},
        {"/part/100000/100000/untold", std::string(bodyLimit, 'x')},
        {"/part/100001/100001/untold", std::nullopt},
        {"/part/20000/10000/told", std::nullopt},
        {"/part/20000/10000/untold", std::nullopt},
        {"/silent", std::nullopt},
    };
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(downloader.dataWithContentsOfURL(server.address(path)), expected) << path;
}

TEST_F(CurlDownloaderTest, RefusesWhatIsNoWebAddress) {
    TemporaryFolder folder;
    putFile(folder / "file", "secret");
    for (const std::string& address :
         {std::string(), std::string("nonsense"), "file://" + (folder / "file").string(),
          std::string("http://127.0.0.1:1/"), "ftp" + server.address("/whole").substr(4),
          server.address("/whole") + std::string("\0.example.org", 13)})
        EXPECT_FALSE(downloader.dataWithContentsOfURL(address)) << address;
}

TEST(CurlDownloaderCertificateTest, RefusesAServerThatNobodyVouchesFor) {
    TemporaryFolder folder;
    const std::string key = folder / "key.pem";
    const std::string certificate = folder / "certificate.pem";
    const std::string make = "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=127.0.0.1"
                             " -addext subjectAltName=IP:127.0.0.1 -keyout " +
                             key + " -out " + certificate + " 2>/dev/null";
    if (std::system(make.c_str()) != 0)
        GTEST_SKIP() << "openssl makes no certificate here";
    LoopbackServerOf<httplib::SSLServer> server(certificate.c_str(), key.c_str());
    server.Get("/", [](const Request&, Response& response) {
        response.set_content("body", "text/plain");
    });
    server.start();
    CurlDownloader downloader = impatientDownloader();
    EXPECT_FALSE(downloader.dataWithContentsOfURL(server.address("/", "https")));
    httplib::SSLClient trusting("127.0.0.1", server.port());
    trusting.enable_server_certificate_verification(false);
    const auto answer = trusting.Get("/");
    EXPECT_TRUE(answer && answer->body == "body") << "the server itself works";
}

} // namespace
} // namespace dubrix
