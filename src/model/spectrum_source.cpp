#include "model/spectrum_source.h"

#include "model/spectrum_matrix.h"

namespace zolt {

const char* numberTypeName(NumberType t) {
    switch (t) {
        case NumberType::Long:
            return "long";
        case NumberType::Short:
            return "short";
        case NumberType::Float:
            return "float";
        case NumberType::Bits24:
            return "24 bits";
        case NumberType::Double:
            return "double";
        case NumberType::AsciiSqueezed:
            return "ASCII Squeezed Difference Form";
        case NumberType::Text:
            return "text";
        case NumberType::XEasy16:
            return "XEasy 16-bits coding";
        case NumberType::InMemory:
            return "memory";
        case NumberType::NoData:
            return "none";
        case NumberType::SpinSystem:
            return "spin system";
    }
    return "long";
}

const std::vector<SourceFlagName>& sourceFlagNames() {
    using namespace source_flags;
    static const std::vector<SourceFlagName> names = {
        {kLittleEndian, "little endian"},
        {kLooseNativeFile, "loose native file"},
        {kMagnitude, "magnitude"},
        {kRealOnly, "real only"},
        {kInterleaved, "interleaved"},
        {kVarianBinary, "Varian binary"},
        {kBlockMatrix, "block matrix"},
        {kComplexConjugate, "complex conjugate"},
        {kVaxFloats, "VAX floats"},
        {kNmrPipeComplex, "NMRPipe complex data"},
        {kRanceKay, "Rance-Kay pre-processing"},
        {kDosy, "DOSY representation"},
        {kJeolDelta2DPhaseSensitive, "Jeol Delta 2-D ph-sens."},
    };
    return names;
}

int countDimensions(const SpectrumSource& s) {
    if (s.numberType == NumberType::SpinSystem) return 1;
    int n = 0;
    for (int f = 1; f <= 3; ++f) n += countsAsDimension(s.dims[f]) ? 1 : 0;
    return n;
}

int directFIndex(const SpectrumSource& s) {
    return directFIndex(s.dims);
}

uint32_t normalisedFlags(uint32_t flags) {
    using namespace source_flags;
    if (flags & kInterleaved) return flags & ~(kRealOnly | kComplexConjugate);
    if (flags & kRealOnly) return flags & ~kComplexConjugate;
    return flags;
}

}  // namespace zolt
