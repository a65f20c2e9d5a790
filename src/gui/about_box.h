// Help > About Zolt: the program, its version and the version of its Lua.
#pragma once

#include <QString>

class QWidget;

namespace zolt {

// "Zolt 0.1" and "Lua 5.1.5" on lines of their own.
QString aboutText();
void showAboutBox(QWidget* parent);

}  // namespace zolt
