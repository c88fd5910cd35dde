// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace kx::testing {

/// A Python script that serves a test: it tells what it does in lines on its output, and ends when its input
/// ends, that is with this object.
class ScriptProcess {
  public:
    /// Starts tests/support/<script> with the arguments.
    ScriptProcess(const std::string& script, const std::vector<std::string>& arguments);
    ~ScriptProcess();
    ScriptProcess(const ScriptProcess&) = delete;
    ScriptProcess& operator=(const ScriptProcess&) = delete;

    /// Gives the script a line of input.
    void writeLine(const std::string& line);
    /// Waits for the next line; empty if the script has ended.
    std::string readLine();
    /// Waits for that very line; false if the script ends before it.
    bool waitFor(const std::string& line);

  private:
    pid_t child_ = -1;
    int input_ = -1;
    int output_ = -1;
};

}  // namespace kx::testing
