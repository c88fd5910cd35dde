#pragma once

namespace kx {

/// Where the lines of a text stand. Natural follows the writing direction of the text itself.
enum class NSTextAlignment { Left, Center, Right, Justified, Natural };

}  // namespace kx
