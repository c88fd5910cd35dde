// SPDX-License-Identifier: MIT

#include <cstring>
#include <string>
#include <vector>

#include <netdb.h>
#include <netinet/in.h>

#include <KXFoundation/Platform/Services/HostLookup.h>

namespace kx {

namespace {

constexpr std::size_t kLongestName = 253;          // RFC 1035
constexpr std::size_t kMostScratch = 1024 * 1024;  // a host with more addresses than this holds is none

/// The name as C knows it; Missing for a text that no host can have.
Result<std::string> hostName(std::string_view name) {
    if (name.empty() || name.size() > kLongestName || name.find('\0') != name.npos)
        return Error{ErrorKind::Missing, 0, "host look-up"};
    return std::string(name);
}

}  // namespace

Result<IPv4Address> lookUpHost(std::string_view name) {
    const auto host = hostName(name);
    if (!host) return host.error();
    // Not getaddrinfo: it sorts the list by what this machine can reach, and the first of the list as the
    // name service gives it is wanted.
    hostent entry{};
    hostent* found = nullptr;
    int failure = 0;
    std::vector<char> scratch(1024);
    while (::gethostbyname2_r(host->c_str(), AF_INET, &entry, scratch.data(), scratch.size(), &found,
                              &failure) == ERANGE &&
           scratch.size() < kMostScratch)
        scratch.resize(scratch.size() * 4);
    IPv4Address address;
    if (!found || !found->h_addr_list[0] || found->h_length != static_cast<int>(address.bytes.size()))
        return Error{ErrorKind::Missing, 0, "host " + *host};
    std::memcpy(address.bytes.data(), found->h_addr_list[0], address.bytes.size());
    return address;
}

}  // namespace kx
