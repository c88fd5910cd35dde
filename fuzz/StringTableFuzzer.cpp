// SPDX-License-Identifier: MIT

#include <cstdint>
#include <cstdlib>
#include <string>

#include <KXFoundation/Platform/Foundation/StringTable.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string contents(reinterpret_cast<const char*>(data), size);
    const kx::StringTable table(contents);
    if (table.faults().count == 0 && table.faults().firstLine != 0) std::abort();
    (void)table.lookUp(contents);

    // Whatever follows, an entry that is complete is there.
    const kx::StringTable after("\"a probe\" = \"\";\n" + contents);
    if (!after.lookUp("a probe")) std::abort();
    return 0;
}
