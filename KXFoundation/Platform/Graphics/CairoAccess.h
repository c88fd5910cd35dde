// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Runtime/Export.h>

/// The native handle of a graphics context, for applications that draw with Cairo themselves.
typedef struct _cairo cairo_t;

namespace kx {

class GraphicsContext;

/// Valid as long as the context. Leave its saved states balanced.
[[nodiscard]] KX_EXPORT cairo_t* cairoHandle(GraphicsContext& context) noexcept;

}  // namespace kx
