// Help > About Zolt: the program, its version and the version of its Lua.
#pragma once

#include <QString>

class QWidget;

namespace zolt {

// "Zolt <version>", a line on what it does and "Scripting with Lua 5.1.x".
QString aboutText();
void showAboutBox(QWidget* parent);

}  // namespace zolt
