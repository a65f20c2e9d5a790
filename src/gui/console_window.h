// The console: a modeless window over the script host's console. The keys and buttons hand over
// to the console's functions (scripting/console_input, custom_workflow); the window shows what
// they leave in the host: the log, the message line and the input line.
#pragma once

#include <QAbstractSpinBox>
#include <QDialog>
#include <array>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace zolt {

class Application;
class ScriptHost;

inline constexpr const char* kConsoleHelpUrl = "https://zolt.app/help/commands.html";

// The up-down arrows of the amplification: no value of their own, only steps.
class AmplificationArrows : public QAbstractSpinBox {
    Q_OBJECT
public:
    explicit AmplificationArrows(QWidget* parent = nullptr);
    void stepBy(int steps) override;

signals:
    // The up arrow gives a negative delta, as the arrows of the first platform did.
    void stepped(int delta);

protected:
    StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
};

class ConsoleWindow : public QDialog {
    Q_OBJECT
public:
    // Creates the script host when there is none yet (running "Lua.init").
    ConsoleWindow(Application& app, QWidget* parent = nullptr);
    ~ConsoleWindow() override;

    QLineEdit* inputLine() const { return input_; }
    QPlainTextEdit* logView() const { return log_; }
    QLabel* messageLine() const { return message_; }

signals:
    // A chunk ran: the documents' windows redraw.
    void commandsRan();
    // Shown or hidden: the frame switches its menu text between "Show Console" and "Hide Console".
    void visibilityChanged(bool visible);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    // The close button ends the console and its script host together; hiding keeps both.
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QPushButton* addButton(const char* text, const char* toolTip);
    void buildShortcuts();
    ScriptHost& host();
    // Runs one of the console's actions on the host with the typed line handed over first,
    // then shows what it left.
    template <class Action>
    void act(Action action, bool ran = true);
    void showHostState();
    void showLog();

    Application& app_;
    QPlainTextEdit* log_;
    QLineEdit* input_;
    QLabel* message_;
    QCheckBox* forAll_;
    std::array<QPushButton*, 4> shortcuts_{};
};

}  // namespace zolt
