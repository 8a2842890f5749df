#ifndef TOLVAR_VARUNDO_ZELCTL_UNIT_H
#define TOLVAR_VARUNDO_ZELCTL_UNIT_H

#include "ExitStatus.h"
#include "Options.h"

#include <Tolvar/Varundo/Client/Reply.h>
#include <Tolvar/Varundo/Client/SerialLink.h>
#include <Tolvar/Varundo/Client/TcpLink.h>
#include <Tolvar/Varundo/Client/ZelClient.h>
#include <Tolvar/Varundo/CommandMessage.h>

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace Tolvar::Varundo::Zelctl {

class Printer;

/// The unit that the commands talk to: connects when the first of them needs it, and keeps the connection and
/// what is known of the unit until the program ends.
class Unit : public QObject
{
    Q_OBJECT

public:
    Unit(const Options& options, Printer& printer);
    ~Unit() override;

    /// How one request ended, without the object that it was waited for with.
    struct Result
    {
        Client::Reply::Outcome outcome = Client::Reply::Outcome::NotSent;
        CommandMessage answer;
        QString errorText;

        [[nodiscard]] bool succeeded() const;
        [[nodiscard]] ExitStatus exitStatus() const;
    };

    /// Sends and waits. Without a connection it makes one, and the outcome is ConnectionLost if it cannot.
    [[nodiscard]] Result request(const CommandMessage& command);
    [[nodiscard]] Result echo();

    /// Bytes past the requests; false with the reason in errorText().
    [[nodiscard]] bool writeUnframed(const QByteArray& bytes);

    /// How long the way to the unit is busy with so many bytes, in milliseconds; 0 if that is no matter.
    [[nodiscard]] int transmissionTime(int byteCount) const;

    /// The codec of the unit's text, from the command line or asked for once.
    [[nodiscard]] std::optional<Client::TextCodec> textCodec(Result* failure);

    /// Nothing is known any more, since anything may have been sent.
    void forgetTextCodec() { m_codec.reset(); }

    [[nodiscard]] bool isConnected() const { return m_client && m_client->isConnected(); }
    [[nodiscard]] QString errorText() const { return m_errorText; }

signals:
    void received(const Tolvar::Varundo::Client::Response& response);
    void connectionLost();

private:
    bool connectOnce();
    bool openTcp();
    bool openSerial();
    void adoptClient(QIODevice* device, const QString& peerName);
    Result waitFor(Client::Reply* reply);
    void learn(const CommandMessage& command, const Result& result);
    void traceSent(const QByteArray& bytes) const;
    void traceReceived(const Client::Response& response) const;

    const Options& m_options;
    Printer& m_printer;
    std::unique_ptr<Client::TcpLink> m_tcp;       // the one or the other
    std::unique_ptr<Client::SerialLink> m_serial; //
    std::unique_ptr<Client::ZelClient> m_client;  // after the links, whose device it uses
    std::optional<Client::TextCodec> m_codec;
    QString m_errorText;
};

} // namespace Tolvar::Varundo::Zelctl

#endif
