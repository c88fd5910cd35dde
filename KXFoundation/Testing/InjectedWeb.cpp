// SPDX-License-Identifier: MIT

#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <utility>

#include <KXFoundation/Testing/InjectedWeb.h>

namespace kx::testing {

/// Shared with the loadings, which may outlive the web.
struct InjectedWeb::State {
    explicit State(Result<URLAnswer> any) : answer(std::move(any)) {}

    std::mutex mutex;  // guards all below
    std::condition_variable changed;
    Result<URLAnswer> answer;
    std::map<std::string, Result<URLAnswer>> answers;
    std::vector<std::string> asked;
    bool holds = false;
};

class InjectedWeb::Loading final : public URLLoading {
  public:
    Loading(std::shared_ptr<State> state, std::string address)
        : state_(std::move(state)), address_(std::move(address)) {}

    Result<URLAnswer> run() override {
        std::unique_lock lock(state_->mutex);
        state_->changed.wait(lock, [&] { return isCancelled_ || !state_->holds; });
        if (isCancelled_) return Error::fromErrno(ECANCELED, address_);
        const auto found = state_->answers.find(address_);
        return found == state_->answers.end() ? state_->answer : found->second;
    }
    void cancel() override {
        const std::lock_guard lock(state_->mutex);
        isCancelled_ = true;
        state_->changed.notify_all();
    }

  private:
    const std::shared_ptr<State> state_;
    const std::string address_;
    bool isCancelled_ = false;  // guarded by the state's mutex
};

InjectedWeb::InjectedWeb(Result<URLAnswer> answer) : state_(std::make_shared<State>(std::move(answer))) {}
InjectedWeb::~InjectedWeb() = default;

void InjectedWeb::setAnswer(const std::string& address, Result<URLAnswer> answer) {
    const std::lock_guard lock(state_->mutex);
    state_->answers.insert_or_assign(address, std::move(answer));
}

void InjectedWeb::hold() {
    const std::lock_guard lock(state_->mutex);
    state_->holds = true;
}

void InjectedWeb::release() {
    const std::lock_guard lock(state_->mutex);
    state_->holds = false;
    state_->changed.notify_all();
}

std::vector<std::string> InjectedWeb::asked() const {
    const std::lock_guard lock(state_->mutex);
    return state_->asked;
}

Result<std::unique_ptr<URLLoading>> InjectedWeb::open(const std::string& address) {
    const std::lock_guard lock(state_->mutex);
    state_->asked.push_back(address);
    return std::unique_ptr<URLLoading>(std::make_unique<Loading>(state_, address));
}

}  // namespace kx::testing
