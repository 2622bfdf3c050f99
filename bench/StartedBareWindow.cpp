// SPDX-License-Identifier: GPL-3.0-or-later
// started-bare-window: nothing but a Qt window of the editor's size.
#include "bench/StartWatch.h"

#include <QtWidgets/QApplication>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.resize(470, 465);
    const StartWatch watch(&window, [] { return true; });
    window.show();
    return QApplication::exec();
}
