#include <cstdio>
#include <string>
#include <string_view>

#include "Headless.h"

namespace {

int usage() {
    std::fputs("usage: gallery [--headless DIRECTORY] [--page NAME]\n", stderr);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    std::string directory = "build/gallery";
    std::string page;
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        if (i + 1 == argc) return usage();
        if (option == "--headless") {
            directory = argv[++i];
        } else if (option == "--page") {
            page = argv[++i];
        } else {
            return usage();
        }
    }
    return gallery::drawPages(directory, page);
}
