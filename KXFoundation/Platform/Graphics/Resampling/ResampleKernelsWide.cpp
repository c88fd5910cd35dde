// SPDX-License-Identifier: MIT

// Compiled for machines that have AVX2, and called on those only.
#if defined(__x86_64__)

#include <KXFoundation/Platform/Graphics/Resampling/ResampleLoops.inl>

namespace kx {

const ResampleKernels kWideResampleKernels = ResampleLoops<Lanes256>::kKernels;

}  // namespace kx

#endif
