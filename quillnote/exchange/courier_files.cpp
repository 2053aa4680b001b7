#include "quillnote/exchange/courier_files.h"

#include "quillnote/exchange/exchange_files.h"
#include "quillnote/exchange/synchronisation.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/base/atomic_file.h"
#include "host/os/shell.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <QUuid>

#include <algorithm>
#include <memory>

static constexpr int kLookMilliseconds = 200;
static constexpr int kLooksAStatus = 5;
static constexpr int kSilentSeconds = 15; ///< A courier that says nothing for so long is started again.
static constexpr settings::Text kPlaceSetting = u"courierPlace";

static QString courierFolder()
{
    return synchronisationFolder() + QStringLiteral("courier/");
}

QString announceOpenDrawing(const QByteArray &identity)
{
    const QString folder = courierFolder() + QStringLiteral("open/");
    if (!QDir().mkpath(folder))
        return {};
    // The courier forgets those whose process is gone; another process may get its number.
    const QString file = QStringLiteral("%1%2-%3-%4")
                             .arg(folder, QString::fromLatin1(identity.toHex()))
                             .arg(QCoreApplication::applicationPid())
                             .arg(QUuid::createUuid().toString(QUuid::Id128).left(12));
    const QString title =
        acDocManager()->curDocument() ? acDocManager()->curDocument()->docTitle() : QString();
    return base::writeFileAtomically(file, title.toUtf8()) ? file : QString();
}

void withdrawOpenDrawing(const QString &file)
{
    if (!file.isEmpty())
        QFile::remove(file);
}

/// Until the courier knows of this opening, what lies there is meant for an earlier one. A clock that was set
/// back must not make new files look older than those that the courier has.
static bool hasBegun(SharedDrawing &drawing, const QDir &folder)
{
    if (drawing.hasBegun)
        return true;
    QFile begun(folder.filePath(QFileInfo(drawing.openFile).fileName() + QStringLiteral(".begun")));
    if (drawing.openFile.isEmpty() || !begun.open(QIODevice::ReadOnly))
        return false;
    std::uint64_t &last = synchronisation().lastSerial;
    last = std::max<std::uint64_t>(last, begun.readAll().toULongLong());
    return drawing.hasBegun = true;
}

QString takeArrived(SharedDrawing &drawing)
{
    const QDir folder(courierFolder() + QStringLiteral("in/") +
                      QString::fromLatin1(drawing.identity.toHex()));
    if (!hasBegun(drawing, folder))
        return {};
    for (const QString &name : folder.entryList({QStringLiteral("*.quillNote")}, QDir::Files, QDir::Name)) {
        const std::int64_t number = name.section(u'.', 0, 0).toLongLong();
        if (number > drawing.lastTaken) {
            drawing.lastTaken = number;
            return folder.filePath(name);
        }
        QFile::remove(folder.filePath(name)); // Read before, and somebody could not remove it.
    }
    return {};
}

// Between the commands of a person -----------------------------------------------------------------------

static void startProgramOfCourier()
{
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/quillnote-courier");
    os::startProgram(program, {QStringLiteral("run"), QStringLiteral("--while-used"), synchronisationFolder(),
                               settings::text(kPlaceSetting)});
}

/// "同步：2 人在线，1 条待发，13:05 收到"
static QString lineOf(const QJsonObject &status)
{
    if (!status[QStringLiteral("connected")].toBool())
        return QStringLiteral("同步：未连接，%1 条待发").arg(status[QStringLiteral("waiting")].toInteger());
    int here = 0;
    for (const QJsonValue person : status[QStringLiteral("people")].toArray())
        here += person[QStringLiteral("here")].toBool();
    QString line =
        here == 0 ? QStringLiteral("同步：没有其他人在线") : QStringLiteral("同步：其他 %1 人在线").arg(here);
    if (const qint64 waiting = status[QStringLiteral("waiting")].toInteger(); waiting > 0)
        line += QStringLiteral("，%1 条待发").arg(waiting);
    const QDateTime last =
        QDateTime::fromString(status[QStringLiteral("lastArrived")].toString(), Qt::ISODate);
    if (last.isValid())
        line += QStringLiteral("，%1 收到").arg(last.toString(QStringLiteral("HH:mm")));
    return line;
}

/// Looks at what arrived, and at the courier.
class ArrivalWatch
{
public:
    ArrivalWatch()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.start(kLookMilliseconds);
    }
    ~ArrivalWatch() { acedFrontEnd().showService({}); }

private:
    void look()
    {
        if (++m_looks % kLooksAStatus == 0)
            showStatus();
        SharedDrawing *const shared = acdbCurDwg() ? sharedDrawing(*acdbCurDwg()) : nullptr;
        if (!shared || !acedEditor()->activeCommands().isEmpty() || acDocManager()->isBusy())
            return;
        const QString path = takeArrived(*shared);
        if (path.isEmpty())
            return;
        // An answer that was typed and not stored yet counts as given before what arrives.
        acDocManager()->gatherInput(curDoc());
        acedEditor()->queueExpression(QStringLiteral("(command \"-QN3_DataFileIn\" \"%1\")").arg(path));
        acedFrontEnd().lookAgain();
    }

    void showStatus()
    {
        QFile file(courierFolder() + QStringLiteral("status.json"));
        const bool isThere = file.open(QIODevice::ReadOnly);
        const QJsonObject status = QJsonDocument::fromJson(isThere ? file.readAll() : QByteArray()).object();
        const qint64 age = QFileInfo(file).lastModified().secsTo(QDateTime::currentDateTime());
        if (!isThere || age > kSilentSeconds) {
            acedFrontEnd().showService(QStringLiteral("同步：未连接"));
            if (m_looks % (kLooksAStatus * kSilentSeconds) == 0)
                startProgramOfCourier();
            return;
        }
        acedFrontEnd().showService(lineOf(status));
    }

    QTimer m_timer;
    int m_looks = 0;
};

static std::unique_ptr<ArrivalWatch> &arrivalWatch()
{
    static std::unique_ptr<ArrivalWatch> watch;
    return watch;
}

void startCourier()
{
    if (acedFrontEnd().isScripted())
        return;
    if (settings::text(kPlaceSetting).isEmpty()) {
        acutPrintf(
            QStringLiteral("\n未指定共享位置，标签的变更只写入文件夹 %1。用命令 QN8_SynningPlace 指定。")
                .arg(synchronisationFolder()));
        return;
    }
    QDir().mkpath(courierFolder());
    const QByteArray place = settings::text(kPlaceSetting).toUtf8();
    if (!base::writeFileAtomically(courierFolder() + QStringLiteral("place"), place))
        acutPrintf(QStringLiteral("\n不能写入文件夹 %1。").arg(courierFolder()));
    startProgramOfCourier();
    arrivalWatch() = std::make_unique<ArrivalWatch>();
}

void stopWatchingArrivals()
{
    arrivalWatch().reset();
}

void QN8_SynningPlace()
{
    QString place;
    const QString now = settings::text(kPlaceSetting);
    if (acedGetString(true, QStringLiteral("\n共享文件夹或服务器 <%1>：").arg(now), place) != RTNORM ||
        place.trimmed().isEmpty())
        return;
    // What was exchanged at one place is news at another.
    const bool wasOn = synchronisation().on;
    QN8_SynningOff();
    settings::setText(kPlaceSetting, place.trimmed());
    if (wasOn)
        QN8_SynningOn();
}
