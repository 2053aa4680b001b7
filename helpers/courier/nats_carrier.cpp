#include "helpers/courier/nats_carrier.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>
#include <csignal>
#include <utility>

#include <nats/nats.h>

namespace courier
{

static constexpr qint64 kConnectMilliseconds = 3000;
static constexpr qint64 kAgainMilliseconds = 2000; ///< After a connection that failed.
static constexpr qint64 kAnswerMilliseconds = 5000;
static constexpr qint64 kFetchMilliseconds = 60;
static constexpr int kMessagesATime = 500;
static constexpr std::int64_t kSecond = 1'000'000'000; ///< The library counts in nanoseconds.
static constexpr qint64 kBeatMilliseconds = 10'000;
static constexpr qint64 kGoneMilliseconds = 4 * kBeatMilliseconds;

namespace
{

template <auto destroy>
struct Destroyer {
    template <class T>
    void operator()(T *made) const
    {
        destroy(made);
    }
};
/// Owns what the library made.
template <class T, auto destroy>
using Owned = std::unique_ptr<T, Destroyer<destroy>>;
using OwnedMessage = Owned<natsMsg, natsMsg_Destroy>;
using OwnedSubscription = Owned<natsSubscription, natsSubscription_Destroy>;

struct Place {
    QString server; ///< "nats://host:4222"
    QByteArray project;
    QString credentials, authorities;
    bool isSecure = false;
};

base::Result<Place, QString> readPlace(const QString &text)
{
    const QUrl url(text);
    const QUrlQuery query(url);
    Place place;
    place.isSecure = url.scheme() == u"tls";
    place.server = QStringLiteral("%1://%2:%3").arg(url.scheme(), url.host()).arg(url.port(4222));
    place.project = url.path().mid(1).toLatin1();
    place.credentials = query.queryItemValue(QStringLiteral("creds"), QUrl::FullyDecoded);
    place.authorities = query.queryItemValue(QStringLiteral("ca"), QUrl::FullyDecoded);
    const bool isName = !place.project.isEmpty() && std::ranges::all_of(place.project, [](char sign) {
        return (sign >= 'a' && sign <= 'z') || (sign >= 'A' && sign <= 'Z') || (sign >= '0' && sign <= '9') ||
               sign == '-' || sign == '_';
    });
    if (url.host().isEmpty() || !isName)
        return base::Failure{
            QStringLiteral("%1 is no place: nats://HOST/PROJECT, the project in letters, digits, - and _")
                .arg(text)};
    if (!url.userInfo().isEmpty())
        return base::Failure{
            QStringLiteral("passwords do not belong into a place: ?creds=FILE names a file")};
    for (const QString &file : {place.credentials, place.authorities}) {
        if (!file.isEmpty() && !QFile::exists(file))
            return base::Failure{QStringLiteral("the file %1 is not there").arg(file)};
    }
    if (!place.credentials.isEmpty() &&
        QFile::permissions(place.credentials) & (QFile::ReadGroup | QFile::ReadOther))
        return base::Failure{QStringLiteral("others can read the credentials in %1").arg(place.credentials)};
    return place;
}

} // namespace

struct NatsCarrier::Library {
    struct Drawing {
        OwnedSubscription changes;
        OwnedSubscription presence;
        std::vector<OwnedMessage>
            unconfirmed;               ///< Handed on; the server sends them again until they are confirmed.
        std::map<QString, qint64> own; ///< Places of own messages that came back, by id.
        std::map<QString, std::pair<QString, QElapsedTimer>> people;
        QElapsedTimer sinceTold;
    };

    Place place;
    QString sender, name;
    Knowledge knowledge;
    Owned<natsConnection, natsConnection_Destroy> connection;
    Owned<jsCtx, jsCtx_Destroy> stream;
    std::map<QString, Drawing> drawings; ///< Gone before the connection.
    QElapsedTimer sinceFailed;
    QString trouble;

    QByteArray subject(const QString &drawing, const QString &from) const
    {
        return "quillnote." + place.project + '.' + drawing.toLatin1() + '.' + from.toLatin1();
    }
    QByteArray presence(const QString &drawing, const QString &from) const
    {
        return "quillnote-here." + place.project + '.' + drawing.toLatin1() + '.' + from.toLatin1();
    }
    QByteArray streamName() const { return "quillnote-" + place.project; }

    base::Failure<QString> failure(natsStatus status)
    {
        trouble = QStringLiteral("%1: %2").arg(place.server, QString::fromUtf8(natsStatus_GetText(status)));
        return {trouble};
    }
    base::Result<void, QString> reach();
    natsStatus connect();
    natsStatus ensureStream();
    natsStatus follow(const QString &drawing, Drawing &state);
    void confirm(const QString &drawing, Drawing &state);
    void take(const QString &drawing, Drawing &state, OwnedMessage message, std::vector<Message> &messages);
    natsStatus tell(const QString &drawing, bool isHere);
    void hear(const QString &drawing, Drawing &state);
};

/// Name and password, a line each; nothing when the file holds a token and its seed instead.
static QByteArrayList loginOf(const QString &path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArrayList lines = file.read(10'000).trimmed().split('\n');
    return lines.size() == 2 ? QByteArrayList{lines[0].trimmed(), lines[1].trimmed()} : QByteArrayList();
}

// Connection -----------------------------------------------------------------------------------------

natsStatus NatsCarrier::Library::connect()
{
    natsOptions *made = nullptr;
    natsStatus status = natsOptions_Create(&made);
    const Owned<natsOptions, natsOptions_Destroy> options(made);
    const auto set = [&](auto function, auto... values) {
        if (status == NATS_OK)
            status = function(options.get(), values...);
    };
    const QByteArray server = place.server.toUtf8();
    const QByteArray credentials = QFile::encodeName(place.credentials);
    const QByteArray authorities = QFile::encodeName(place.authorities);
    set(natsOptions_SetURL, server.constData());
    set(natsOptions_SetName, "quillnote-courier");
    set(natsOptions_SetTimeout, std::int64_t(kConnectMilliseconds));
    set(natsOptions_SetMaxReconnect, -1);
    set(natsOptions_SetReconnectWait, std::int64_t(1000));
    if (place.isSecure)
        set(natsOptions_SetSecure, true);
    if (!place.authorities.isEmpty())
        set(natsOptions_LoadCATrustedCertificates, authorities.constData());
    const QByteArrayList login = loginOf(place.credentials);
    if (login.size() == 2)
        set(natsOptions_SetUserInfo, login[0].constData(), login[1].constData());
    else if (!place.credentials.isEmpty())
        set(natsOptions_SetUserCredentialsFromFiles, credentials.constData(),
            static_cast<const char *>(nullptr));
    natsConnection *connected = nullptr;
    if (status == NATS_OK)
        status = natsConnection_Connect(&connected, options.get());
    connection.reset(connected);
    return status;
}

/// Whoever comes first makes it. One that is there already stays as its owner has set it up.
natsStatus NatsCarrier::Library::ensureStream()
{
    jsCtx *context = nullptr;
    jsOptions options;
    jsOptions_Init(&options);
    options.Wait = kAnswerMilliseconds;
    natsStatus status = natsConnection_JetStream(&context, connection.get(), &options);
    stream.reset(context);
    if (status != NATS_OK)
        return status;
    jsStreamInfo *info = nullptr;
    const QByteArray streamIs = streamName();
    status = js_GetStreamInfo(&info, stream.get(), streamIs.constData(), nullptr, nullptr);
    if (status == NATS_NOT_FOUND) {
        jsStreamConfig config;
        jsStreamConfig_Init(&config);
        const QByteArray subjects = "quillnote." + place.project + ".>";
        const char *all[] = {subjects.constData()};
        config.Name = streamIs.constData();
        config.Subjects = all;
        config.SubjectsLen = 1;
        config.Storage = js_FileStorage;
        config.Duplicates = 3600 * kSecond;
        config.MaxMsgSize = std::int32_t(kLargestMessage + 4096);
        status = js_AddStream(&info, stream.get(), &config, nullptr, nullptr);
    }
    jsStreamInfo_Destroy(info);
    return status;
}

base::Result<void, QString> NatsCarrier::Library::reach()
{
    if (connection && natsConnection_Status(connection.get()) == NATS_CONN_STATUS_CONNECTED && stream)
        return {};
    if (connection && stream) // The library tries to get it back.
        return base::Failure{QStringLiteral("%1: the connection is lost").arg(place.server)};
    if (sinceFailed.isValid() && sinceFailed.elapsed() < kAgainMilliseconds)
        return base::Failure{trouble};
    drawings.clear();
    stream.reset();
    natsStatus status = connect();
    if (status == NATS_OK)
        status = ensureStream();
    if (status == NATS_OK)
        return {};
    stream.reset();
    connection.reset();
    sinceFailed.start();
    return failure(status);
}

/// A durable consumer for each person and drawing: the server knows what he has.
natsStatus NatsCarrier::Library::follow(const QString &drawing, Drawing &state)
{
    natsStatus status = NATS_OK;
    if (!state.changes) {
        const QByteArray durable = drawing.toLatin1() + '-' + sender.toLatin1();
        const QByteArray all = subject(drawing, QStringLiteral("*"));
        const QByteArray streamIs = streamName();
        jsSubOptions options;
        jsSubOptions_Init(&options);
        options.Stream = streamIs.constData();
        options.Config.DeliverPolicy = js_DeliverAll;
        options.Config.AckPolicy = js_AckExplicit;
        options.Config.AckWait = 5 * kSecond;
        options.Config.MaxAckPending = 4 * kMessagesATime;
        natsSubscription *made = nullptr;
        status = js_PullSubscribe(&made, stream.get(), all.constData(), durable.constData(), nullptr,
                                  &options, nullptr);
        state.changes.reset(made);
    }
    if (status == NATS_OK && !state.presence) {
        natsSubscription *made = nullptr;
        const QByteArray all = presence(drawing, QStringLiteral("*"));
        status = natsConnection_SubscribeSync(&made, connection.get(), all.constData());
        state.presence.reset(made);
    }
    return status;
}

// Messages -------------------------------------------------------------------------------------------

/// What was seen is in the ledger by now.
void NatsCarrier::Library::confirm(const QString &drawing, Drawing &state)
{
    for (const OwnedMessage &message : state.unconfirmed) {
        jsMsgMetaData *about = nullptr;
        if (natsMsg_GetMetaData(&about, message.get()) != NATS_OK)
            continue;
        const QString from = QString::fromLatin1(natsMsg_GetSubject(message.get())).section(u'.', -1);
        if (knowledge.isSeen(drawing, {qint64(about->Sequence.Stream), from}))
            natsMsg_Ack(message.get(), nullptr);
        else
            natsMsg_Nak(message.get(), nullptr);
        jsMsgMetaData_Destroy(about);
    }
    state.unconfirmed.clear();
}

void NatsCarrier::Library::take(const QString &drawing, Drawing &state, OwnedMessage message,
                                std::vector<Message> &messages)
{
    jsMsgMetaData *about = nullptr;
    if (natsMsg_GetMetaData(&about, message.get()) != NATS_OK)
        return;
    const Stamp stamp{qint64(about->Sequence.Stream),
                      QString::fromLatin1(natsMsg_GetSubject(message.get())).section(u'.', -1)};
    jsMsgMetaData_Destroy(about);
    const QByteArray bytes(natsMsg_GetData(message.get()), natsMsg_GetDataLength(message.get()));
    const auto header = readMessage(bytes);
    const bool isOurs = header && drawingName(*header->shared) == drawing && isSenderName(stamp.sender);
    if (stamp.sender == sender) {
        const char *id = nullptr;
        if (natsMsgHeader_Get(message.get(), "Nats-Msg-Id", &id) == NATS_OK)
            state.own[QString::fromLatin1(id)] = stamp.counter;
    }
    if (!isOurs || stamp.sender == sender || knowledge.isSeen(drawing, stamp)) {
        natsMsg_Ack(message.get(), nullptr);
        return;
    }
    messages.push_back({stamp, bytes});
    state.unconfirmed.push_back(std::move(message));
}

base::Result<std::vector<Message>, QString> NatsCarrier::receive(const QString &drawing)
{
    Library &library = *m_library;
    if (const auto reached = library.reach(); !reached)
        return base::Failure{reached.error()};
    Library::Drawing &state = library.drawings[drawing];
    if (const natsStatus status = library.follow(drawing, state); status != NATS_OK)
        return library.failure(status);
    library.confirm(drawing, state);
    natsMsgList list{};
    const natsStatus status =
        natsSubscription_Fetch(&list, state.changes.get(), kMessagesATime, kFetchMilliseconds, nullptr);
    std::vector<Message> messages;
    for (int i = 0; i < list.Count; ++i)
        library.take(drawing, state, OwnedMessage(std::exchange(list.Msgs[i], nullptr)), messages);
    natsMsgList_Destroy(&list);
    if (status != NATS_OK && status != NATS_TIMEOUT && messages.empty()) {
        state.changes.reset(); // Made anew the next time: a server that came back may not know it.
        return library.failure(status);
    }
    return messages;
}

std::optional<Stamp> NatsCarrier::published(const QString &drawing, const QString &id)
{
    const Library::Drawing &state = m_library->drawings[drawing];
    const auto found = state.own.find(id);
    return found == state.own.end() ? std::nullopt : std::optional(Stamp{found->second, m_library->sender});
}

base::Result<Stamp, QString> NatsCarrier::publish(const QString &drawing, const QString &id,
                                                  const QByteArray &bytes, qint64 above)
{
    Library &library = *m_library;
    if (const auto reached = library.reach(); !reached)
        return base::Failure{reached.error()};
    if (const auto stamp = published(drawing, id))
        return *stamp;
    const QByteArray to = library.subject(drawing, library.sender);
    const QByteArray idIs = id.toLatin1(), streamIs = library.streamName();
    jsPubOptions options;
    jsPubOptions_Init(&options);
    options.MaxWait = kAnswerMilliseconds;
    options.MsgId = idIs.constData();
    options.ExpectStream = streamIs.constData();
    jsPubAck *answer = nullptr;
    const natsStatus status = js_Publish(&answer, library.stream.get(), to.constData(), bytes.constData(),
                                         int(bytes.size()), &options, nullptr);
    const Owned<jsPubAck, jsPubAck_Destroy> owned(answer);
    if (status != NATS_OK)
        return library.failure(status);
    if (!answer->Duplicate && qint64(answer->Sequence) <= above)
        return base::Failure{QStringLiteral("%1: the stream was begun anew; this ledger is of an older one")
                                 .arg(library.place.server)};
    return Stamp{qint64(answer->Sequence), library.sender};
}

// People ---------------------------------------------------------------------------------------------

natsStatus NatsCarrier::Library::tell(const QString &drawing, bool isHere)
{
    const QByteArray news =
        QJsonDocument(QJsonObject{{QStringLiteral("name"), name}, {QStringLiteral("here"), isHere}})
            .toJson(QJsonDocument::Compact);
    return natsConnection_Publish(connection.get(), presence(drawing, sender).constData(), news.constData(),
                                  int(news.size()));
}

void NatsCarrier::Library::hear(const QString &drawing, Drawing &state)
{
    natsMsg *next = nullptr;
    while (natsSubscription_NextMsg(&next, state.presence.get(), 1) == NATS_OK) {
        const OwnedMessage message(next);
        const QString from = QString::fromLatin1(natsMsg_GetSubject(next)).section(u'.', -1);
        const QByteArray bytes(natsMsg_GetData(next), natsMsg_GetDataLength(next));
        if (from == sender || !isSenderName(from))
            continue;
        const QJsonObject told = QJsonDocument::fromJson(bytes).object();
        const bool isNew = !state.people.contains(from);
        auto &[theirs, since] = state.people[from];
        theirs = told[QStringLiteral("name")].toString().left(200);
        if (told[QStringLiteral("here")].toBool())
            since.start();
        else
            since.invalidate();
        if (isNew)
            tell(drawing, true); // He does not know of us yet.
    }
}

base::Result<std::vector<Person>, QString> NatsCarrier::keepHouse(const QString &drawing)
{
    Library &library = *m_library;
    if (const auto reached = library.reach(); !reached)
        return base::Failure{reached.error()};
    Library::Drawing &state = library.drawings[drawing];
    natsStatus status = library.follow(drawing, state);
    if (status == NATS_OK && (!state.sinceTold.isValid() || state.sinceTold.elapsed() > kBeatMilliseconds)) {
        status = library.tell(drawing, true);
        state.sinceTold.start();
    }
    if (status != NATS_OK)
        return library.failure(status);
    library.hear(drawing, state);
    std::vector<Person> people;
    for (const auto &[from, person] : state.people) {
        const auto &[theirs, since] = person;
        people.push_back({from, theirs, since.isValid() && since.elapsed() < kGoneMilliseconds});
    }
    return people;
}

void NatsCarrier::leave(const QString &drawing)
{
    Library &library = *m_library;
    if (library.connection && library.drawings.contains(drawing)) {
        library.confirm(drawing, library.drawings[drawing]);
        library.tell(drawing, false);
        natsConnection_FlushTimeout(library.connection.get(), 500);
    }
    library.drawings.erase(drawing);
}

// Places ---------------------------------------------------------------------------------------------

bool NatsCarrier::isPlace(const QString &place)
{
    return place.startsWith(QLatin1String("nats://")) || place.startsWith(QLatin1String("tls://"));
}

base::Result<std::unique_ptr<Carrier>, QString> NatsCarrier::open(const QString &place, const QString &sender,
                                                                  const QString &name, Knowledge knowledge)
{
    auto read = readPlace(place);
    if (!read)
        return base::Failure{read.error()};
    std::signal(SIGPIPE, SIG_IGN); // A secure connection that breaks is written to once more.
    std::unique_ptr<NatsCarrier> carrier(new NatsCarrier);
    carrier->m_library->place = *std::move(read);
    carrier->m_library->sender = sender;
    carrier->m_library->name = name;
    carrier->m_library->knowledge = std::move(knowledge);
    return std::unique_ptr<Carrier>(std::move(carrier));
}

NatsCarrier::NatsCarrier() : m_library(std::make_unique<Library>()) {}
NatsCarrier::~NatsCarrier() = default;

} // namespace courier
