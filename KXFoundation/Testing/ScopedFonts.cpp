// SPDX-License-Identifier: MIT

#include <filesystem>
#include <memory>

#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/ScopedFonts.h>

namespace kx::testing {

namespace {

namespace fs = std::filesystem;

/// Links to the files, in a folder of their own.
Result<void> gather(const std::vector<std::string>& files, const fs::path& folder) {
    Result<void> outcome;
    for (const std::string& file : files) {
        std::error_code error;
        if (!fs::exists(file, error)) {
            outcome = Error{ErrorKind::Missing, 0, file};
            continue;
        }
        fs::create_symlink(fs::absolute(file), folder / fs::path(file).filename(), error);
        if (error) outcome = Error::fromErrno(error.value(), file);
    }
    return outcome;
}

std::shared_ptr<FontSource> sourceIn(const TemporaryDirectory& directory) {
    drainQueues();
    return std::make_shared<FontSource>(directory.write(
        "fonts.conf",
        "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\">"
        "<fontconfig><dir>" +
            directory / "fonts" + "</dir><cachedir>" + directory / "cache" + "</cachedir></fontconfig>"));
}

}  // namespace

ScopedFonts::ScopedFonts(const std::vector<std::string>& files)
    : outcome_(gather(files, directory_.makeDirectory("fonts"))), scope_(sourceIn(directory_)) {
    if (auto loaded = FontSource::slot().current().load(); outcome_ && !loaded) outcome_ = std::move(loaded);
}

ScopedFonts::~ScopedFonts() {
    drainQueues();
}

}  // namespace kx::testing
