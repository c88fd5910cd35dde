// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <limits>

#include <KXFoundation/Platform/Foundation/CurlURLLoader.h>
#include <KXFoundation/Platform/Foundation/HTTPModule.h>
#include <KXFoundation/Platform/Foundation/ProxySettings.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Module.h>

namespace kx {

namespace {

std::string firstVariable(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (auto value = Environment::slot().current().variable(name)) return *std::move(value);
    }
    return {};
}

ErrorKind kindOf(HTTPOutcome outcome) {
    switch (outcome) {
        case HTTPOutcome::TimedOut:
            return ErrorKind::TimedOut;
        case HTTPOutcome::TooLarge:
            return ErrorKind::TooLarge;
        case HTTPOutcome::Unreachable:
            return ErrorKind::Missing;
        case HTTPOutcome::Untrusted:
        case HTTPOutcome::NotAllowed:
            return ErrorKind::Denied;
        default:
            return ErrorKind::Failed;
    }
}

class CurlLoading final : public URLLoading {
  public:
    CurlLoading(const HTTPModule& module, std::string address, std::uint64_t mostBytes)
        : module_(module), address_(std::move(address)), mostBytes_(mostBytes) {}
    ~CurlLoading() override {
        if (transfer_) module_.close(transfer_);
    }

    bool open(const URLLimits& limits, const std::string& certificateFile);
    Result<URLAnswer> run() override;
    void cancel() override { module_.cancel(transfer_); }

  private:
    static bool take(void* self, const char* bytes, std::size_t count);

    const HTTPModule& module_;
    const std::string address_;
    const std::uint64_t mostBytes_;
    HTTPTransfer* transfer_ = nullptr;
    std::string body_;
    bool isTooLarge_ = false;
};

bool CurlLoading::take(void* self, const char* bytes, std::size_t count) {
    auto& loading = *static_cast<CurlLoading*>(self);
    loading.isTooLarge_ = count > loading.mostBytes_ - loading.body_.size();
    if (!loading.isTooLarge_) loading.body_.append(bytes, count);
    return !loading.isTooLarge_;
}

bool CurlLoading::open(const URLLimits& limits, const std::string& certificateFile) {
    std::string proxy = firstVariable({"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"});
    if (proxy.empty()) proxy = ProxySettings::slot().current().proxyFor(address_);
    const std::string noProxy = firstVariable({"no_proxy", "NO_PROXY"});
    const auto time =
        std::clamp<std::int64_t>(limits.time.count(), 1, std::numeric_limits<std::int32_t>::max());
    const HTTPModuleRequest request{
        .address = address_.c_str(),
        .proxy = proxy.c_str(),
        .noProxy = noProxy.c_str(),
        .certificateFile = certificateFile.empty() ? nullptr : certificateFile.c_str(),
        .timeoutMilliseconds = static_cast<std::uint32_t>(time),
        .mostRedirects = limits.redirects,
        .take = take,
        .context = this,
    };
    transfer_ = module_.open(&request);
    return transfer_ != nullptr;
}

Result<URLAnswer> CurlLoading::run() {
    HTTPModuleAnswer answer{};
    module_.run(transfer_, &answer);
    if (answer.outcome == HTTPOutcome::Answered) return URLAnswer{answer.status, std::move(body_)};
    if (isTooLarge_) return Error{ErrorKind::TooLarge, 0, address_};
    if (answer.outcome == HTTPOutcome::Cancelled) return Error::fromErrno(ECANCELED, address_);
    return Error{kindOf(answer.outcome), 0, address_ + ": " + answer.reason};
}

}  // namespace

const HTTPModule* httpModule() {
    const auto module = openModule<HTTPModule>("curl");
    return module ? *module : nullptr;
}

CurlURLLoader::CurlURLLoader(URLLimits limits, std::string certificateFile)
    : limits_(limits), certificateFile_(std::move(certificateFile)) {}

Result<std::unique_ptr<URLLoading>> CurlURLLoader::open(const std::string& address) {
    const HTTPModule* module = httpModule();
    if (!module) return Error{ErrorKind::Unsupported, 0, "HTTPS"};
    auto loading = std::make_unique<CurlLoading>(*module, address, limits_.bodyBytes);
    if (!loading->open(limits_, certificateFile_)) return Error{ErrorKind::Unsupported, 0, address};
    return std::unique_ptr<URLLoading>(std::move(loading));
}

PortSlot<URLLoader>& URLLoader::slot() {
    static constinit PortSlot<URLLoader> slot;
    return slot;
}

std::shared_ptr<URLLoader> URLLoader::makeDefault() {
    return std::make_shared<CurlURLLoader>();
}

}  // namespace kx
