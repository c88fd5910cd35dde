// SPDX-License-Identifier: MIT

// The program's main: FaultTests [--rounds N] [GOOGLETEST ARGUMENTS]. With --rounds it ends with the table of
// docs/reliability.md.
#include "FaultTable.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Runtime/CallerError.h>

namespace {

std::size_t rounds = 0;

std::string property(const testing::TestInfo& test, std::string_view key) {
    for (int i = 0; i < test.result()->test_property_count(); ++i) {
        const testing::TestProperty& found = test.result()->GetTestProperty(i);
        if (found.key() == key) return found.value();
    }
    return "-";
}

/// A row per fault, a column per thing. The tests come in the order of their faults.
void printTable() {
    std::string heading = "| rounds, losses |", ruler = "\n|---|", rows, fault;
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int suite = 0; suite < all.total_test_suite_count(); ++suite) {
        for (int i = 0; i < all.GetTestSuite(suite)->total_test_count(); ++i) {
            const testing::TestInfo& test = *all.GetTestSuite(suite)->GetTestInfo(i);
            if (!test.should_run()) continue;
            const std::string name = test.name();
            const std::size_t slash = name.find('/');
            if (name.substr(0, slash) != fault) {
                fault = name.substr(0, slash);
                rows += "\n| " + fault + " |";
            }
            if (rows.find('\n', 1) == std::string::npos) {
                heading += " " + name.substr(slash + 1) + " |";
                ruler += "---:|";
            }
            rows += " " + property(test, "rounds") + ", " + property(test, "losses") + " |";
        }
    }
    std::puts((heading + ruler + rows).c_str());
}

}  // namespace

std::size_t kx::askedRounds(std::size_t usual) {
    return rounds > 0 ? rounds : usual;
}

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (argc == 3 && argv[1] == std::string_view("--rounds")) rounds = std::strtoul(argv[2], nullptr, 10);
    kx::setStrictMode(true);
    const int result = RUN_ALL_TESTS();
    if (rounds > 0) printTable();
    return result;
}
