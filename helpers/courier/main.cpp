// quillnote-courier: runs beside the program while people review one drawing together, and tells how it goes.
#include "helpers/courier/courier.h"
#include "helpers/courier/folder_carrier.h"
#include "helpers/courier/nats_carrier.h"
#include "helpers/courier/quick_file.h"

#include "host/base/path_name.h"
#include "host/base/terminal_text.h"
#include "host/os/settings_store.h"

#include <CLI/CLI.hpp>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QStandardPaths>
#include <QSysInfo>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

using namespace courier;

namespace
{

constexpr int kRoundMilliseconds = 400;
constexpr int kHouseMilliseconds = 1000;
constexpr int kStatusMilliseconds = 5000;
constexpr int kUnusedMilliseconds = 3000; ///< Without an open drawing, before "--while-used" ends.
constexpr int kDone = 0, kTrouble = 2;

const QString kSettings = QStringLiteral("Software\\Quillnote3");

volatile std::sig_atomic_t s_ended = 0;

void say(std::FILE *where, const QString &text)
{
    std::fprintf(where, "%s\n", base::terminalText(text).toUtf8().constData());
}

QString setting(const char *name)
{
    return os::SettingsStore::user().text(kSettings, QString::fromLatin1(name)).value_or(QString()).trimmed();
}

struct Options {
    std::string folder, place;
    bool whileUsed = false;
    bool json = false;

    QString syncFolder() const
    {
        const QString own = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
                            QStringLiteral("/synFileUploadPath");
        const QString set = folder.empty() ? setting("synFileUploadPath") : base::decodePath(folder);
        const QString path = set.isEmpty() ? own : set;
        return path.endsWith(u'/') ? path : path + u'/';
    }
    QString meetingPlace() const { return place.empty() ? setting("courierPlace") : base::decodePath(place); }
};

QString statusFile(const Options &options)
{
    return options.syncFolder() + QStringLiteral("courier/status.json");
}

QJsonObject asJson(const Status &status, const QString &place)
{
    QJsonArray people;
    for (const Person &person : status.people)
        people.append(
            QJsonObject{{QStringLiteral("name"), person.name}, {QStringLiteral("here"), person.isHere}});
    return {{QStringLiteral("place"), place},
            {QStringLiteral("connected"), status.isConnected},
            {QStringLiteral("trouble"), status.trouble},
            {QStringLiteral("drawings"), status.drawings},
            {QStringLiteral("waiting"), status.waiting},
            {QStringLiteral("arriving"), status.arriving},
            {QStringLiteral("lastArrived"), status.lastArrived.toString(Qt::ISODate)},
            {QStringLiteral("people"), people}};
}

QString personName()
{
    const QString name = setting("name");
    const QString user =
        name.isEmpty() ? qEnvironmentVariable("USER", QStringLiteral("?")) : name.simplified();
    return user + u'@' + QSysInfo::machineHostName();
}

/// The rounds, one after the other, until it is told to end or nobody needs it any more.
class Runner
{
public:
    Runner(const Options &options, const QString &place)
        : m_options(options), m_place(place),
          m_ledger(options.syncFolder() + QStringLiteral("courier/ledger-%1.sqlite").arg(shortName(place))),
          m_carrier(makeCarrier()), m_courier(ProgramFiles(options.syncFolder()), m_ledger, *m_carrier)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { round(); });
        QObject::connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_timer, [this] { round(); });
        m_watcher.addPath(options.syncFolder());
        m_sinceUsed.start();
        m_timer.start(kRoundMilliseconds);
    }
    ~Runner()
    {
        m_courier.leave();
        QFile::remove(statusFile(m_options));
    }

private:
    std::unique_ptr<Carrier> makeCarrier()
    {
        const Knowledge knowledge{
            [this](const QString &drawing, const Stamp &stamp) { return m_ledger.isSeen(drawing, stamp); },
            [this](const QString &drawing, const Stamp &stamp) {
                return !m_ledger.isLatest(drawing, stamp);
            }};
        if (NatsCarrier::isPlace(m_place)) {
            auto opened = NatsCarrier::open(m_place, m_ledger.sender(), personName(), knowledge);
            if (!opened)
                throw sql::Trouble(opened.error());
            return *std::move(opened);
        }
        auto carrier = std::make_unique<FolderCarrier>(m_place, m_ledger.sender(), personName(),
                                                       m_ledger.remembered(markKey()), knowledge);
        m_folder = carrier.get();
        return carrier;
    }
    QString markKey() const { return QStringLiteral("mark of ") + m_place; }

    /// Counters of one place mean nothing at another.
    static QString shortName(const QString &place)
    {
        return QString::fromLatin1(identityOf(place).toHex().left(8));
    }

    /// The program's user has chosen another place: what is sent from now on is for a courier that knows it.
    bool isForElsewhere() const
    {
        QFile file(m_options.syncFolder() + QStringLiteral("courier/place"));
        return m_options.whileUsed && file.open(QIODevice::ReadOnly) &&
               QString::fromUtf8(file.readAll()) != m_place;
    }

    void round()
    {
        if (isForElsewhere()) {
            QCoreApplication::quit();
            return;
        }
        try {
            m_courier.run();
            if (!m_sinceHouse.isValid() || m_sinceHouse.elapsed() >= kHouseMilliseconds) {
                m_courier.keepHouse();
                m_sinceHouse.start();
            }
            if (m_folder && m_folder->mark() != m_ledger.remembered(markKey()))
                m_ledger.remember(markKey(), m_folder->mark());
            tellStatus(m_courier.status());
        } catch (const sql::Trouble &trouble) {
            m_ledger.reread();
            Status status;
            status.trouble = QString::fromUtf8(trouble.what());
            tellStatus(status);
        }
        if (m_courier.status().drawings > 0 || m_courier.status().waiting > 0)
            m_sinceUsed.start();
        if (s_ended || (m_options.whileUsed && m_sinceUsed.elapsed() > kUnusedMilliseconds))
            QCoreApplication::quit();
    }

    void tellStatus(const Status &status)
    {
        if (m_sinceTold.isValid() && m_sinceTold.elapsed() < kStatusMilliseconds && status == m_told)
            return;
        writeQuickly(statusFile(m_options), QJsonDocument(asJson(status, m_place)).toJson());
        m_told = status;
        m_sinceTold.start();
    }

    const Options &m_options;
    QString m_place;
    Ledger m_ledger;
    FolderCarrier *m_folder = nullptr;
    std::unique_ptr<Carrier> m_carrier;
    Courier m_courier;
    QTimer m_timer;
    QFileSystemWatcher m_watcher;
    QElapsedTimer m_sinceHouse, m_sinceTold, m_sinceUsed;
    Status m_told;
};

int run(const Options &options)
{
    const QString place = options.meetingPlace();
    if (place.isEmpty()) {
        say(stderr,
            QStringLiteral("where people meet is not set: give PLACE, or store the setting %1 courierPlace")
                .arg(kSettings));
        return kTrouble;
    }
    if (!QDir().mkpath(options.syncFolder() + QStringLiteral("courier"))) {
        say(stderr, QStringLiteral("the folder %1 cannot be made").arg(options.syncFolder()));
        return kTrouble;
    }
    QLockFile lock(options.syncFolder() + QStringLiteral("courier/lock"));
    lock.setStaleLockTime(0);
    // One that serves another place ends in a moment.
    if (!lock.tryLock(options.whileUsed ? 2000 : 0)) {
        say(stderr, QStringLiteral("a courier runs for %1 already").arg(options.syncFolder()));
        return options.whileUsed ? kDone : kTrouble;
    }
    const auto end = [](int) { s_ended = 1; };
    std::signal(SIGTERM, end);
    std::signal(SIGINT, end);
    try {
        const Runner runner(options, place);
        return QCoreApplication::exec();
    } catch (const sql::Trouble &trouble) {
        say(stderr, QString::fromUtf8(trouble.what()));
        return kTrouble;
    }
}

void printStatus(const QJsonObject &status)
{
    const bool connected = status[QStringLiteral("connected")].toBool();
    const QString place = status[QStringLiteral("place")].toString();
    say(stdout,
        (connected ? QStringLiteral("connected: %1") : QStringLiteral("not connected: %1")).arg(place));
    if (const QString trouble = status[QStringLiteral("trouble")].toString(); !trouble.isEmpty())
        say(stdout, trouble);
    say(stdout, QStringLiteral("%1 changes wait to go out, %2 wait for the program")
                    .arg(status[QStringLiteral("waiting")].toInteger())
                    .arg(status[QStringLiteral("arriving")].toInteger()));
    if (const QString last = status[QStringLiteral("lastArrived")].toString(); !last.isEmpty())
        say(stdout, QStringLiteral("last change from others: %1").arg(last));
    for (const QJsonValue person : status[QStringLiteral("people")].toArray())
        say(stdout,
            QStringLiteral("%1: %2").arg(person[QStringLiteral("name")].toString(),
                                         person[QStringLiteral("here")].toBool() ? QStringLiteral("here")
                                                                                 : QStringLiteral("away")));
}

int tellStatus(const Options &options)
{
    QFile file(statusFile(options));
    QJsonObject status;
    if (file.open(QIODevice::ReadOnly))
        status = QJsonDocument::fromJson(file.readAll()).object();
    const qint64 age = QFileInfo(file).lastModified().msecsTo(QDateTime::currentDateTime());
    const bool isRunning = !status.isEmpty() && age < 3 * kStatusMilliseconds;
    if (options.json) {
        status.insert(QStringLiteral("running"), isRunning);
        say(stdout, QString::fromUtf8(QJsonDocument(status).toJson(QJsonDocument::Compact)));
    } else if (!isRunning) {
        say(stdout, QStringLiteral("no courier runs for %1").arg(options.syncFolder()));
    } else {
        printStatus(status);
    }
    return isRunning ? kDone : 1;
}

} // namespace

int main(int argc, char **argv)
{
    int applicationArguments = 1; // The options are ours, not Qt's.
    const QCoreApplication application(applicationArguments, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Quillnote"));

    Options options;
    std::function<int()> chosen;
    CLI::App app{"Takes review marks to the other people who have the same drawing, and brings theirs."};
    app.name("quillnote-courier");
    app.set_version_flag("--version", "quillnote-courier " QUILLNOTE_VERSION);
    app.require_subcommand(1);
    app.footer("Exit status: 0 done, 1 no courier runs (status), 2 trouble.");
    CLI::App *const runVerb = app.add_subcommand("run", "Carry marks until interrupted");
    CLI::App *const statusVerb = app.add_subcommand("status", "Tell who is here and what waits");
    for (CLI::App *verb : {runVerb, statusVerb})
        verb->add_option("FOLDER", options.folder,
                         "Synchronisation folder; that of your settings without it");
    runVerb->add_option(
        "PLACE", options.place,
        "Where people meet: a shared folder, or nats://HOST/PROJECT; that of your settings without it");
    runVerb->add_flag("--while-used", options.whileUsed,
                      "End when no program has a drawing open that takes part");
    statusVerb->add_flag("--json", options.json, "Print JSON");
    runVerb->callback([&] { chosen = [&] { return run(options); }; });
    statusVerb->callback([&] { chosen = [&] { return tellStatus(options); }; });
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? kDone : kTrouble;
    }
    return chosen();
}
