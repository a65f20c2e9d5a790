// The platform of runs without a desktop: messages on standard error, a clipboard in memory.
#pragma once

#include <iostream>

#include "app/platform.h"

namespace zolt {

class HeadlessPlatform : public Platform {
public:
    HeadlessPlatform(std::ostream& out = std::cout, std::ostream& err = std::cerr)
        : out_(out), err_(err) {}

    // Writes "caption: text", counts it and takes the default answer: nobody is there to choose.
    MessageAnswer messageBox(std::string_view caption, std::string_view text,
                             MessageButtons buttons) override;
    std::string clipboardText() override { return clipboard_; }
    void setClipboardText(std::string_view text) override { clipboard_ = text; }
    void beep() override {}
    // Prints the path: the user opens it themselves.
    void openWithSystem(const std::string& path) override;
    // Message boxes shown so far: each one reports a failure to somebody who is not there.
    size_t messagesShown() const { return messagesShown_; }
    // The last one as "caption: text"; empty before the first.
    const std::string& lastMessage() const { return lastMessage_; }

private:
    std::ostream& out_;
    std::ostream& err_;
    std::string clipboard_;
    size_t messagesShown_ = 0;
    std::string lastMessage_;
};

}  // namespace zolt
