// A real server for tests: on the loopback only, with everything that it keeps in a folder of the test.
#pragma once

#include <QProcess>
#include <QString>

namespace tests
{

class NatsServer
{
public:
    enum class Security { none, tlsAndLogin };

    static bool isInstalled();
    /// Answers when the constructor returns. With security it knows "ann" with the password "secret".
    explicit NatsServer(QString folder, Security security = Security::none);
    ~NatsServer();

    QString place(const QString &project) const;
    /// What its certificate is checked against.
    QString authority() const { return m_folder + QStringLiteral("/server.pem"); }
    void killAndStart();

private:
    void start();
    void makeCertificate() const;

    QString m_folder;
    Security m_security;
    int m_port = 0;
    QProcess m_process;
};

} // namespace tests
