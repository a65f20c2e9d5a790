#include "io/bruker/bruker_pulse_program.h"

namespace zolt {

bool pulseProgramArraysSecondAxis(std::string_view pulseProgram) {
    const size_t go = pulseProgram.find("go=2");
    if (go == std::string_view::npos) return false;
    std::string_view body = pulseProgram.substr(go);
    body = body.substr(0, body.find("exit"));
    bool arrayed = false;
    for (size_t i = 0; i < body.size(); ++i) {
        const char c = body[i];
        if (c == '0' && i >= 2) {
            const std::string_view pair = body.substr(i - 2, 2);
            if (pair == "id" || pair == "in" || pair == "ip" || pair == "iu" || pair == "rd" ||
                pair == "dd" || pair == "dp")
                return false;
        }
        if (c == 'i' && i + 2 < body.size() && body[i + 1] == 'v' &&
            (body[i + 2] == 'd' || body[i + 2] == 'c'))
            arrayed = true;
    }
    return arrayed;
}

uint8_t quadratureModeFromName(std::string_view name) {
    name = name.substr(0, name.find('.'));
    if (name.size() < 2) return 1;
    const std::string_view tail = name.substr(name.size() - 2);
    if (tail == "sh") return 4;
    if (tail == "tp") return 3;
    if (tail == "st") return 5;
    if (tail == "gs" && name.find("cosy") == std::string_view::npos) return 6;
    return 1;
}

bool isInadequate(std::string_view name) {
    return name.starts_with("inad");
}

}  // namespace zolt
