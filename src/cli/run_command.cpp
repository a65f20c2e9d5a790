#include "cli/run_command.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "app/application.h"
#include "app/headless_platform.h"
#include "cli/headless_settings.h"
#include "platform_qt/qt_settings_store.h"

namespace zolt {

namespace {

std::optional<std::string> readText(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

}  // namespace

std::optional<RunOptions> parseRunArguments(const std::vector<std::string>& args) {
    RunOptions o;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--help" || a == "-h") {
            o.help = true;
        } else if (a == "--save") {
            o.save = true;
        } else if (a == "--auto") {
            o.automatic = true;
        } else if (a == "-e") {
            if (++i == args.size()) return std::nullopt;
            o.items.push_back({false, args[i]});
        } else if (a.starts_with("-")) {
            return std::nullopt;
        } else if (a.ends_with(".lua")) {
            o.items.push_back({true, a});
        } else {
            o.paths.push_back(a);
        }
    }
    return o;
}

int runInApplication(Application& app, const HeadlessPlatform& platform, const RunOptions& options,
                     std::ostream& out, std::ostream& err) {
    int status = 0;
    app.setLogListener([&](std::string_view line) { out << line << '\n' << std::flush; });
    for (const auto& path : options.paths)
        if (app.open(path) == 0) status = 1;
    ScriptHost& host = app.scriptHost();
    const auto run = [&](const std::string& chunk, const std::string& name) {
        const size_t shown = platform.messagesShown();
        if (!host.runChunk(chunk, name) || platform.messagesShown() != shown) status = 1;
    };
    for (const auto& item : options.items) {
        if (!item.isFile) {
            run(item.text, kInputChunkName);
            continue;
        }
        auto text = readText(item.text);
        if (!text) {
            err << "zolt-cli run: cannot read " << item.text << '\n';
            status = 1;
            continue;
        }
        const std::string name = std::filesystem::path(item.text).stem().string();
        run(*text, name);
    }
    if (options.save)
        for (SpectrumDocument* doc : app.documents())
            if (!app.save(*doc)) status = 1;
    return status;
}

int runRunCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    auto options = parseRunArguments(args);
    if (!options) {
        err << kRunUsage;
        return 2;
    }
    if (options->help) {
        out << kRunUsage;
        return 0;
    }
    HeadlessPlatform platform(out, err);
    QtSettingsStore settings;
    Application app(platform, headlessPreferences(settings, options->automatic));
    useHeadlessSettings(app, settings, options->automatic, err);
    return runInApplication(app, platform, *options, out, err);
}

}  // namespace zolt
