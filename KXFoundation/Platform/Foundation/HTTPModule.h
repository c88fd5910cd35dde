// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

/// The table between the library and its module for HTTPS (Modules/CurlModule.cpp): plain data and C
/// functions, as the module links no code of ours.
namespace kx {

enum class HTTPOutcome : std::int32_t {
    Answered,     ///< headers and body are whole, whatever the status
    Cancelled,    ///< by cancel(), or because `take` wanted no more
    TimedOut,     ///< not done within the time given
    TooLarge,     ///< more header bytes than any honest server sends
    Unreachable,  ///< no such host, or nobody listens
    Untrusted,    ///< the server's certificate is not good for its name, or its signer is not trusted
    NotAllowed,   ///< an address or redirect that is not HTTPS, or too many redirects
    Failed,       ///< anything else
};

struct HTTPModuleRequest {
    const char* address;
    const char* proxy;            ///< "" for none
    const char* noProxy;          ///< hosts that are reached without it, separated by commas
    const char* certificateFile;  ///< trusted signers in place of the system's, PEM; null for the system's
    std::uint32_t timeoutMilliseconds;  ///< for the whole transfer
    std::uint32_t mostRedirects;
    /// Takes the next piece of the body; false ends the transfer.
    bool (*take)(void* context, const char* bytes, std::size_t count);
    void* context;  ///< handed to take()
};

struct HTTPModuleAnswer {
    HTTPOutcome outcome;
    std::int32_t status;  ///< of the last answer; 0 if none came
    char reason[256];     ///< for a person; zero-terminated
};

struct HTTPTransfer;

struct HTTPModule {
    static constexpr std::uint32_t kVersion = 1;

    std::uint32_t version;
    /// The library behind the module and its version.
    const char* (*description)();
    /// What the request points to is copied; null if memory is lacking.
    HTTPTransfer* (*open)(const HTTPModuleRequest* request);
    /// Runs the transfer on the calling thread to its end.
    void (*run)(HTTPTransfer* transfer, HTTPModuleAnswer* answer);
    /// Has run() return soon, or at once if it is yet to come. Any thread, until close().
    void (*cancel)(HTTPTransfer* transfer);
    void (*close)(HTTPTransfer* transfer);
};

}  // namespace kx
