#include "gui/single_instance.h"

#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QtEndian>

namespace zolt {

namespace {

// Far more than any command line; a longer length is somebody else's talk.
constexpr quint32 kLargestMessage = 1 << 20;
constexpr int kConnectMs = 1000;
constexpr int kWriteMs = 3000;

}  // namespace

QString instanceServerName() {
    const QString name = qEnvironmentVariable("ZOLT_INSTANCE_NAME");
    return name.isEmpty() ? QStringLiteral("Zolt_2020") : name;
}

QByteArray encodeHandOff(const QStringList& paths) {
    QByteArray body;
    for (const QString& path : paths) body += path.toUtf8() + '\0';
    QByteArray message(4, '\0');
    qToBigEndian(static_cast<quint32>(body.size()), message.data());
    return message + body;
}

std::optional<QStringList> decodeHandOff(const QByteArray& bytes, bool* damaged) {
    if (damaged) *damaged = false;
    if (bytes.size() < 4) return std::nullopt;
    const quint32 length = qFromBigEndian<quint32>(bytes.constData());
    const bool tooLong = length > kLargestMessage;
    if (tooLong || bytes.size() - 4 < static_cast<qsizetype>(length)) {
        if (damaged) *damaged = tooLong;
        return std::nullopt;
    }
    const QByteArray body = bytes.mid(4, length);
    if (!body.isEmpty() && !body.endsWith('\0')) {
        if (damaged) *damaged = true;
        return std::nullopt;
    }
    QStringList paths;
    for (qsizetype from = 0; from < body.size();) {
        const qsizetype end = body.indexOf('\0', from);
        paths << QString::fromUtf8(body.mid(from, end - from));
        from = end + 1;
    }
    return paths;
}

SingleInstance::SingleInstance(const QString& name) : server_(new QLocalServer(this)) {
    // Only the same user reaches the server.
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_->listen(name) && server_->serverError() == QAbstractSocket::AddressInUseError) {
        QLocalServer::removeServer(name);
        server_->listen(name);
    }
    connect(server_, &QLocalServer::newConnection, this, &SingleInstance::accept);
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::listening() const {
    return server_->isListening();
}

void SingleInstance::accept() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        readFrom(socket);
    }
}

void SingleInstance::readFrom(QLocalSocket* socket) {
    // The bytes of one message stay with its socket until they are complete.
    QByteArray bytes = socket->property("received").toByteArray() + socket->readAll();
    bool damaged = false;
    const std::optional<QStringList> paths = decodeHandOff(bytes, &damaged);
    if (!paths && !damaged) {
        socket->setProperty("received", bytes);
        return;
    }
    socket->setProperty("received", QByteArray());
    socket->disconnectFromServer();
    if (paths) emit filesReceived(*paths);
}

bool SingleInstance::sendToFirst(const QStringList& paths, const QString& name) {
    QLocalSocket socket;
    socket.connectToServer(name);
    if (!socket.waitForConnected(kConnectMs)) return false;
    QStringList absolute;
    for (const QString& path : paths) absolute << QFileInfo(path).absoluteFilePath();
    socket.write(encodeHandOff(absolute));
    while (socket.bytesToWrite() > 0)
        if (!socket.waitForBytesWritten(kWriteMs)) return false;
    socket.disconnectFromServer();
    if (socket.state() != QLocalSocket::UnconnectedState) socket.waitForDisconnected(kWriteMs);
    return true;
}

std::unique_ptr<SingleInstance> SingleInstance::claim(const QStringList& paths,
                                                      const QString& name) {
    if (sendToFirst(paths, name)) return nullptr;
    return std::make_unique<SingleInstance>(name);
}

}  // namespace zolt
