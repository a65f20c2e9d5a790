#include "gui/console_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QUrl>
#include <QVBoxLayout>
#include <optional>

#include "app/application.h"
#include "scripting/console_input.h"
#include "scripting/custom_workflow.h"

namespace zolt {

namespace {

std::optional<ConsoleKey> consoleKey(int key) {
    switch (key) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return ConsoleKey::Enter;
        case Qt::Key_Escape:
            return ConsoleKey::Escape;
        case Qt::Key_PageUp:
            return ConsoleKey::PageUp;
        case Qt::Key_PageDown:
            return ConsoleKey::PageDown;
        case Qt::Key_Up:
            return ConsoleKey::Up;
        case Qt::Key_Down:
            return ConsoleKey::Down;
        default:
            return std::nullopt;
    }
}

}  // namespace

AmplificationArrows::AmplificationArrows(QWidget* parent) : QAbstractSpinBox(parent) {
    setReadOnly(true);
    setFixedWidth(22);
    setToolTip("sets the amplification for the spectra");
}

void AmplificationArrows::stepBy(int steps) {
    emit stepped(-steps);
}

ConsoleWindow::ConsoleWindow(Application& app, QWidget* parent)
    : QDialog(parent),
      app_(app),
      log_(new QPlainTextEdit(this)),
      input_(new QLineEdit(this)),
      message_(new QLabel("--", this)),
      forAll_(new QCheckBox("for all documents", this)) {
    setWindowTitle("Console");
    setModal(false);
    setAttribute(Qt::WA_DeleteOnClose);
    log_->setReadOnly(true);
    log_->setLineWrapMode(QPlainTextEdit::NoWrap);
    // The console is for typing: the input line has the keys whenever the window has them.
    log_->setFocusPolicy(Qt::ClickFocus);
    setFocusProxy(input_);
    input_->installEventFilter(this);
    message_->setToolTip("Lua messages");
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    forAll_->setToolTip("apply processing to all windows");

    auto* run = addButton("Run", "runs the code chunk at left");
    auto* arrows = new AmplificationArrows(this);
    auto* store = addButton("store", "runs the code chunk at left");
    auto* restore =
        addButton("restore", "reloads the commands already used with the current spectrum");
    auto* copy = addButton("copy", nullptr);
    auto* help = addButton("?", nullptr);

    auto* inputRow = new QHBoxLayout;
    inputRow->addWidget(input_, 1);
    inputRow->addWidget(run);
    inputRow->addWidget(arrows);
    auto* buttonRow = new QHBoxLayout;
    for (QPushButton* b : {store, restore, copy, help}) buttonRow->addWidget(b);
    buttonRow->addStretch(1);
    buttonRow->addWidget(forAll_);
    auto* shortcutRow = new QHBoxLayout;
    for (size_t i = 0; i < shortcuts_.size(); ++i) {
        shortcuts_[i] = addButton("", nullptr);
        shortcutRow->addWidget(shortcuts_[i]);
        connect(shortcuts_[i], &QPushButton::clicked, this,
                [this, i] { act([i](ScriptHost& h) { pressShortcut(h, i); }); });
    }
    shortcutRow->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(log_, 1);
    layout->addLayout(inputRow);
    layout->addLayout(buttonRow);
    layout->addLayout(shortcutRow);
    layout->addWidget(message_);
    resize(560, 420);

    connect(run, &QPushButton::clicked, this, [this] { act(executeInputLine); });
    connect(arrows, &AmplificationArrows::stepped, this,
            [this](int delta) { act([delta](ScriptHost& h) { stepAmplification(h, delta); }); });
    connect(store, &QPushButton::clicked, this, [this] { act(storeWorkflow); });
    connect(restore, &QPushButton::clicked, this, [this] { act(restoreWorkflow, false); });
    connect(copy, &QPushButton::clicked, this, [this] { app_.setClipboardText(host().log()); });
    connect(help, &QPushButton::clicked, this,
            [] { QDesktopServices::openUrl(QUrl(kConsoleHelpUrl)); });
    connect(forAll_, &QCheckBox::toggled, this, [this](bool on) { host().setApplyToAll(on); });

    // The log follows every line appended, also while a chunk runs and when the host is
    // created now (its "Lua.init" may print).
    app_.setLogListener([this](std::string_view) { showLog(); });
    buildShortcuts();
    showHostState();
}

ConsoleWindow::~ConsoleWindow() {
    app_.setLogListener({});
}

QPushButton* ConsoleWindow::addButton(const char* text, const char* toolTip) {
    auto* button = new QPushButton(text, this);
    button->setAutoDefault(false);
    if (toolTip) button->setToolTip(toolTip);
    return button;
}

void ConsoleWindow::buildShortcuts() {
    const auto& names = host().shortcuts();
    for (size_t i = 0; i < shortcuts_.size(); ++i) {
        shortcuts_[i]->setVisible(i < names.size());
        if (i < names.size()) shortcuts_[i]->setText(QString::fromStdString(names[i]));
    }
}

ScriptHost& ConsoleWindow::host() {
    return app_.scriptHost();
}

template <class Action>
void ConsoleWindow::act(Action action, bool ran) {
    ScriptHost& h = host();
    h.setInputLine(input_->text().toStdString());
    action(h);
    showHostState();
    if (ran) emit commandsRan();
}

void ConsoleWindow::showHostState() {
    ScriptHost& h = host();
    input_->setText(QString::fromStdString(h.inputLine()));
    message_->setText(QString::fromStdString(h.messageLine()));
    const QSignalBlocker block(forAll_);
    forAll_->setChecked(h.applyToAll());
    showLog();
}

void ConsoleWindow::showLog() {
    if (!app_.hasScriptHost()) return;
    QString text = QString::fromStdString(app_.scriptHost().log());
    text.replace("\r\n", "\n");
    if (text.startsWith('\n')) text.remove(0, 1);
    log_->setPlainText(text);
    log_->verticalScrollBar()->setValue(log_->verticalScrollBar()->maximum());
}

bool ConsoleWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == input_ && event->type() == QEvent::KeyPress) {
        if (auto key = consoleKey(static_cast<QKeyEvent*>(event)->key())) {
            const bool runs = *key == ConsoleKey::Enter || *key == ConsoleKey::Escape;
            act([key](ScriptHost& h) { pressConsoleKey(h, *key); }, runs);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void ConsoleWindow::closeEvent(QCloseEvent* event) {
    app_.setLogListener({});
    app_.closeScriptHost();
    event->accept();
}

void ConsoleWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    input_->setFocus();
    if (!event->spontaneous()) emit visibilityChanged(true);
}

void ConsoleWindow::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (!event->spontaneous()) emit visibilityChanged(false);
}

}  // namespace zolt
