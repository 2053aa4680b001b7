// A NATS server with JetStream as carrier, where people outgrow a folder: one stream for a project, whose
// order is the order of the messages. docs/formats/courier-stream.md describes it.
//
// Places are written nats://HOST[:PORT]/PROJECT or tls://...; "?creds=FILE" names a file of credentials,
// which only its owner may read: a user's token with its seed, or a line with his name and one with his
// password. "?ca=FILE" names the certificates that the server's is checked against.
#pragma once

#include "helpers/courier/carrier.h"

#include <QElapsedTimer>

#include <map>
#include <memory>

namespace courier
{

class NatsCarrier : public Carrier
{
public:
    /// The error says what is wrong with the place. Nobody is called yet.
    static base::Result<std::unique_ptr<Carrier>, QString> open(const QString &place, const QString &sender,
                                                                const QString &name, Knowledge knowledge);
    static bool isPlace(const QString &place);
    ~NatsCarrier() override;

    base::Result<std::vector<Message>, QString> receive(const QString &drawing) override;
    base::Result<Stamp, QString> publish(const QString &drawing, const QString &id, const QByteArray &bytes,
                                         qint64 above) override;
    std::optional<Stamp> published(const QString &drawing, const QString &id) override;
    base::Result<std::vector<Person>, QString> keepHouse(const QString &drawing) override;
    void leave(const QString &drawing) override;

private:
    struct Library; ///< What the client library holds.
    NatsCarrier();

    std::unique_ptr<Library> m_library;
};

} // namespace courier
