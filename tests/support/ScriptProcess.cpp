// SPDX-License-Identifier: MIT

#include "support/ScriptProcess.h"

#include <cerrno>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kx::testing {

ScriptProcess::ScriptProcess(const std::string& script, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {KX_TEST_PYTHON, "-B", "-u", KX_TEST_SCRIPTS "/" + script};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    int to[2];
    int from[2];
    if (::pipe2(to, O_CLOEXEC) != 0 || ::pipe2(from, O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_adddup2(&files, to[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&files, from[1], STDOUT_FILENO);
    if (::posix_spawn(&child_, words.front().c_str(), &files, nullptr, pointers.data(), environ) != 0)
        child_ = -1;
    ::posix_spawn_file_actions_destroy(&files);
    ::close(to[0]);
    ::close(from[1]);
    input_ = to[1];
    output_ = from[0];
}

ScriptProcess::~ScriptProcess() {
    ::close(input_);
    ::close(output_);
    if (child_ > 0) ::waitpid(child_, nullptr, 0);
}

void ScriptProcess::writeLine(const std::string& line) {
    const std::string text = line + '\n';
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = ::write(input_, text.data() + written, text.size() - written);
        if (count > 0) written += static_cast<std::size_t>(count);
        if (count < 0 && errno != EINTR) return;
    }
}

std::string ScriptProcess::readLine() {
    std::string line;
    char c = 0;
    while (true) {
        const ssize_t got = ::read(output_, &c, 1);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0 || c == '\n') return line;
        line += c;
    }
}

bool ScriptProcess::waitFor(const std::string& line) {
    for (std::string read = readLine(); !read.empty(); read = readLine()) {
        if (read == line) return true;
    }
    return false;
}

}  // namespace kx::testing
