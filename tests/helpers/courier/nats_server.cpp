#include "tests/helpers/courier/nats_server.h"

#include "host/base/assert.h"
#include "tests/support/files.h"

#include <QStandardPaths>
#include <QThread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tests
{

static QString program()
{
    const QString found = QStandardPaths::findExecutable(QStringLiteral("nats-server"));
    return found.isEmpty()
               ? QStandardPaths::findExecutable(QStringLiteral("nats-server"), {QStringLiteral("/usr/sbin")})
               : found;
}

bool NatsServer::isInstalled()
{
    return !program().isEmpty();
}

static sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(std::uint16_t(port));
    return address;
}

/// One that nobody used a moment ago.
static int freePort()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    const bool found = ::bind(socket, reinterpret_cast<sockaddr *>(&address), size) == 0 &&
                       ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size) == 0;
    ::close(socket);
    QUILL_ASSERT(found);
    return ntohs(address.sin_port);
}

static bool answers(int port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopback(port);
    const bool connected =
        ::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    ::close(socket);
    return connected;
}

NatsServer::NatsServer(QString folder, Security security)
    : m_folder(std::move(folder)), m_security(security), m_port(freePort())
{
    if (security == Security::tlsAndLogin)
        makeCertificate();
    QString settings =
        QStringLiteral("listen: \"127.0.0.1:%1\"\nmax_payload: 9000000\njetstream { store_dir: \"%2\" }\n")
            .arg(m_port)
            .arg(m_folder + QStringLiteral("/stream"));
    if (security == Security::tlsAndLogin)
        settings += QStringLiteral("tls { cert_file: \"%1/server.pem\", key_file: \"%1/server.key\" }\n"
                                   "authorization { users: [ { user: ann, password: secret } ] }\n")
                        .arg(m_folder);
    writeFile(m_folder + QStringLiteral("/server.conf"), settings.toUtf8());
    start();
}

NatsServer::~NatsServer()
{
    m_process.kill();
    m_process.waitForFinished();
}

void NatsServer::makeCertificate() const
{
    const QStringList words{"req",
                            "-x509",
                            "-newkey",
                            "rsa:2048",
                            "-nodes",
                            "-days",
                            "2",
                            "-subj",
                            "/CN=localhost",
                            "-addext",
                            "subjectAltName=DNS:localhost,IP:127.0.0.1",
                            "-keyout",
                            m_folder + QStringLiteral("/server.key"),
                            "-out",
                            authority()};
    QProcess maker;
    maker.start(QStringLiteral("openssl"), words);
    QUILL_ASSERT(maker.waitForFinished() && maker.exitCode() == 0);
}

void NatsServer::start()
{
    m_process.start(program(), {QStringLiteral("-c"), m_folder + QStringLiteral("/server.conf"),
                                QStringLiteral("-l"), m_folder + QStringLiteral("/server.log")});
    QUILL_ASSERT(m_process.waitForStarted());
    for (int i = 0; i < 200 && !answers(m_port); ++i)
        QThread::msleep(50);
}

void NatsServer::killAndStart()
{
    m_process.kill();
    m_process.waitForFinished();
    start();
}

QString NatsServer::place(const QString &project) const
{
    const bool isSecure = m_security == Security::tlsAndLogin;
    return QStringLiteral("%1://localhost:%2/%3")
        .arg(isSecure ? QStringLiteral("tls") : QStringLiteral("nats"))
        .arg(m_port)
        .arg(project);
}

} // namespace tests
