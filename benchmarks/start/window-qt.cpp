// SPDX-License-Identifier: MIT

// A window with a label, a picture and a button, drawn off the screen and written as a PNG file.
#include <QApplication>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>

#include "benchmarks/start/PeakMemory.h"

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(count, arguments);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(14);
    QApplication::setFont(font);
    QWidget window;
    window.setFixedSize(480, 376);
    QLabel label(QStringLiteral("Balloons over the harbour"), &window);
    label.setGeometry(40, 16, 400, 28);
    QLabel picture(&window);
    picture.setPixmap(QPixmap(QString::fromLocal8Bit(arguments[1])));
    picture.setGeometry(40, 60, 400, 240);
    QPushButton button(QStringLiteral("Fly with us"), &window);
    button.setGeometry(180, 324, 120, 36);
    window.show();
    const bool written = window.grab().save(QString::fromLocal8Bit(arguments[2]), "PNG");
    printPeakMemory();
    return written ? 0 : 1;
}
