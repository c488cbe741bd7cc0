#include "network/CurlDownloader.h"

#include <curl/curl.h>
#include <memory>

namespace dubrix {

namespace {

/// What has arrived so far and how much of it may arrive at all.
struct Body {
    std::string bytes;
    std::size_t limit;
};

std::size_t receive(char* data, std::size_t size, std::size_t count, void* target) {
    auto& body = *static_cast<Body*>(target);
    const std::size_t length = size * count;
    if (length > body.limit - body.bytes.size())
        return 0; // ends the transfer with an error
    body.bytes.append(data, length);
    return length;
}

bool startLibrary() {
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    return started == CURLE_OK;
}

bool isEncrypted(const std::string& address) {
    constexpr std::string_view scheme = "https:";
    return curl_strnequal(address.c_str(), scheme.data(), scheme.size()) != 0;
}

} // namespace

std::optional<std::string> CurlDownloader::dataWithContentsOfURL(const std::string& address) {
    if (address.find('\0') != std::string::npos || !startLibrary())
        return std::nullopt;
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> transfer(curl_easy_init(),
                                                                       &curl_easy_cleanup);
    if (!transfer)
        return std::nullopt;
    Body body{.bytes = {}, .limit = limits_.bodySize};
    bool usable = true;
    const auto set = [&transfer, &usable](CURLoption option, auto value) {
        usable = curl_easy_setopt(transfer.get(), option, value) == CURLE_OK && usable;
    };
    set(CURLOPT_URL, address.c_str());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, isEncrypted(address) ? "https" : "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, limits_.redirects);
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_FAILONERROR, 1L); // a status of 400 or more
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connecting.count()));
    set(CURLOPT_LOW_SPEED_LIMIT, 100L);
    set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits_.stalled.count()));
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(limits_.total.count()));
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits_.bodySize));
    set(CURLOPT_WRITEFUNCTION, &receive);
    set(CURLOPT_WRITEDATA, static_cast<void*>(&body));
    if (!usable || curl_easy_perform(transfer.get()) != CURLE_OK)
        return std::nullopt;
    return std::move(body.bytes);
}

} // namespace dubrix
