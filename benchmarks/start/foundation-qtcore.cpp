// SPDX-License-Identifier: MIT

// One object of Qt Core, made and named.
#include <QObject>
#include <cstdio>

int main() {
    QObject object;
    object.setObjectName(QStringLiteral("harbour"));
    std::puts(object.objectName().toUtf8().constData());
}
