#include <cstdio>

#include <KXFoundation/Platform/Foundation/ApplicationFolder.h>

namespace kx {

std::string applicationFolder(std::string_view identifier) {
    std::string name;
    for (const char c : identifier) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && byte != 0x7F && c != '/' && c != '%' && !(c == '.' && name.empty())) {
            name.push_back(c);
            continue;
        }
        char escape[4];
        std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned>(byte));
        name += escape;
    }
    return name;
}

}  // namespace kx
