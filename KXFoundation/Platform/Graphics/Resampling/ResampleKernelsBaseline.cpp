// SPDX-License-Identifier: MIT

#if defined(__x86_64__)

#include <KXFoundation/Platform/Graphics/Resampling/ResampleLoops.inl>

namespace kx {

const ResampleKernels kBaselineResampleKernels = ResampleLoops<Lanes128>::kKernels;

}  // namespace kx

#endif
