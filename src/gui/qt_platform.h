// The platform of the desktop program: Qt's message boxes, clipboard, beep and the shell.
#pragma once

#include <QString>

#include "app/platform.h"

class QWidget;

namespace zolt {

// The private clipboard format of the property-list tables, beside their text.
inline const QString kPropertyListMime = QStringLiteral("application/x-zolt-plist");

class QtPlatform : public Platform {
public:
    // Message boxes are modal to `parent` (the frame) when there is one.
    explicit QtPlatform(QWidget* parent = nullptr) : parent_(parent) {}
    void setParent(QWidget* parent) { parent_ = parent; }

    MessageAnswer messageBox(std::string_view caption, std::string_view text,
                             MessageButtons buttons = MessageButtons::Ok) override;
    std::string clipboardText() override;
    void setClipboardText(std::string_view text) override;
    // Joins the text of the same copy: the table leaves once, in both formats.
    void setClipboardPropertyList(std::string_view xml) override;
    void beep() override;
    void openWithSystem(const std::string& path) override;

private:
    QWidget* parent_;
};

}  // namespace zolt
