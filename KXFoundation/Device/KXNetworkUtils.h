// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Addresses of machines: MAC and IPv4 addresses as text and as numbers, and this machine's own IPv4 address,
/// netmask and gateway. Nothing fails: what cannot be read gives none, 0 or the empty text. Conversions
/// allocate nothing but their answer. No instances; any thread.
///
/// The machine's own address is that of the interface "en0" or "en1", and the gateway that of "en0". Under
/// Linux "en0" is the interface that the default route leads through and "en1" the next real one: see
/// NetworkInterfaces.h, where the literal names can be chosen.
class KX_EXPORT KXNetworkUtils {
  public:
    KXNetworkUtils() = delete;

    /// The first IPv4 address of "en0" or "en1", whichever the system lists first ("192.168.1.57").
    [[nodiscard]] static std::optional<std::string> localIP();
    /// The last IPv4 netmask of "en0" or "en1" that the system lists ("255.255.255.0").
    [[nodiscard]] static std::optional<std::string> localNetmask();
    /// The lowest address of the network of "en0", which is where gateways usually are: derived from the last
    /// address listed and its netmask, not asked for. 192.168.1.57 with 255.255.255.0 gives 192.168.1.1.
    [[nodiscard]] static std::optional<std::string> gatewayIP();
    /// The first IPv4 address of a host; an address in numbers gives itself. Waits for the look-up, which may
    /// take many seconds.
    [[nodiscard]] static std::optional<std::string> ipForDomain(std::optional<std::string_view> name);

    /// formatMACAddress with ":".
    [[nodiscard]] static std::string formatMac(std::optional<std::string_view> mac);
    /// Writes every field of a MAC text with two or more upper-case digits and `separator` in place of the
    /// one character after it: "a:b:c:d:e:f" with "-" gives "0A-0B-0C-0D-0E-0F". Any number of fields and any
    /// separating character is taken; a last one stays. A field without digits counts as 0, one above 32 bits
    /// as FFFFFFFF. Empty if the text is absent or blank. An absent separator is an empty one, here and
    /// below.
    [[nodiscard]] static std::string formatMACAddress(std::optional<std::string_view> mac,
                                                      std::optional<std::string_view> separator);
    /// The low 48 bits of `value` as six fields: 0x001122AABBCC gives "00:11:22:AA:BB:CC" with ":".
    [[nodiscard]] static std::string formatMACInteger(std::int64_t value,
                                                      std::optional<std::string_view> separator);
    /// The first six fields between ":", or without any ":" between "-", as bits 47-0; 0 if there are fewer.
    /// A field without digits counts as 0; one above FF carries into the bytes before it.
    [[nodiscard]] static std::int64_t macStringToInteger(std::optional<std::string_view> mac) noexcept;

    /// The IPv4 address in `text` as signed 32 bits, first field in bits 31-24: "10.0.0.1" gives 167772161,
    /// "192.168.1.1" gives -1062731519. Gives 0 unless exactly four fields stand between dots. A field
    /// without digits counts as 0; one above 255 carries into its left neighbour.
    [[nodiscard]] static std::int32_t ipStringToInteger(std::optional<std::string_view> text) noexcept;

    /// The current wireless network's facts, under "SSID" and "BSSID": always none on this system.
    [[nodiscard]] static std::optional<std::string> getNetworkInfoForKey(std::optional<std::string_view> key);
    /// Always none.
    [[nodiscard]] static std::optional<std::string> currentWiFiSSID();
    /// Always empty.
    [[nodiscard]] static std::string currentWiFiBSSID();
};

}  // namespace kx
