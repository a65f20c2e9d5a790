// What the program asks of the desktop: message boxes, the clipboard, a beep, the shell.
#pragma once

#include <string>
#include <string_view>

namespace zolt {

enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MessageAnswer { Ok, Cancel, Yes, No };

// The first button of a box is its default answer.
inline MessageAnswer defaultAnswer(MessageButtons buttons) {
    return buttons == MessageButtons::Ok || buttons == MessageButtons::OkCancel
               ? MessageAnswer::Ok
               : MessageAnswer::Yes;
}

class Platform {
public:
    virtual ~Platform() = default;
    // Modal; returns the button pressed.
    virtual MessageAnswer messageBox(std::string_view caption, std::string_view text,
                                     MessageButtons buttons = MessageButtons::Ok) = 0;
    // 8-bit text with "\r\n" line ends.
    virtual std::string clipboardText() = 0;
    virtual void setClipboardText(std::string_view text) = 0;
    // The same table as a property list (XML) under the program's private format; programs
    // without that format leave it out.
    virtual void setClipboardPropertyList(std::string_view /*xml*/) {}
    virtual void beep() = 0;
    // Opens a file with the program the system associates with it.
    virtual void openWithSystem(const std::string& path) = 0;
};

}  // namespace zolt
