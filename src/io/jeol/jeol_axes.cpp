#include "io/jeol/jeol_axes.h"

#include <cctype>
#include <cstdlib>
#include <string>

#include "io/nucleus_label.h"

namespace zolt {

namespace {

struct ElementName {
    const char* name;
    const char* symbol;
};

// The elements a Delta spectrometer names in full, lower case.
constexpr ElementName kElements[] = {
    {"proton", "H"},    {"deuterium", "H"},  {"tritium", "H"},    {"hydrogen", "H"},
    {"helium", "He"},   {"lithium", "Li"},   {"beryllium", "Be"}, {"boron", "B"},
    {"carbon", "C"},    {"nitrogen", "N"},   {"oxygen", "O"},     {"fluorine", "F"},
    {"sodium", "Na"},   {"magnesium", "Mg"}, {"aluminum", "Al"},  {"aluminium", "Al"},
    {"silicon", "Si"},  {"phosphorus", "P"}, {"sulfur", "S"},     {"chlorine", "Cl"},
    {"potassium", "K"}, {"calcium", "Ca"},   {"vanadium", "V"},   {"cobalt", "Co"},
    {"copper", "Cu"},   {"zinc", "Zn"},      {"gallium", "Ga"},   {"selenium", "Se"},
    {"bromine", "Br"},  {"rubidium", "Rb"},  {"yttrium", "Y"},    {"rhodium", "Rh"},
    {"silver", "Ag"},   {"cadmium", "Cd"},   {"tin", "Sn"},       {"tellurium", "Te"},
    {"iodine", "I"},    {"xenon", "Xe"},     {"cesium", "Cs"},    {"tungsten", "W"},
    {"platinum", "Pt"}, {"mercury", "Hg"},   {"thallium", "Tl"},  {"lead", "Pb"},
};

int fixedMass(std::string_view name) {
    if (name == "proton") return 1;
    if (name == "deuterium") return 2;
    if (name == "tritium") return 3;
    return 0;
}

}  // namespace

bool setJeolNucleus(DimensionRecord& axis, std::string_view title) {
    std::string letters;
    size_t i = 0;
    for (; i < title.size() && std::isalpha(static_cast<unsigned char>(title[i])); ++i)
        letters += static_cast<char>(std::tolower(static_cast<unsigned char>(title[i])));
    int mass = fixedMass(letters);
    for (; i < title.size() && std::isdigit(static_cast<unsigned char>(title[i])) && mass < 256;
         ++i)
        mass = mass * 10 + (title[i] - '0');
    if (letters.size() > 2) {
        for (const ElementName& e : kElements)
            if (letters == e.name && mass > 0 && mass < 256) {
                setAtom(axis, e.symbol);
                axis.isotope = static_cast<uint8_t>(mass);
                return true;
            }
        return false;
    }
    return setNucleusFromLabel(axis, title);
}

double jeolGroupDelay(std::string_view orders, std::string_view factors) {
    if (orders.empty() || !std::isdigit(static_cast<unsigned char>(orders[0]))) return 0.0;
    const size_t stages = static_cast<size_t>(orders[0] - '0');
    if (stages == 0 || factors.size() < stages || (orders.size() - 1) % stages) return 0.0;
    const size_t digits = (orders.size() - 1) / stages;
    if (digits == 0 || digits > 6) return 0.0;
    // Each stage delays by (order - 1) / 2 of its input samples: that is, divided by the
    // decimation of the stages after it, in output points.
    double delay = 0.0;
    for (size_t s = 0; s < stages; ++s) {
        const std::string order(orders.substr(1 + s * digits, digits));
        double decimation = 1.0;
        for (size_t k = s; k < stages; ++k) {
            if (!std::isdigit(static_cast<unsigned char>(factors[k]))) return 0.0;
            decimation *= factors[k] - '0';
        }
        if (decimation == 0.0 || order.find_first_not_of("0123456789") != std::string::npos)
            return 0.0;
        delay += (std::atof(order.c_str()) - 1.0) / decimation;
    }
    return delay / 2.0;
}

}  // namespace zolt
