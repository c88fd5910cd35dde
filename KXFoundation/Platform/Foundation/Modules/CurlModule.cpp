// SPDX-License-Identifier: MIT

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include <curl/curl.h>
#include <dlfcn.h>

#include <KXFoundation/Platform/Foundation/HTTPModule.h>
#include <KXFoundation/Platform/Runtime/Module.h>

namespace kx {

struct HTTPTransfer {
    template <auto Release>
    struct Releases {
        void operator()(auto* object) const { Release(object); }
    };
    std::unique_ptr<CURLM, Releases<curl_multi_cleanup>> multi{curl_multi_init()};
    std::unique_ptr<CURL, Releases<curl_easy_cleanup>> easy{curl_easy_init()};  // goes first
    HTTPModuleRequest request{};
    std::size_t headerBytes = 0;
    std::atomic<bool> cancelled{false};
    char reason[CURL_ERROR_SIZE]{};
};

namespace {

/// curl 7.88 keeps every header of an answer, however many a server sends.
constexpr std::size_t kMostHeaderBytes = std::size_t{256} << 10;

std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* context) {
    const auto& request = static_cast<HTTPTransfer*>(context)->request;
    return request.take(request.context, bytes, size * count) ? size * count : CURL_WRITEFUNC_ERROR;
}

std::size_t takeHeader(char*, std::size_t size, std::size_t count, void* context) {
    std::size_t& total = static_cast<HTTPTransfer*>(context)->headerBytes;
    total += size * count;
    return total > kMostHeaderBytes ? CURL_WRITEFUNC_ERROR : size * count;
}

bool configure(HTTPTransfer& transfer, const HTTPModuleRequest& request) {
    CURL* easy = transfer.easy.get();
    bool accepted = true;
    const auto set = [&](CURLoption option, auto value) {
        accepted = accepted && curl_easy_setopt(easy, option, value) == CURLE_OK;
    };
    set(CURLOPT_URL, request.address);
    set(CURLOPT_PROTOCOLS_STR, "https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, static_cast<long>(request.mostRedirects));
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(request.timeoutMilliseconds));
    set(CURLOPT_PROXY, request.proxy);
    set(CURLOPT_NOPROXY, request.noProxy);
    set(CURLOPT_ACCEPT_ENCODING, "");
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L);  // a cancelled transfer does not wait for the name service
    set(CURLOPT_WRITEFUNCTION, takeBody);
    set(CURLOPT_WRITEDATA, &transfer);
    set(CURLOPT_HEADERFUNCTION, takeHeader);
    set(CURLOPT_HEADERDATA, &transfer);
    set(CURLOPT_ERRORBUFFER, transfer.reason);
    if (request.certificateFile) {
        set(CURLOPT_CAINFO, request.certificateFile);
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    return accepted;
}

HTTPTransfer* open(const HTTPModuleRequest* request) {
    auto transfer = std::make_unique<HTTPTransfer>();
    if (!transfer->multi || !transfer->easy || !configure(*transfer, *request)) return nullptr;
    transfer->request.take = request->take;
    transfer->request.context = request->context;
    return transfer.release();
}

HTTPOutcome outcomeOf(CURLcode code, const HTTPTransfer& transfer) {
    switch (code) {
        case CURLE_OK:
            return HTTPOutcome::Answered;
        case CURLE_OPERATION_TIMEDOUT:
            return HTTPOutcome::TimedOut;
        case CURLE_WRITE_ERROR:
            return transfer.headerBytes > kMostHeaderBytes ? HTTPOutcome::TooLarge : HTTPOutcome::Cancelled;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
        case CURLE_COULDNT_CONNECT:
            return HTTPOutcome::Unreachable;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
            return HTTPOutcome::Untrusted;
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_URL_MALFORMAT:
        case CURLE_TOO_MANY_REDIRECTS:
            return HTTPOutcome::NotAllowed;
        default:
            return HTTPOutcome::Failed;
    }
}

/// Works until the transfer is over; its result, CURLE_ABORTED_BY_CALLBACK if it was cancelled.
CURLcode perform(HTTPTransfer& transfer) {
    CURLM* multi = transfer.multi.get();
    while (!transfer.cancelled) {
        int running = 0;
        if (curl_multi_perform(multi, &running) != CURLM_OK) return CURLE_FAILED_INIT;
        int left = 0;
        const CURLMsg* message = curl_multi_info_read(multi, &left);
        if (message && message->msg == CURLMSG_DONE) return message->data.result;
        // Woken by cancel() and by the transfer's own time-out; the time here is never waited for in vain.
        if (curl_multi_poll(multi, nullptr, 0, 60'000, nullptr) != CURLM_OK) return CURLE_FAILED_INIT;
    }
    return CURLE_ABORTED_BY_CALLBACK;
}

void run(HTTPTransfer* transfer, HTTPModuleAnswer* answer) {
    CURL* easy = transfer->easy.get();
    const bool isAdded = curl_multi_add_handle(transfer->multi.get(), easy) == CURLM_OK;
    const CURLcode code = isAdded ? perform(*transfer) : CURLE_FAILED_INIT;
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    curl_multi_remove_handle(transfer->multi.get(), easy);
    answer->outcome = transfer->cancelled ? HTTPOutcome::Cancelled : outcomeOf(code, *transfer);
    answer->status = static_cast<std::int32_t>(status);
    const char* reason = *transfer->reason ? transfer->reason : curl_easy_strerror(code);
    std::snprintf(answer->reason, sizeof answer->reason, "%s", reason);
}

void cancel(HTTPTransfer* transfer) {
    transfer->cancelled = true;
    curl_multi_wakeup(transfer->multi.get());
}

void close(HTTPTransfer* transfer) {
    delete transfer;
}

constexpr HTTPModule kModule{
    .version = HTTPModule::kVersion,
    .description = []() -> const char* { return curl_version(); },
    .open = open,
    .run = run,
    .cancel = cancel,
    .close = close,
};

/// OpenSSL frees at exit what loadings that are still under way on other threads go on using. It offers to
/// leave that out (OPENSSL_init_crypto(3), OPENSSL_INIT_NO_ATEXIT) to who asks first; looked up, for curl may
/// be built over another library.
void keepTlsUntilTheEnd() {
    constexpr std::uint64_t kNoAtExit = 0x00080000;
    using Init = int (*)(std::uint64_t options, const void* settings);
    if (const auto init = reinterpret_cast<Init>(dlsym(RTLD_DEFAULT, "OPENSSL_init_crypto"))) {
        init(kNoAtExit, nullptr);
    }
}

}  // namespace

}  // namespace kx

/// The library opens a module once and under a lock, which is what curl asks for here.
extern "C" __attribute__((visibility("default"))) const void* kxModule(const kx::ModuleHost* host) {
    kx::keepTlsUntilTheEnd();
    if (curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK) return &kx::kModule;
    host->log("HTTPS: curl cannot be set up");
    return nullptr;
}
