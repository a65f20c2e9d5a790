#include "gui/qt_platform.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>

namespace zolt {

namespace {

// The program's texts are 8-bit and keep their "\r\n": the clipboard carries them as they are,
// so that a table pasted on any system reads back byte for byte.
QString fromEightBit(std::string_view s) {
    return QString::fromLatin1(s.data(), static_cast<qsizetype>(s.size()));
}

QMessageBox::StandardButtons standardButtons(MessageButtons buttons) {
    switch (buttons) {
        case MessageButtons::Ok:
            return QMessageBox::Ok;
        case MessageButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case MessageButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case MessageButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

MessageAnswer answerOf(int button, MessageButtons buttons) {
    switch (button) {
        case QMessageBox::Ok:
            return MessageAnswer::Ok;
        case QMessageBox::Yes:
            return MessageAnswer::Yes;
        case QMessageBox::No:
            return MessageAnswer::No;
        case QMessageBox::Cancel:
            return MessageAnswer::Cancel;
        default:
            // Closed by the window manager: a box that can be cancelled was cancelled.
            return buttons == MessageButtons::Ok      ? MessageAnswer::Ok
                   : buttons == MessageButtons::YesNo ? MessageAnswer::No
                                                      : MessageAnswer::Cancel;
    }
}

}  // namespace

MessageAnswer QtPlatform::messageBox(std::string_view caption, std::string_view text,
                                     MessageButtons buttons) {
    QMessageBox box(QMessageBox::NoIcon, fromEightBit(caption), fromEightBit(text),
                    standardButtons(buttons), parent_);
    box.setDefaultButton(buttons == MessageButtons::Ok || buttons == MessageButtons::OkCancel
                             ? QMessageBox::Ok
                             : QMessageBox::Yes);
    return answerOf(box.exec(), buttons);
}

std::string QtPlatform::clipboardText() {
    return QGuiApplication::clipboard()->text().toLatin1().toStdString();
}

void QtPlatform::setClipboardText(std::string_view text) {
    auto* data = new QMimeData;
    data->setText(fromEightBit(text));
    QGuiApplication::clipboard()->setMimeData(data);
}

void QtPlatform::setClipboardPropertyList(std::string_view xml) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    auto* data = new QMimeData;
    if (const QMimeData* current = clipboard->mimeData(); current && current->hasText())
        data->setText(current->text());
    data->setData(kPropertyListMime, QByteArray(xml.data(), static_cast<qsizetype>(xml.size())));
    clipboard->setMimeData(data);
}

void QtPlatform::beep() {
    QApplication::beep();
}

void QtPlatform::openWithSystem(const std::string& path) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(path)));
}

}  // namespace zolt
