#include "cli/process_command.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <utility>

#include "app/application.h"
#include "app/document_opening.h"
#include "app/headless_platform.h"
#include "base/files.h"
#include "base/paths.h"
#include "cli/headless_settings.h"
#include "io/data_set_walk.h"
#include "operations/analysis_tables.h"
#include "platform_qt/qt_settings_store.h"
#include "scripting/startup_script.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

// Scripts are text typed by people; anything larger is not one.
constexpr uintmax_t kMaxScriptBytes = uintmax_t{16} << 20;

// Absolute, without "." or ".." and without a trailing separator, so that its parent is the
// folder that holds it.
fs::path tidy(const std::string& path) {
    std::error_code ec;
    fs::path p = fs::absolute(toPath(path), ec).lexically_normal();
    if (!p.has_filename() && p.has_relative_path()) p = p.parent_path();
    return p;
}

DataSetJob jobFor(const fs::path& found, const fs::path& root, const std::string& outFolder) {
    const fs::path base = root.parent_path();
    DataSetJob job;
    job.path = fromPath(found);
    job.name = fromPath(found.lexically_relative(base));
    fs::path tables = found;
    if (!isDirectory(job.path)) {
        tables = found.parent_path();
        fs::path name = found.filename();
        // A saved document stands for the data file it names.
        if (name.extension() == ".zolt") name.replace_extension();
        job.tableStem = fromPath(name) + ".";
    }
    if (!outFolder.empty()) tables = toPath(outFolder) / tables.lexically_relative(base);
    job.tableFolder = fromPath(tables.lexically_normal());
    return job;
}

std::string elapsedText(std::chrono::steady_clock::time_point start) {
    const std::chrono::duration<double> d = std::chrono::steady_clock::now() - start;
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", d.count());
    return text;
}

struct ScriptToRun {
    std::string text, chunkName;
};

// The script given, or the start-up script of the scripts folder (written there when missing).
std::optional<ScriptToRun> scriptToRun(Application& app, const ProcessOptions& options,
                                       std::ostream& err) {
    std::string path;
    if (options.script) {
        path = *options.script;
    } else {
        const std::string folder = scriptsFolder(app.preferences());
        if (!ensureStartupScriptIn(folder)) {
            err << "zolt-cli process: no start-up script in \"" << folder << "\"\n";
            return std::nullopt;
        }
        path = fromPath(toPath(folder) / kStartupScriptFile);
    }
    auto text = readWholeFile(path, kMaxScriptBytes);
    if (!text) {
        err << "zolt-cli process: cannot read " << path << '\n';
        return std::nullopt;
    }
    return ScriptToRun{std::move(*text), fromPath(toPath(path).stem())};
}

// The failure's message, or nothing when the data set went through.
std::optional<std::string> processOne(Application& app, const HeadlessPlatform& platform,
                                      const DataSetJob& job, const ScriptToRun& script) {
    const size_t shown = platform.messagesShown();
    const auto boxShown = [&] { return platform.messagesShown() != shown; };
    Message failure;
    auto read = readDocument(job.path, app.preferences(), failure);
    if (!read) {
        app.message(failure.caption, failure.text);
        return platform.lastMessage();
    }
    SpectrumDocument& doc = app.addDocument(std::move(read));
    ScriptHost& host = app.scriptHost();
    if (!host.runChunk(script.text, script.chunkName)) return host.messageLine();
    if (boxShown() || !app.save(doc)) return platform.lastMessage();

    const bool comma = app.preferences().has(pref_flags::kCommaSeparatedValues);
    const std::pair<const char*, std::string> tables[] = {
        {"peaks.txt", peakTableText(doc, comma)},
        {"integrals.txt", integralTableText(doc, true, comma)},
    };
    std::error_code ec;
    fs::create_directories(toPath(job.tableFolder), ec);
    for (const auto& [file, text] : tables) {
        const std::string path = fromPath(toPath(job.tableFolder) / (job.tableStem + file));
        if (!writeFileReplacing(path, text)) return "cannot write " + path;
    }
    return std::nullopt;
}

void closeEveryDocument(Application& app) {
    while (SpectrumDocument* doc = app.frontDocument()) app.closeDocument(*doc);
}

}  // namespace

std::optional<ProcessOptions> parseProcessArguments(const std::vector<std::string>& args) {
    ProcessOptions o;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--help" || a == "-h") {
            o.help = true;
        } else if (a == "--script" || a == "--out") {
            if (++i == args.size()) return std::nullopt;
            (a == "--script" ? o.script.emplace() : o.outFolder) = args[i];
        } else if (a.starts_with("-")) {
            return std::nullopt;
        } else {
            o.paths.push_back(a);
        }
    }
    if (o.paths.empty() && !o.help) return std::nullopt;
    return o;
}

FoundDataSets findDataSets(const ProcessOptions& options) {
    FoundDataSets found;
    for (const std::string& path : options.paths) {
        if (!pathExists(path)) {
            found.failures.push_back(path + ": " + kMissingPathText);
            continue;
        }
        const fs::path root = tidy(path);
        if (!isDirectory(path) || isDataSetFolder(path)) {
            found.jobs.push_back(jobFor(root, root, options.outFolder));
            continue;
        }
        const size_t before = found.jobs.size();
        walkDataSets(fromPath(root), [&](const std::string& set) {
            found.jobs.push_back(jobFor(tidy(set), root, options.outFolder));
            return true;
        });
        // A batch goes in the order of the names, whatever order the folders list them in.
        std::sort(found.jobs.begin() + static_cast<std::ptrdiff_t>(before), found.jobs.end(),
                  [](const DataSetJob& a, const DataSetJob& b) { return a.path < b.path; });
        if (found.jobs.size() == before)
            found.failures.push_back(path + ": " + kNothingRecognisedCaption + ": " +
                                     kNothingRecognisedText);
    }
    return found;
}

int processInApplication(Application& app, const HeadlessPlatform& platform,
                         const ProcessOptions& options, std::ostream& out, std::ostream& err,
                         std::ostream* progress) {
    const auto script = scriptToRun(app, options, err);
    if (!script) return 1;
    FoundDataSets found = findDataSets(options);
    std::vector<std::string>& failures = found.failures;
    app.setLogListener([&](std::string_view line) { out << line << '\n' << std::flush; });
    const auto start = std::chrono::steady_clock::now();
    const size_t total = found.jobs.size();
    size_t failedSets = 0;
    for (size_t k = 0; k < total; ++k) {
        const DataSetJob& job = found.jobs[k];
        if (progress)
            *progress << k + 1 << " of " << total << ", " << job.name << ", " << elapsedText(start)
                      << '\n'
                      << std::flush;
        if (auto failure = processOne(app, platform, job, *script)) {
            failures.push_back(job.name + ": " + *failure);
            ++failedSets;
        }
        // One data set in memory at a time.
        closeEveryDocument(app);
    }
    out << total - failedSets << " of " << total << " data sets processed\n";
    for (const std::string& f : failures) out << "failed: " << f << '\n';
    return failures.empty() ? 0 : 1;
}

int runProcessCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    auto options = parseProcessArguments(args);
    if (!options) {
        err << kProcessUsage;
        return 2;
    }
    if (options->help) {
        out << kProcessUsage;
        return 0;
    }
    HeadlessPlatform platform(out, err);
    QtSettingsStore settings;
    // The script runs by itself here, not on opening: the start-up script is made sure of by
    // the command.
    Application app(platform, headlessPreferences(settings, false));
    useHeadlessSettings(app, settings, false, err);
    return processInApplication(app, platform, *options, out, err,
                                isatty(STDERR_FILENO) ? &err : nullptr);
}

}  // namespace zolt
