// SPDX-License-Identifier: MIT

// One layout item of Qt Widgets, made and asked.
#include <QSpacerItem>
#include <cstdio>

int main() {
    QSpacerItem item(48, 24);
    std::printf("%d\n", item.sizeHint().width());
}
