#include "gui/about_box.h"

#include <QMessageBox>
#include <lua.hpp>

namespace zolt {

QString aboutText() {
    return QStringLiteral("Zolt " ZOLT_VERSION
                          "\nNMR spectra: processing, display and analysis\n"
                          "Scripting with " LUA_RELEASE);
}

void showAboutBox(QWidget* parent) {
    QMessageBox::about(parent, "About Zolt", aboutText());
}

}  // namespace zolt
