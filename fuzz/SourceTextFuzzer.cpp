// SPDX-License-Identifier: MIT

// What kx-strings reads: an application's sources and tables.
#include <algorithm>
#include <cstdlib>

#include "CppTokens.h"
#include "FormatArguments.h"
#include "InputText.h"
#include "KeyUses.h"
#include "Tables.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(kx::fuzz::textOf(data, size));
    std::size_t line = 1;
    for (const kxstrings::Token& token : kxstrings::cppTokens(text)) {
        if (token.line < line) std::abort();
        line = token.line;
    }
    if (line > 1 + static_cast<std::size_t>(std::ranges::count(text, '\n'))) std::abort();
    static_cast<void>(kxstrings::described(kxstrings::formatArguments(text)));
    kxstrings::KeyUses uses(kxstrings::libraryFunctions());
    uses.addSource("source", text);
    for (const auto& found : uses.lookedUp()) {
        if (!found.isBeginning && !uses.uses(found.key)) std::abort();
    }
    kxstrings::Findings findings;
    static_cast<void>(kxstrings::readTable("table", text, findings));
    return 0;
}
