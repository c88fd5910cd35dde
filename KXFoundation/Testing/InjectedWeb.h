// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Foundation/URLLoader.h>

namespace kx::testing {

/// A web that answers as the test says and remembers what it was asked for: ScopedPort<URLLoader> scope(web).
/// Any thread.
class KX_EXPORT InjectedWeb final : public URLLoader {
  public:
    /// The answer of each address that has none of its own.
    explicit InjectedWeb(Result<URLAnswer> answer = Error{ErrorKind::Missing, 0, "InjectedWeb"});
    ~InjectedWeb() override;

    void setAnswer(const std::string& address, Result<URLAnswer> answer);
    /// From now on no loading ends, unless it is cancelled.
    void hold();
    /// Those that wait end, and so does every later one.
    void release();
    /// The addresses, the latest last.
    [[nodiscard]] std::vector<std::string> asked() const;

    Result<std::unique_ptr<URLLoading>> open(const std::string& address) override;

  private:
    struct State;
    class Loading;
    std::shared_ptr<State> state_;
};

}  // namespace kx::testing
