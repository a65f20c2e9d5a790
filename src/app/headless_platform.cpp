#include "app/headless_platform.h"

namespace zolt {

MessageAnswer HeadlessPlatform::messageBox(std::string_view caption, std::string_view text,
                                           MessageButtons buttons) {
    lastMessage_.assign(caption).append(": ").append(text);
    err_ << lastMessage_ << '\n' << std::flush;
    ++messagesShown_;
    return defaultAnswer(buttons);
}

void HeadlessPlatform::openWithSystem(const std::string& path) {
    out_ << path << '\n';
}

}  // namespace zolt
