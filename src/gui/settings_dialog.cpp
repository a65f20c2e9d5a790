#include "gui/settings_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/application.h"
#include "app/timed_preferences.h"

namespace zolt {

namespace {

struct SwitchLabel {
    uint32_t bit;
    const char* label;
};

// Every stored switch; automatic processing, the first, has a row of its own in the dialog.
constexpr SwitchLabel kSwitchLabels[] = {
    {pref_flags::kAutomaticProcessing, "Automatic processing"},
    {pref_flags::kAutoSaving, "Save documents automatically"},
    {pref_flags::kDoBackUp, "Keep a backup copy when saving"},
    {pref_flags::kShowPlan, "Do not replay the processing of reopened documents"},
    {pref_flags::kReadProcessedData, "Read the spectrometer's processed data"},
    {pref_flags::kPreferLP, "Prefer linear prediction"},
    {pref_flags::kDontSaveOverlays, "Do not save overlays"},
    {pref_flags::kCommaSeparatedValues, "Copy tables with commas instead of tabs"},
    {pref_flags::kCanSplitIntegrals, "Integral regions can be split"},
    {pref_flags::kDisplayTitle, "Display the title"},
    {pref_flags::kFixedSize, "Fixed size of the windows"},
    {pref_flags::kArrowsCanZoom, "Arrow keys zoom"},
    {pref_flags::kMightyMouseScrolls, "The mouse wheel scrolls"},
    {pref_flags::kRetinaDisplay, "High-resolution display"},
    {pref_flags::kDrawerSinceTheStart, "Show the drawer from the start"},
    {pref_flags::kDocNotesSinceTheStart, "Show the document notes from the start"},
    {pref_flags::kPrintFrame, "Print a frame"},
    {pref_flags::kPrintTitle, "Print the title"},
    {pref_flags::kPrintFileName, "Print the file name"},
    {pref_flags::kPrintDate, "Print the date"},
    {pref_flags::kPrintDashedLines, "Print dashed lines"},
};

const char* valueName(uint32_t bit) {
    for (const auto& f : preferenceFlagNames())
        if (f.bit == bit) return f.name;
    return "";
}

QString qs(const std::string& s) {
    return QString::fromStdString(s);
}

}  // namespace

const char* preferenceSwitchLabel(uint32_t bit) {
    for (const SwitchLabel& s : kSwitchLabels)
        if (s.bit == bit) return s.label;
    return "";
}

SettingsDialog::SettingsDialog(Application& app, SettingsStore& store, QWidget* parent)
    : QDialog(parent),
      app_(app),
      store_(store),
      shown_(lastingPreferences(app.preferences(), app.timedPreferences())) {
    setWindowTitle("Settings");
    const SettingsForm f = formFromPreferences(shown_);
    auto checkBox = [&](uint32_t bit) {
        auto* box = new QCheckBox(preferenceSwitchLabel(bit), this);
        box->setObjectName(valueName(bit));
        box->setChecked((f.flags & bit) != 0);
        switches_.emplace_back(bit, box);
        return box;
    };
    auto field = [&](const char* name, const std::string& text) {
        auto* edit = new QLineEdit(qs(text), this);
        edit->setObjectName(name);
        return edit;
    };

    auto* switchGroup = new QGroupBox("Switches", this);
    auto* grid = new QGridLayout(switchGroup);
    const int count = static_cast<int>(std::size(kSwitchLabels)) - 1;
    const int rows = (count + 1) / 2;
    for (int i = 0; i < count; ++i)
        grid->addWidget(checkBox(kSwitchLabels[i + 1].bit), i % rows, i / rows);

    auto* automatic = new QGroupBox("Automatic processing", this);
    auto* automaticLayout = new QVBoxLayout(automatic);
    automaticLayout->addWidget(checkBox(pref_flags::kAutomaticProcessing));
    auto* explanation = new QLabel(kAutomaticProcessingText, this);
    explanation->setWordWrap(true);
    automaticLayout->addWidget(explanation);
    auto* edit = new QPushButton(kEditStartupScriptText, this);
    edit->setObjectName("editStartupScript");
    edit->setAutoDefault(false);
    automaticLayout->addWidget(edit);
    connect(edit, &QPushButton::clicked, this, &SettingsDialog::editStartupScript);

    auto* fields = new QFormLayout;
    mhz_ = field("MHz", f.spectrometerMhz);
    fields->addRow("Spectrometer frequency (MHz)", mhz_);
    zeroFilling_ = field("zero-filling", f.zeroFilling);
    fields->addRow("Zero-filling factor", zeroFilling_);
    for (size_t i = 0; i < optionByteFields().size(); ++i) {
        optionBytes_.push_back(
            field(("option byte " + std::to_string(optionByteFields()[i].index)).c_str(),
                  f.optionBytes[i]));
        fields->addRow(optionByteFields()[i].label, optionBytes_.back());
    }
    fontFace_ = field("font face", f.fontFace);
    fields->addRow("Font face", fontFace_);
    fontForNotes_ = field("font for notes", f.fontForNotes);
    fields->addRow("Font for notes", fontForNotes_);
    scriptsFolder_ = field("folder of scripts", f.scriptsFolder);
    scriptsFolder_->setPlaceholderText(qs(defaultScriptsFolder()));
    fields->addRow("Folder of scripts", scriptsFolder_);
    shortcuts_ = field("console shortcuts", f.consoleShortcuts);
    shortcuts_->setToolTip("names of up to four scripts, separated by blanks");
    fields->addRow("Console shortcuts", shortcuts_);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SettingsDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(switchGroup);
    layout->addWidget(automatic);
    layout->addLayout(fields);
    layout->addWidget(buttons);
}

SettingsForm SettingsDialog::form() const {
    SettingsForm f;
    for (const auto& [bit, box] : switches_)
        if (box->isChecked()) f.flags |= bit;
    f.spectrometerMhz = mhz_->text().toStdString();
    f.zeroFilling = zeroFilling_->text().toStdString();
    for (size_t i = 0; i < optionBytes_.size(); ++i)
        f.optionBytes[i] = optionBytes_[i]->text().toStdString();
    f.fontFace = fontFace_->text().toStdString();
    f.fontForNotes = fontForNotes_->text().toStdString();
    f.scriptsFolder = scriptsFolder_->text().toStdString();
    f.consoleShortcuts = shortcuts_->text().toStdString();
    return f;
}

void SettingsDialog::accept() {
    keep(preferencesFromForm(shown_, form()));
}

void SettingsDialog::keep(const Preferences& prefs) {
    savePreferences(prefs, store_);
    // The run-time switches are the frame's, as they are now.
    const uint32_t runTime = app_.preferences().flags & pref_flags::kRunTime;
    app_.preferences() = prefs;
    app_.preferences().flags = (prefs.flags & ~pref_flags::kRunTime) | runTime;
    app_.timedPreferences() = {};
    QDialog::accept();
}

void SettingsDialog::editStartupScript() {
    Preferences prefs = preferencesFromForm(shown_, form());
    zolt::editStartupScript(prefs, app_.platform());
    keep(prefs);
}

}  // namespace zolt
