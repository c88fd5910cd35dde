// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Services/Photos/PhotoIndex.h>

namespace kx {

/// The files of the photo library below the pictures folder, where they lie among the user's own. A file
/// comes in under a name of its own that nobody else uses, and gets the name that people see when the library
/// knows it: what is discarded was never another's. Private to Services; any thread.
class PhotoFiles {
  public:
    PhotoFiles(std::shared_ptr<FileSystem> files, std::string root)
        : files_(std::move(files)), root_(std::move(root)) {}

    [[nodiscard]] std::string pathOf(const PhotoPlace& place) const;

    /// A name to come in under.
    [[nodiscard]] static std::string incomingName();
    /// Whether the place is one in the pictures folder or in a folder of it.
    [[nodiscard]] static bool isInside(const PhotoPlace& place);

    /// What is in the folder; nothing if it is missing.
    Result<std::unordered_set<std::string>> namesIn(const std::string& folder);
    enum class Found : std::uint8_t { Nothing, Folder, Other };
    Result<Found> look(const std::string& folder);
    /// Makes the folder, durably, if it is missing.
    Result<void> makeFolder(const std::string& folder);

    /// Copies a file into an incoming place, durably but for its name; see sync(). Unsupported for what is no
    /// file.
    Result<void> copyInto(const PhotoPlace& incoming, const std::string& from);
    /// Gives the incoming file its name; false if another file has that. Nothing is ever replaced but an
    /// empty file. Where there is no incoming file it has its name already.
    Result<bool> giveName(const PhotoPlace& incoming, const std::string& name);
    /// Removes an incoming file, if it is there, and nothing else.
    Result<void> discard(const PhotoPlace& incoming);
    /// Removes the folder if it is there and empty.
    Result<void> removeFolder(const std::string& folder);
    /// Makes the names in the folder durable; none is needed where the folder is missing.
    Result<void> sync(const std::string& folder);

  private:
    Result<bool> reserve(const std::string& path);

    std::shared_ptr<FileSystem> files_;
    std::string root_;
};

}  // namespace kx
