// Reads the system's zone files through cctz. Of their bytes nothing is read by code of ours.
#include <cctz/time_zone.h>
#include <sys/stat.h>

#include <KXFoundation/Platform/Foundation/ZoneRules.h>
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

bool isFile(const std::string& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool isZoneFile(const std::string& name) {
    if (name.starts_with('/')) return isName(name.substr(1)) && isFile(name);
    const auto folder = Environment::slot().current().variable("TZDIR").value_or("/usr/share/zoneinfo");
    return isName(name) && isFile(folder + '/' + name);
}

std::int64_t secondsOf(Seconds time) {
    return time.time_since_epoch().count();
}

std::vector<ZoneRules::Span> spansOf(const cctz::time_zone& zone) {
    std::vector<ZoneRules::Span> spans{{0, zone.lookup(Seconds::min()).offset}};
    cctz::time_zone::civil_transition change;
    for (Seconds at = Seconds::min(); spans.size() < kMostChanges && zone.next_transition(at, &change);) {
        at = zone.lookup(change.to).trans;
        const std::int32_t offset = zone.lookup(at).offset;
        if (secondsOf(at) > kLastKept) break;
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
