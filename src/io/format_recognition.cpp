#include "io/format_recognition.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "base/files.h"
#include "base/paths.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;

bool fileExists(const fs::path& p) {
    std::error_code ec;
    return fs::exists(p, ec);
}

std::string extensionOf(const fs::path& p) {
    std::string e = p.extension().string();
    return e.empty() ? e : e.substr(1);
}

bool endsWith(const std::string& s, const char* tail) {
    const size_t n = std::strlen(tail);
    return s.size() >= n && s.compare(s.size() - n, n, tail) == 0;
}

FormatCode byExtension(const std::string& ext) {
    if (ext == "tnt") return FormatCode::NtNmr;
    if (ext == "rda") return FormatCode::Siemens;
    if (ext == "txt") return FormatCode::Ascii;
    if (ext == "crvn") return FormatCode::Corvane;
    if (ext == "als" || ext == "ALS") return FormatCode::Alice;
    if (ext.rfind("GX", 0) == 0 || ext.rfind("gx", 0) == 0) return FormatCode::JeolGx;
    if (ext == "SDAT" || ext == "SPAR") return FormatCode::Philips;
    if (ext == "16" || ext == "param") return FormatCode::CaraXEasy;
    return FormatCode::Unknown;
}

// A Win-NMR data set: a base name of exactly 7 characters ending in a digit.
bool winNmrName(const fs::path& p) {
    const std::string stem = p.stem().string();
    return stem.size() == 7 && stem.back() >= '0' && stem.back() <= '9';
}

FormatCode byContent(const fs::path& p) {
    std::array<unsigned char, 48> b{};
    const std::string head = readFileHead(fromPath(p), b.size());
    const size_t n = head.size();
    std::copy(head.begin(), head.end(), b.begin());
    if (n >= 3 && b[1] == 0x84 && ((b[0] == 'G' && b[2] == 0xF5) || (b[0] == 0xF5 && b[2] == 'G')))
        return FormatCode::Aspect;
    if (n >= 12 && b[0] == 0 && b[1] == 0 && b[2] == 0 && b[3] == 0) {
        const uint32_t be =
            (uint32_t{b[8]} << 24) | (uint32_t{b[9]} << 16) | (uint32_t{b[10]} << 8) | b[11];
        if (be == 0x4016147B || be == 0x7B141640) return FormatCode::NmrPipe;
    }
    size_t s = 0;
    while (s < n && b[s] < 33) ++s;
    auto startsAt = [&](size_t at, const char* text) {
        const size_t len = std::strlen(text);
        return at + len <= n && std::memcmp(b.data() + at, text, len) == 0;
    };
    if (startsAt(s, "##TITLE=")) return FormatCode::JcampDx;
    if (startsAt(s, "SIMP")) return FormatCode::Simpson;
    if (startsAt(0, "JEOL.NMR") || startsAt(0, "RMN.LOEJ")) return FormatCode::JeolDelta;
    if (startsAt(41, "NMR")) return FormatCode::GeMedNmr;
    static const unsigned char nuts[20] = {1, 2, 3, 4, 0, 4, 0, 0, 1, 0,
                                           0, 0, 0, 0, 0, 0, 2, 0, 0, 0};
    if (n >= 20 && std::memcmp(b.data(), nuts, 20) == 0) return FormatCode::Nuts2;
    if (n >= 8) {
        const int word = (b[6] << 8) | b[7];
        if (word >= 9001 && word <= 9712) return FormatCode::MacNmr;
    }
    if (winNmrName(p)) return FormatCode::WinNmr;
    return FormatCode::Unknown;
}

}  // namespace

std::string companionDocumentPath(const std::string& path) {
    if (endsWith(path, ".spins") || endsWith(path, ".poster")) return path;
    return path + ".zolt";
}

bool isMoleculeFile(const std::string& path) {
    static const char* const extensions[] = {"mol", "MOL", "sdf", "SDF", "mol2", "cml",
                                             "pdb", "PDB", "xyz", "smi", "cdx",  "cdxml"};
    const std::string ext = extensionOf(path);
    for (const char* e : extensions)
        if (ext == e) return true;
    // A molfile without its extension: the counts line of a connection table.
    const std::string head = readFileHead(path, 4096);
    return head.find(" V2000") != std::string::npos || head.find(" V3000") != std::string::npos;
}

FormatCode recognizeFormat(const std::string& pathText, const RecognitionOptions& options) {
    const fs::path p(pathText);
    const std::string ext = extensionOf(p);
    if (ext == "zolt") return FormatCode::Zolt;
    if (ext == "cpm") return FormatCode::Clipping;
    if (ext == "spins") return FormatCode::SpinSystemDocument;
    if (ext == "poster") return FormatCode::PosterDocument;

    const fs::path folder = p.parent_path();
    if (fileExists(companionDocumentPath(pathText)) || fileExists(folder / "plist.zolt"))
        return FormatCode::Zolt;
    if (fileExists(folder / "acqus")) {
        if (options.preferProcessedDocuments && fileExists(folder / "pdata" / "1" / "plist.zolt"))
            return FormatCode::Zolt;
        return FormatCode::Bruker;
    }
    if (fileExists(folder / "procpar")) return FormatCode::Varian;
    if (fileExists(folder / "acq")) return FormatCode::Spinsight;
    if (fileExists(folder / "acqp")) return FormatCode::ParaVision;

    if (const FormatCode c = byExtension(ext); c != FormatCode::Unknown) return c;
    if (const FormatCode c = byContent(p); c != FormatCode::Unknown) return c;
    return isMoleculeFile(pathText) ? FormatCode::MoleculeFile : FormatCode::Unknown;
}

}  // namespace zolt
