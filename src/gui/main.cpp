// zolt: the desktop program.
#include <QApplication>

#include "gui/main_window.h"

int main(int argc, char** argv) {
    QApplication qapp(argc, argv);
    return zolt::runDesktop(qapp);
}
