#include "cli/plot_command.h"

#include <iostream>
#include <sstream>

#include "app/application.h"
#include "app/headless_platform.h"
#include "cli/headless_settings.h"
#include "cli/picture_module.h"
#include "cli/run_command.h"
#include "operations/display_operations.h"
#include "platform_qt/qt_settings_store.h"

namespace zolt {

namespace {

bool parseSize(const std::string& text, int& w, int& h) {
    char x = 0;
    std::istringstream in(text);
    return (in >> w >> x >> h) && x == 'x' && in.eof() && w > 0 && h > 0 && w <= 16384 &&
           h <= 16384;
}

bool parseLevels(const std::string& text, int& positive, int& negative) {
    char comma = 0;
    std::istringstream in(text);
    return (in >> positive >> comma >> negative) && comma == ',' && in.eof() && positive >= 0 &&
           negative >= 0 && positive <= 127 && negative <= 127;
}

}  // namespace

std::optional<PlotOptions> parsePlotArguments(const std::vector<std::string>& args) {
    PlotOptions o;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool last = i + 1 == args.size();
        if (a == "--help" || a == "-h") {
            o.help = true;
        } else if (a == "--auto") {
            o.automatic = true;
        } else if (a == "--processed") {
            o.processed = true;
        } else if (a == "-e" || a == "--out" || a == "--size" || a == "--levels") {
            if (last) return std::nullopt;
            const std::string& v = args[++i];
            if (a == "-e") o.chunks.push_back(v);
            if (a == "--out") o.out = v;
            if (a == "--size" && !parseSize(v, o.width, o.height)) return std::nullopt;
            if (a == "--levels" && !parseLevels(v, o.positiveLevels, o.negativeLevels))
                return std::nullopt;
        } else if (a.starts_with("-") || !o.path.empty()) {
            return std::nullopt;
        } else {
            o.path = a;
        }
    }
    if (!o.help && (o.path.empty() || o.out.empty())) return std::nullopt;
    return o;
}

int runPlotCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    auto options = parsePlotArguments(args);
    if (!options) {
        err << kPlotUsage;
        return 2;
    }
    if (options->help) {
        out << kPlotUsage;
        return 0;
    }
    // Nothing is opened or run when the picture cannot be drawn in the end.
    const ModulePictureWriter write = pictureModule(err);
    if (!write) return 1;
    HeadlessPlatform platform(out, err);
    QtSettingsStore settings;
    Application app(platform, headlessPreferences(settings, options->automatic));
    useHeadlessSettings(app, settings, options->automatic, err);
    if (options->processed) app.preferences().flags |= pref_flags::kReadProcessedData;
    const Preferences style = app.preferences();  // drawn as the command started
    if (app.open(options->path) == 0 || !app.frontDocument()) return 1;
    SpectrumDocument& doc = *app.frontDocument();
    if (options->width) setClientSize(doc, {options->width, options->height});
    if (options->positiveLevels >= 0 && !doc.page.plots.empty()) {
        doc.page.plots[0].positiveLevels = static_cast<int8_t>(options->positiveLevels);
        doc.page.plots[0].negativeLevels = static_cast<int8_t>(options->negativeLevels);
    }
    RunOptions run;
    for (const std::string& c : options->chunks) run.items.push_back({false, c});
    int status = runInApplication(app, platform, run, out, err);
    // The chunks may have closed it or brought another to the front.
    SpectrumDocument* front = app.frontDocument();
    if (!front) return 1;
    if (!write(*front, options->out, "", style)) {
        err << "zolt-cli plot: cannot write " << options->out << '\n';
        status = 1;
    }
    return status;
}

}  // namespace zolt
