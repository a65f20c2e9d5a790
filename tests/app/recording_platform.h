// A platform that records what the program shows, for tests.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/platform.h"

namespace zolt::testing {

class RecordingPlatform : public Platform {
public:
    struct Box {
        std::string caption, text;
        MessageButtons buttons;
    };

    MessageAnswer messageBox(std::string_view caption, std::string_view text,
                             MessageButtons buttons) override {
        boxes.push_back({std::string(caption), std::string(text), buttons});
        return answer.value_or(defaultAnswer(buttons));
    }
    std::string clipboardText() override { return clipboard; }
    void setClipboardText(std::string_view text) override { clipboard = text; }
    void setClipboardPropertyList(std::string_view xml) override { clipboardList = xml; }
    void beep() override { ++beeps; }
    void openWithSystem(const std::string& path) override { opened.push_back(path); }

    std::vector<Box> boxes;
    std::optional<MessageAnswer> answer;
    std::string clipboard;
    std::string clipboardList;
    int beeps = 0;
    std::vector<std::string> opened;
};

}  // namespace zolt::testing
