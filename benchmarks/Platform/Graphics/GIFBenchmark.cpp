// SPDX-License-Identifier: MIT

// gif/<workload>/<who>: every frame composited into one reused, warm frame, on one thread.
// gif-first-frame/large/<who>: from the bytes to the first finished frame.
// gif-two-threads/large/<who>: as gif, while a background thread unpacks ahead (wall time).
//
// The workloads are made by make_gifs.sh into the folder KX_GIF_WORKLOADS.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <KXFoundation/Platform/Graphics/GIF/GIFAheadDecoder.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>

#include "benchmarks/peers/gif_peers.h"

namespace {

using kx::peers::GIFPicture;
using kx::peers::GIFSink;
using Bytes = std::vector<std::uint8_t>;
using Decode = int (*)(std::span<const std::uint8_t>, Bytes&, const GIFSink&);

kx::GIFPixels pixelsIn(Bytes& scratch, std::uint32_t width, std::uint32_t height) {
    scratch.resize(std::size_t{width} * height * 4);
    return {scratch.data(), std::size_t{width} * 4};
}

int withKX(std::span<const std::uint8_t> file, Bytes& scratch, const GIFSink& sink) {
    auto decoder = kx::GIFDecoder::open(file);
    if (!decoder) return -1;
    const kx::GIFPixels pixels = pixelsIn(scratch, decoder->width(), decoder->height());
    int frames = 0;
    for (auto frame = decoder->next(pixels); frame && *frame; frame = decoder->next(pixels)) {
        ++frames;
        if (!sink({decoder->width(), decoder->height(), scratch})) break;
    }
    return frames;
}

int withTwoThreads(std::span<const std::uint8_t> file, Bytes& scratch, const GIFSink& sink) {
    const auto reader = kx::GIFReader::open(file);
    if (!reader) return -1;
    const kx::GIFPixels pixels = pixelsIn(scratch, reader->width(), reader->height());
    kx::GIFAheadDecoder decoder(std::make_shared<const kx::GIFContents>(reader->contents()), reader->width(),
                                reader->height());
    while (decoder.next(pixels)) sink({reader->width(), reader->height(), scratch});
    return static_cast<int>(decoder.position());
}

Bytes read(const std::string& name) {
    std::ifstream in(std::string(KX_GIF_WORKLOADS "/") + name + ".gif", std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "no workload %s/%s.gif: run make_gifs.sh\n", KX_GIF_WORKLOADS, name.c_str());
        std::exit(1);
    }
    return {std::istreambuf_iterator<char>(in), {}};
}

// All frames as one digest; what is invisible counts as zero.
std::uint64_t digest(Decode decode, const Bytes& file) {
    std::uint64_t sum = 0;
    Bytes scratch;
    decode(file, scratch, [&](const GIFPicture& picture) {
        for (std::size_t i = 0; i < picture.bytes.size(); i += 4) {
            std::uint32_t pixel;
            std::memcpy(&pixel, picture.bytes.data() + i, 4);
            sum = (sum ^ (pixel >> 24 == 0 ? 0 : pixel)) * 0x100000001B3;
        }
        return true;
    });
    return sum;
}

struct Contender {
    const char* name;
    Decode decode;
};

void add(const std::string& workload, const Contender& contender, const Bytes& file, bool firstOnly,
         bool wallTime) {
    auto* const run = benchmark::RegisterBenchmark(
        (workload + "/" + contender.name).c_str(), [=, &file](benchmark::State& state) {
            Bytes scratch;
            const GIFSink sink = [firstOnly](const GIFPicture& picture) {
                benchmark::DoNotOptimize(picture.bytes.data());
                return !firstOnly;
            };
            contender.decode(file, scratch, sink);
            for (auto _ : state) contender.decode(file, scratch, sink);
        });
    run->Unit(benchmark::kMicrosecond);
    if (wallTime) run->UseRealTime();
}

void requireEqualFrames(const std::string& name, const Contender& contender, const Bytes& file,
                        std::uint64_t wanted) {
    if (digest(contender.decode, file) == wanted) return;
    std::fprintf(stderr, "%s: %s has other pixels\n", name.c_str(), contender.name);
    std::exit(1);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const Contender contenders[] = {
        {"kx", withKX}, {"ffmpeg", kx::peers::gifWithFFmpeg}, {"giflib", kx::peers::gifWithGiflib}};
    const Contender threads[] = {{"kx", withTwoThreads}, {"kx-one-thread", withKX}};

    static const std::string names[] = {"photo", "clip", "large", "icon"};
    static Bytes files[std::size(names)];
    for (std::size_t i = 0; i < std::size(names); ++i) {
        files[i] = read(names[i]);
        const std::uint64_t wanted = digest(withKX, files[i]);
        for (const Contender& contender : contenders) {
            requireEqualFrames(names[i], contender, files[i], wanted);
            add("gif/" + names[i], contender, files[i], false, false);
            if (names[i] == "large") add("gif-first-frame/large", contender, files[i], true, false);
        }
        if (names[i] != "large") continue;
        for (const Contender& contender : threads) {
            requireEqualFrames(names[i], contender, files[i], wanted);
            add("gif-two-threads/large", contender, files[i], false, true);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
