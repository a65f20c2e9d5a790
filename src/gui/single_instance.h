// One program per user: a second start hands its files to the first one and ends.
#pragma once

#include <QObject>
#include <QStringList>
#include <memory>
#include <optional>

class QLocalServer;
class QLocalSocket;

namespace zolt {

// The name the first instance listens under: "Zolt_2020", or ZOLT_INSTANCE_NAME from the
// environment (so that tests run beside a user's own program).
QString instanceServerName();

class SingleInstance : public QObject {
    Q_OBJECT
public:
    // Listens under `name`, first removing a server left behind by a run that crashed.
    explicit SingleInstance(const QString& name = instanceServerName());
    ~SingleInstance() override;

    // False when the system refused the server: the program then runs alone, unreachable.
    bool listening() const;

    // Called first at start-up, with the command line's paths. When a first instance listens,
    // sends it the paths made absolute and returns nothing: the caller ends with 0 and shows no
    // window. Otherwise returns this instance's server, which the frame connects to.
    static std::unique_ptr<SingleInstance> claim(const QStringList& paths,
                                                 const QString& name = instanceServerName());
    // Sends the paths to a listening first instance; false when none answers.
    static bool sendToFirst(const QStringList& paths, const QString& name = instanceServerName());

signals:
    // The absolute paths a second start was given; none when it only asked the frame forward.
    void filesReceived(const QStringList& paths);

private:
    void accept();
    void readFrom(QLocalSocket* socket);

    QLocalServer* server_;
};

// The message between the two: a 4-byte big-endian length, then the paths in UTF-8, each ended
// by a zero byte.
QByteArray encodeHandOff(const QStringList& paths);
// The paths once the whole message is there; nothing while it is incomplete. `damaged` is set
// for a message that never can be read (too long or not ending its last path).
std::optional<QStringList> decodeHandOff(const QByteArray& bytes, bool* damaged = nullptr);

}  // namespace zolt
