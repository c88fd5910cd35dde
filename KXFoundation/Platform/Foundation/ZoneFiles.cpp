// SPDX-License-Identifier: MIT

// Reads the system's zone files through cctz, once their headers promise no more than there is.
#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <span>

#include <cctz/time_zone.h>
#include <sys/stat.h>

#include <KXFoundation/Platform/Foundation/ZoneRules.h>
#include <KXFoundation/Platform/Runtime/BigEndian.h>
#include <KXFoundation/Platform/Runtime/Environment.h>

namespace kx {

namespace {

using Seconds = cctz::time_point<cctz::seconds>;

constexpr std::size_t kLongestName = 255;
constexpr std::size_t kMostChanges = 4'000;
// cctz lays a rule without an end out for 400 years. No file lists changes for that long.
constexpr std::int64_t kNoListedChangeAfter = 7'258'118'400;  // 2200-01-01

// The tables are as long as the time between first and last change, which a hostile file could make endless.
constexpr std::int64_t kFirstKept = -8'520'336'000;  // 1700-01-01, before any town set its clocks by rule
constexpr std::int64_t kLastKept =
    kNoListedChangeAfter + 12'622'780'800;  // 400 years, after which rules repeat

/// No name leads out of the folder of zones, and each zone has one name only, so that what is kept per name
/// (here and in cctz) stays small.
bool isName(const std::string& name) {
    if (name.empty() || name.size() > kLongestName || name.find('\0') != name.npos) return false;
    const std::string bounded = '/' + name + '/';
    return bounded.find("//") == bounded.npos && bounded.find("/./") == bounded.npos &&
           bounded.find("/../") == bounded.npos;
}

constexpr std::uint64_t kHeaderSize = 44;
constexpr std::size_t kVersionAt = 4, kCountsAt = 20;

/// The header of a block of rules (RFC 8536, section 3.1).
class Header {
  public:
    static std::optional<Header> read(std::istream& file, std::uint64_t at) {
        Header header;
        file.seekg(static_cast<std::streamoff>(at)).read(header.bytes_.data(), kHeaderSize);
        return file ? std::optional(header) : std::nullopt;
    }
    [[nodiscard]] bool isFirstOfTwo() const { return bytes_[kVersionAt] != '\0'; }
    /// Of the block, by the size of the times in it.
    [[nodiscard]] std::uint64_t size(std::uint64_t timeSize) const {
        const std::uint64_t flags = count(0) + count(1), leaps = count(2), times = count(3);
        const std::uint64_t types = count(4), letters = count(5);
        return kHeaderSize + times * (timeSize + 1) + types * 6 + letters + leaps * (timeSize + 4) + flags;
    }

  private:
    [[nodiscard]] std::uint64_t count(std::size_t which) const {
        return bigEndian(std::as_bytes(std::span(bytes_)).subspan(kCountsAt + 4 * which, 4));
    }
    std::array<char, kHeaderSize> bytes_;
};

/// cctz makes room for all that a header promises before it reads it, which were gigabytes of a small file.
bool isFile(const std::string& path) {
    struct stat info;
    if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    std::ifstream file(path, std::ios::binary);
    const auto first = Header::read(file, 0);
    if (!first) return false;
    std::uint64_t size = first->size(4);
    if (first->isFirstOfTwo()) {
        const auto second = Header::read(file, size);
        if (!second) return false;
        size += second->size(8);
    }
    return size <= static_cast<std::uint64_t>(info.st_size);
}

bool isZoneFile(const std::string& name) {
    if (name.starts_with('/')) return isName(name.substr(1)) && isFile(name);
    const auto folder = Environment::slot().current().variable("TZDIR").value_or("/usr/share/zoneinfo");
    return isName(name) && isFile(folder + '/' + name);
}

std::int64_t secondsOf(Seconds time) {
    return time.time_since_epoch().count();
}

/// When the clocks that were `offset` seconds east of UTC showed that time. Never looked up in the zone: what
/// cctz makes of a damaged file may answer an earlier change, again and again.
Seconds instantOf(const cctz::civil_second& shown, std::int32_t offset) {
    constexpr std::int64_t kBeyond = std::int64_t{1} << 60;
    const std::int64_t seconds = secondsOf(cctz::convert(shown, cctz::utc_time_zone()));
    return Seconds(cctz::seconds(std::clamp(seconds, -kBeyond, kBeyond) - offset));
}

std::vector<ZoneRules::Span> spansOf(const cctz::time_zone& zone) {
    std::int32_t offset = zone.lookup(Seconds::min()).offset;
    std::vector<ZoneRules::Span> spans{{0, offset}};
    cctz::time_zone::civil_transition change;
    for (Seconds at = Seconds::min(); spans.size() < kMostChanges && zone.next_transition(at, &change);) {
        const Seconds next = instantOf(change.from, offset);
        if (next <= at || secondsOf(next) > kLastKept) break;
        at = next;
        offset = zone.lookup(at).offset;
        if (secondsOf(at) < kFirstKept) {
            spans.front().offset = offset;
            continue;
        }
        if (offset != spans.back().offset) spans.push_back({secondsOf(at), offset});
    }
    return spans;
}

}  // namespace

std::shared_ptr<const ZoneRules> ZoneRules::load(const std::string& name) {
    cctz::time_zone zone;
    if (!isZoneFile(name) || !cctz::load_time_zone(name, &zone)) return nullptr;
    const auto spans = spansOf(zone);
    return std::make_shared<ZoneRules>(spans, spans.back().from > kNoListedChangeAfter);
}

}  // namespace kx
