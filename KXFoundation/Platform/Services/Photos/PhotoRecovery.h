// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Services/Photos/PhotoFiles.h>
#include <KXFoundation/Platform/Services/Photos/PhotoIndex.h>

namespace kx {

/// Takes back what changes made that did not get to hold, and gives the files of those that do their names;
/// as far as it can, the first failure is answered. Nobody else may be making a change.
Result<void> recoverPhotos(PhotoIndex& index, PhotoFiles& photos);

}  // namespace kx
