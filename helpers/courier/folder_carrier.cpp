#include "helpers/courier/folder_carrier.h"

#include "helpers/courier/quick_file.h"
#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <algorithm>
#include <optional>

namespace courier
{

static const QString kMarkFile = QStringLiteral("quillnote-courier.txt");
static const QString kPersonFile = QStringLiteral("person.json");
static const QString kEnding = QStringLiteral(".quillnote");
static constexpr qint64 kBeatMilliseconds = 10'000;
static constexpr qint64 kGoneMilliseconds = 4 * kBeatMilliseconds;
static constexpr qint64 kHighestCounter = 999'999'999'999; ///< Twelve digits.
static constexpr int kFilesATime = 2000;

FolderCarrier::FolderCarrier(QString root, QString sender, QString name, QString mark, Knowledge knowledge)
    : m_root(std::move(root)), m_sender(std::move(sender)), m_name(std::move(name)), m_mark(std::move(mark)),
      m_knowledge(std::move(knowledge))
{
}

// Places ---------------------------------------------------------------------------------------------

static std::optional<QByteArray> readSmall(const QString &path, qint64 most)
{
    const QFileInfo info(path);
    if (!info.isFile() || info.isSymLink() || info.size() > most)
        return {};
    const auto bytes = base::readFileBytes(path);
    if (!bytes || qint64(bytes->size()) > most)
        return {};
    return QByteArray(bytes->data(), qsizetype(bytes->size()));
}

/// The folder of a drive that is away may be there, empty, or hold something else.
base::Result<void, QString> FolderCarrier::findRoot()
{
    if (!QFileInfo(m_root).isDir())
        return base::Failure{QStringLiteral("the folder %1 is not there").arg(m_root)};
    const QString path = m_root + u'/' + kMarkFile;
    std::optional<QByteArray> found = readSmall(path, 1000);
    if (!found && m_mark.isEmpty()) {
        const QByteArray fresh = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
        if (const auto written = base::writeFileAtomically(path, fresh); !written)
            return base::Failure{written.error().text()};
        found = readSmall(path, 1000); // Two may make it at once; the file that stays counts.
    }
    if (!found)
        return base::Failure{QStringLiteral("the folder %1 is empty: is its drive there?").arg(m_root)};
    const QString mark = QString::fromLatin1(found->trimmed());
    if (!m_mark.isEmpty() && m_mark != mark)
        return base::Failure{QStringLiteral("the folder %1 is another one than before").arg(m_root)};
    m_mark = mark;
    return {};
}

QString FolderCarrier::folderOf(const QString &drawing, const QString &sender) const
{
    return m_root + u'/' + drawing + u'/' + sender;
}

base::Result<QString, QString> FolderCarrier::ownFolder(const QString &drawing)
{
    if (const auto found = findRoot(); !found)
        return base::Failure{found.error()};
    const QString folder = folderOf(drawing, m_sender);
    if (!QDir().mkpath(folder))
        return base::Failure{QStringLiteral("the folder %1 cannot be made").arg(folder)};
    return folder;
}

static QStringList peopleOf(const QString &folder)
{
    QStringList names = QDir(folder).entryList(QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    names.removeIf([](const QString &name) { return !isSenderName(name); });
    return names;
}

// "000000000042-" and 32 hexadecimal digits.
static QString fileName(qint64 counter, const QString &id)
{
    return QStringLiteral("%1-%2").arg(counter, 12, 10, QLatin1Char('0')).arg(id) + kEnding;
}

static qint64 counterOf(const QString &name)
{
    bool isNumber = false;
    const qint64 counter = name.left(12).toLongLong(&isNumber);
    return isNumber && name.size() == 12 + 1 + 32 + kEnding.size() ? counter : 0;
}

/// In the order of their counters.
static QStringList messagesIn(const QString &folder)
{
    QStringList names = QDir(folder).entryList({u'*' + kEnding}, QDir::Files | QDir::NoSymLinks, QDir::Name);
    names.removeIf([](const QString &name) { return counterOf(name) <= 0; });
    return names;
}

// Messages -------------------------------------------------------------------------------------------

base::Result<std::vector<Message>, QString> FolderCarrier::receive(const QString &drawing)
{
    if (const auto found = findRoot(); !found)
        return base::Failure{found.error()};
    std::vector<Message> messages;
    const QString folder = m_root + u'/' + drawing;
    for (const QString &sender : peopleOf(folder)) {
        if (sender == m_sender)
            continue;
        m_drawings[drawing].people.try_emplace(sender);
        for (const QString &name : messagesIn(folder + u'/' + sender)) {
            const Stamp stamp{counterOf(name), sender};
            if (m_knowledge.isSeen(drawing, stamp))
                continue;
            const QFileInfo info(folder + u'/' + sender + u'/' + name);
            const QString key = QStringLiteral("%1 %2 %3")
                                    .arg(info.filePath())
                                    .arg(info.size())
                                    .arg(info.lastModified().toMSecsSinceEpoch());
            if (m_notWhole.contains(key))
                continue;
            const auto bytes = readSmall(info.filePath(), kLargestMessage);
            const auto header = bytes ? readMessage(*bytes) : std::nullopt;
            if (header && drawingName(*header->shared) == drawing)
                messages.push_back({stamp, *bytes});
            else if (bytes)
                m_notWhole.insert(
                    key); // Until it looks different: slow drives show files before they are whole.
            if (messages.size() >= kFilesATime)
                return messages;
        }
    }
    return messages;
}

void FolderCarrier::listOwn(const QString &drawing, Drawing &state)
{
    if (state.ownListed)
        return;
    for (const QString &name : messagesIn(folderOf(drawing, m_sender)))
        state.own[name.mid(13, 32)] = counterOf(name);
    state.ownListed = true;
}

std::optional<Stamp> FolderCarrier::published(const QString &drawing, const QString &id)
{
    Drawing &state = m_drawings[drawing];
    listOwn(drawing, state);
    const auto found = state.own.find(id);
    return found == state.own.end() ? std::nullopt : std::optional(Stamp{found->second, m_sender});
}

base::Result<Stamp, QString> FolderCarrier::publish(const QString &drawing, const QString &id,
                                                    const QByteArray &bytes, qint64 above)
{
    const auto folder = ownFolder(drawing);
    if (!folder)
        return base::Failure{folder.error()};
    if (const auto stamp = published(drawing, id))
        return *stamp;
    Drawing &state = m_drawings[drawing];
    qint64 counter = above + 1;
    for (const auto &[other, used] : state.own)
        counter = std::max(counter, used + 1);
    if (counter > kHighestCounter)
        return base::Failure{QStringLiteral("the folder %1 holds a message behind all others").arg(m_root)};
    if (const auto written = base::writeFileAtomically(*folder + u'/' + fileName(counter, id), bytes);
        !written)
        return base::Failure{written.error().text()};
    state.own[id] = counter;
    return Stamp{counter, m_sender};
}

// People ---------------------------------------------------------------------------------------------

/// By sender: the last message up to which all that are there were received.
std::map<QString, qint64> FolderCarrier::receivedFrom(const QString &drawing) const
{
    std::map<QString, qint64> received;
    const QString folder = m_root + u'/' + drawing;
    for (const QString &sender : peopleOf(folder)) {
        if (sender == m_sender)
            continue;
        qint64 &last = received[sender];
        for (const QString &name : messagesIn(folder + u'/' + sender)) {
            if (!m_knowledge.isSeen(drawing, {counterOf(name), sender}))
                break;
            last = counterOf(name);
        }
    }
    return received;
}

base::Result<void, QString> FolderCarrier::tell(const QString &drawing, Drawing &state, bool isHere)
{
    QJsonObject received;
    for (const auto &[sender, counter] : receivedFrom(drawing))
        received.insert(sender, counter);
    QJsonObject person{{QStringLiteral("name"), m_name},
                       {QStringLiteral("received"), received},
                       {QStringLiteral("here"), isHere}};
    const QByteArray news = QJsonDocument(person).toJson(QJsonDocument::Compact);
    const bool isDue = !state.sinceTold.isValid() || state.sinceTold.elapsed() > kBeatMilliseconds;
    if (news == state.told && !isDue)
        return {};
    person.insert(QStringLiteral("beat"), ++state.beat);
    const QByteArray bytes = QJsonDocument(person).toJson(QJsonDocument::Indented);
    const QString path = folderOf(drawing, m_sender) + u'/' + kPersonFile;
    if (!writeQuickly(path, bytes))
        return base::Failure{QStringLiteral("the file %1 cannot be written").arg(path)};
    state.told = news;
    state.sinceTold.start();
    return {};
}

void FolderCarrier::readPerson(const QString &drawing, const QString &sender, Known &person) const
{
    const QString path = folderOf(drawing, sender) + u'/' + kPersonFile;
    const auto bytes = readSmall(path, 1'000'000);
    const QJsonObject told = QJsonDocument::fromJson(bytes.value_or(QByteArray())).object();
    if (told.isEmpty())
        return;
    person.name = told[QStringLiteral("name")].toString().left(200);
    person.acknowledged.clear();
    const QJsonObject received = told[QStringLiteral("received")].toObject();
    for (auto each = received.begin(); each != received.end(); ++each)
        person.acknowledged[each.key()] = each.value().toInteger();
    const qint64 beat = told[QStringLiteral("beat")].toInteger();
    if (beat != person.beat) {
        // Of somebody seen for the first time only the drive's clock tells how old this is.
        const qint64 age = QFileInfo(path).lastModified().msecsTo(QDateTime::currentDateTime());
        person.isHere = person.beat >= 0 || age < kGoneMilliseconds;
        person.beat = beat;
        person.sinceBeat.start();
    }
    if (person.sinceBeat.elapsed() > kGoneMilliseconds || !told[QStringLiteral("here")].toBool())
        person.isHere = false;
}

/// Own messages that were overtaken, and that everybody who ever took part has received.
void FolderCarrier::clear(const QString &drawing, Drawing &state)
{
    if (state.people.empty())
        return; // The next to come is the first; he may as well be somebody who was away.
    qint64 received = kHighestCounter;
    for (const auto &[sender, person] : state.people) {
        const auto up = person.acknowledged.find(m_sender);
        received = std::min(received, up == person.acknowledged.end() ? 0 : up->second);
    }
    listOwn(drawing, state);
    std::erase_if(state.own, [&](const auto &each) {
        const auto &[id, counter] = each;
        const Stamp stamp{counter, m_sender};
        return counter <= received && m_knowledge.isSeen(drawing, stamp) &&
               m_knowledge.isOvertaken(drawing, stamp) &&
               QFile::remove(folderOf(drawing, m_sender) + u'/' + fileName(counter, id));
    });
}

base::Result<std::vector<Person>, QString> FolderCarrier::keepHouse(const QString &drawing)
{
    if (const auto folder = ownFolder(drawing); !folder)
        return base::Failure{folder.error()};
    Drawing &state = m_drawings[drawing];
    if (const auto told = tell(drawing, state, true); !told)
        return base::Failure{told.error()};
    std::vector<Person> people;
    for (const QString &sender : peopleOf(m_root + u'/' + drawing)) {
        if (sender == m_sender)
            continue;
        Known &person = state.people[sender];
        readPerson(drawing, sender, person);
        people.push_back({sender, person.name, person.isHere});
    }
    clear(drawing, state);
    return people;
}

void FolderCarrier::leave(const QString &drawing)
{
    if (findRoot())
        static_cast<void>(tell(drawing, m_drawings[drawing], false));
    m_drawings.erase(drawing);
}

} // namespace courier
