// The shared folder: what is taken from it, what is refused, and when something is cleared.
#include "helpers/courier/folder_carrier.h"

#include "tests/support/files.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace courier;

namespace
{

QByteArray message(const char *mark, const QByteArray &records = "record")
{
    MarkDataHeader header;
    header.markCount = 1;
    header.shared = SharedChange{QByteArray(16, 'd'),
                                 identityOf(QString::fromLatin1(mark)),
                                 unknownDigest(),
                                 QByteArray(12, 'a'),
                                 7,
                                 false};
    return withMarkDataHeader(header, records);
}

const QString kDrawing = QString::fromLatin1(QByteArray(16, 'd').toHex());

QString id(int number)
{
    return QStringLiteral("%1").arg(number, 32, 16, QLatin1Char('0'));
}

struct FolderCarrierTest : testing::Test {
    std::unique_ptr<FolderCarrier> carrier(const QString &sender, const QString &mark = {})
    {
        const Knowledge knowledge{
            [this, sender](const QString &, const Stamp &stamp) {
                return seen.contains({sender, stamp.sender, stamp.counter});
            },
            [this](const QString &, const Stamp &stamp) { return overtaken.contains(stamp.counter); }};
        return std::make_unique<FolderCarrier>(share, sender, sender, mark, knowledge);
    }
    /// How many come, which counts as seen from then on.
    std::size_t receive(FolderCarrier &at, const QString &who)
    {
        const auto messages = at.receive(kDrawing);
        EXPECT_TRUE(messages.ok());
        for (const Message &each : *messages)
            seen.insert({who, each.stamp.sender, each.stamp.counter});
        return messages->size();
    }
    QStringList files(const QString &sender) const
    {
        return QDir(share + u'/' + kDrawing + u'/' + sender).entryList({QStringLiteral("*.quillnote")});
    }

    tests::TempDir folder;
    QString share = folder.path(QStringLiteral("share"));
    std::set<std::tuple<QString, QString, qint64>> seen;
    std::set<qint64> overtaken;
    const QString a = QStringLiteral("aaaaaaaa"), b = QStringLiteral("bbbbbbbb");
};

} // namespace

TEST_F(FolderCarrierTest, MessagesComeOnceInAnOrderAndAnIdIsOneMessage)
{
    QDir().mkpath(share);
    const auto from = carrier(a), to = carrier(b);
    const auto first = from->publish(kDrawing, id(1), message("1"), 0);
    const auto second = from->publish(kDrawing, id(2), message("2"), 41);
    ASSERT_TRUE(first.ok() && second.ok());
    EXPECT_TRUE(*first < *second);
    EXPECT_EQ(second->counter, 42);
    EXPECT_EQ(*carrier(a)->publish(kDrawing, id(1), message("1"), 100), *first) << "a courier started again";
    EXPECT_EQ(carrier(a)->published(kDrawing, id(1)), *first);
    EXPECT_FALSE(from->published(kDrawing, id(3)));
    EXPECT_EQ(receive(*to, b), 2U);
    EXPECT_EQ(receive(*to, b), 0U);
    EXPECT_EQ(receive(*from, a), 0U);
}

TEST_F(FolderCarrierTest, TakesNothingThatIsNoMessageAndTakesItWhenItIsWhole)
{
    QDir().mkpath(share);
    const auto from = carrier(a), to = carrier(b);
    ASSERT_TRUE(from->publish(kDrawing, id(1), message("1"), 0).ok());
    const QString sender = share + u'/' + kDrawing + u'/' + a + u'/';
    const QString path = sender + files(a).front();
    const QByteArray whole = tests::readFile(path);
    tests::writeFile(path, whole.chopped(3));
    QFile::link(QStringLiteral("/etc/passwd"),
                sender + QStringLiteral("000000000002-") + id(2) + QStringLiteral(".quillnote"));
    tests::writeFile(sender + QStringLiteral("000000000003-") + id(3) + QStringLiteral(".quillnote"),
                     "0\nEOF\n");
    tests::writeFile(sender + QStringLiteral("4-x.quillnote"), whole);
    tests::writeFile(share + u'/' + kDrawing + QStringLiteral("/../") + QStringLiteral("cccccccc"), whole);
    QFile large(sender + QStringLiteral("000000000005-") + id(5) + QStringLiteral(".quillnote"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(kLargestMessage + 1));
    EXPECT_EQ(receive(*to, b), 0U);
    tests::writeFile(path, whole);
    EXPECT_EQ(receive(*to, b), 1U);
}

TEST_F(FolderCarrierTest, AFolderThatIsAwayIsNotWrittenTo)
{
    EXPECT_FALSE(carrier(a)->publish(kDrawing, id(1), message("1"), 0).ok());
    EXPECT_FALSE(QDir(share).exists());
    QDir().mkpath(share);
    const auto first = carrier(a);
    ASSERT_TRUE(first->publish(kDrawing, id(1), message("1"), 0).ok());
    QDir().rename(share, share + QStringLiteral("-away"));
    QDir().mkpath(share); // The mount point of a drive that is away.
    EXPECT_FALSE(first->publish(kDrawing, id(2), message("2"), 0).ok());
    EXPECT_FALSE(carrier(a, first->mark())->receive(kDrawing).ok());
    EXPECT_TRUE(QDir(share).isEmpty());
    QDir().rmdir(share);
    QDir().rename(share + QStringLiteral("-away"), share);
    EXPECT_TRUE(first->publish(kDrawing, id(2), message("2"), 0).ok());
}

TEST_F(FolderCarrierTest, ClearsWhatWasOvertakenWhenEverybodyHasIt)
{
    QDir().mkpath(share);
    const auto from = carrier(a), to = carrier(b), late = carrier(QStringLiteral("cccccccc"));
    for (int i = 1; i <= 3; ++i) {
        ASSERT_TRUE(from->publish(kDrawing, id(i), message("1"), i - 1).ok());
        seen.insert({a, a, i});
    }
    overtaken = {1, 2};
    ASSERT_TRUE(from->keepHouse(kDrawing).ok());
    EXPECT_EQ(files(a).size(), 3) << "nobody has anything";
    ASSERT_TRUE(late->keepHouse(kDrawing).ok());
    receive(*to, b);
    ASSERT_TRUE(to->keepHouse(kDrawing).ok());
    ASSERT_TRUE(from->keepHouse(kDrawing).ok());
    EXPECT_EQ(files(a).size(), 3) << "somebody lacks them";
    receive(*late, QStringLiteral("cccccccc"));
    ASSERT_TRUE(late->keepHouse(kDrawing).ok());
    const auto people = from->keepHouse(kDrawing);
    EXPECT_EQ(files(a).size(), 1) << "the state of the mark stays for those who come later";
    ASSERT_EQ(people->size(), 2U);
    EXPECT_TRUE(people->front().isHere);
    to->leave(kDrawing);
    EXPECT_FALSE(from->keepHouse(kDrawing)->front().isHere);
}
