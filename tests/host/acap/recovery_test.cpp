// Recovery copies: when they are written, when they go, and what a crash leaves.
#include "host/acap/recovery.h"

#include "host/acdb/dbsymtb.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace
{

class Recovery : public testing::Test
{
protected:
    AcApDocument *openPlan()
    {
        const QString file = plan();
        if (!QFile::exists(file)) {
            AcApDocument *const made = manager.newDocument();
            EXPECT_TRUE(manager.saveDocument(made, file));
            manager.closeDocument(made);
        }
        const auto opened = manager.openDocument(file);
        EXPECT_TRUE(opened);
        return *opened;
    }
    QString plan() const { return folder.path("plan.dxf"); }
    static void change(AcApDocument *document, int number)
    {
        document->database()->setHeaderVariable("$USERI1", {{70, std::int64_t(number)}});
    }
    static std::int64_t valueIn(const QString &file)
    {
        AcApDocManager other;
        const auto opened = other.openDocument(file);
        EXPECT_TRUE(opened) << qPrintable(file);
        return opened ? (*opened)->database()->headerInteger("$USERI1") : -1;
    }
    QStringList copies() const { return QDir(data.path()).entryList({"*.dxf"}, QDir::Files); }
    QString onlyCopy() const { return data.path(copies().value(0)); }
    void tick(std::chrono::milliseconds later)
    {
        now += later;
        recovery.tick(now);
        recovery.finish();
    }
    /// As if this process had been another one, which is gone.
    QString orphan(const QString &copy)
    {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(0);
        ::waitpid(child, nullptr, 0);
        QStringList parts = QFileInfo(copy).fileName().split(u'+');
        parts[1] = QString::number(child);
        const QString renamed = data.path(parts.join(u'+'));
        EXPECT_TRUE(QFile::rename(copy, renamed));
        EXPECT_TRUE(QFile::rename(copy + ".record", renamed + ".record"));
        return renamed;
    }

    tests::TempDir folder;
    tests::TempDir data;
    AcApDocManager manager;
    AcApRecovery recovery{manager, data.path(), 30s};
    AcApRecovery::Clock::time_point now;
};

} // namespace

TEST_F(Recovery, FollowsTheChangesAndGoesWithThem)
{
    AcApDocument *const document = openPlan();
    tick(60s);
    EXPECT_TRUE(copies().isEmpty()) << "nothing to lose";

    change(document, 1);
    tick(10s);
    tick(29s);
    EXPECT_TRUE(copies().isEmpty());
    tick(1s);
    ASSERT_EQ(copies().size(), 1);
    EXPECT_EQ(valueIn(onlyCopy()), 1);

    change(document, 2); // Seen at the next tick, copied thirty seconds later, over the copy before.
    tick(10s);
    EXPECT_EQ(valueIn(onlyCopy()), 1);
    tick(30s);
    ASSERT_EQ(copies().size(), 1);
    EXPECT_EQ(valueIn(onlyCopy()), 2);
    EXPECT_NE(valueIn(plan()), 2) << "the drawing's own file is not touched";

    ASSERT_TRUE(manager.saveDocument(document, folder.path("elsewhere.dxf"), true));
    EXPECT_EQ(copies().size(), 1) << "a copy elsewhere saves nothing";
    ASSERT_TRUE(manager.saveDocument(document, {}));
    EXPECT_TRUE(data.fileNames().isEmpty());

    change(document, 3);
    tick(10s);
    tick(30s);
    EXPECT_EQ(copies().size(), 1);
    manager.closeDocument(document);
    EXPECT_TRUE(data.fileNames().isEmpty()) << "closed by the user, who knows";
}

TEST_F(Recovery, AnObjectBeingWrittenWaits)
{
    AcApDocument *const document = openPlan();
    AcDbDatabase &database = *document->database();
    for (const bool waits : {false, true}) { // The second time it is known to be changed.
        AcDbObjectPointer<AcDbObject> layer(database.tableRecord(SymbolTable::layer, "0"), AcDb::kForWrite);
        ASSERT_TRUE(layer);
        layer->setGroup(62, std::int64_t(waits));
        if (!waits)
            continue;
        tick(10s);
        tick(60s);
        EXPECT_TRUE(copies().isEmpty());
    }
    tick(1s);
    EXPECT_EQ(copies().size(), 1);
    EXPECT_TRUE(document->isModified()) << "taking a copy is no change and no saving";
}

TEST_F(Recovery, ACrashLeavesCopiesThatOpenAsUnsavedChanges)
{
    AcApDocument *document = openPlan();
    change(document, 5);
    tick(10s);
    tick(30s);
    ASSERT_EQ(copies().size(), 1);
    EXPECT_TRUE(AcApRecovery::recoverable(data.path()).isEmpty()) << "this process still runs";
    const QByteArray copy = tests::readFile(onlyCopy());
    const QByteArray record = tests::readFile(onlyCopy() + ".record");
    const QString name = onlyCopy();
    manager.closeDocument(document);
    tests::writeFile(name, copy);
    tests::writeFile(name + ".record", record);
    const QString left = orphan(name);

    const QList<AcApRecoverable> found = AcApRecovery::recoverable(data.path());
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].copy, left);
    EXPECT_EQ(found[0].original, plan());
    EXPECT_EQ(found[0].title, "plan.dxf");
    EXPECT_LT(qAbs(found[0].time.secsTo(QDateTime::currentDateTime())), 60);
    EXPECT_TRUE(AcApRecovery::newerCopy(plan(), data.path()));
    EXPECT_FALSE(AcApRecovery::newerCopy(folder.path("other.dxf"), data.path()));

    const auto opened = recovery.reopen(found[0]);
    ASSERT_TRUE(opened) << qPrintable(opened.error());
    EXPECT_EQ((*opened)->fileName(), plan());
    EXPECT_TRUE((*opened)->isModified());
    EXPECT_EQ((*opened)->database()->headerInteger("$USERI1"), 5);
    EXPECT_TRUE(AcApRecovery::recoverable(data.path()).isEmpty());
    tick(10s);
    EXPECT_EQ(copies().size(), 1) << "the copy stays until the drawing is saved";
    ASSERT_TRUE(manager.saveDocument(*opened, {}));
    EXPECT_EQ(valueIn(plan()), 5);
    EXPECT_TRUE(data.fileNames().isEmpty());
}

TEST_F(Recovery, WhatSomebodyWroteBeforeTheCopyIsNotOverwritten)
{
    AcApDocument *const document = openPlan();
    const QByteArray theirs = "999\ntheirs\n" + tests::readFile(plan());
    tests::writeFile(plan(), theirs);
    change(document, 5);
    tick(10s);
    tick(30s);
    const QByteArray copy = tests::readFile(onlyCopy());
    const QByteArray record = tests::readFile(onlyCopy() + ".record");
    const QString name = onlyCopy();
    manager.closeDocument(document);
    const auto reopen = [&] {
        tests::writeFile(name, copy);
        tests::writeFile(name + ".record", record);
        orphan(name);
        const auto opened = recovery.reopen(AcApRecovery::recoverable(data.path()).value(0));
        EXPECT_TRUE(opened);
        return *opened;
    };
    AcApDocument *const again = reopen();
    EXPECT_EQ(manager.changedOnDisk(*again), AcApFileChange::changed);
    EXPECT_FALSE(manager.saveDocument(again, {}));
    EXPECT_EQ(tests::readFile(plan()), theirs);
    manager.closeDocument(again);

    QFile::remove(plan());
    AcApDocument *const alone = reopen();
    tests::writeFile(plan(), theirs); // It came while the copy was open.
    EXPECT_FALSE(manager.saveDocument(alone, {}));
    EXPECT_EQ(tests::readFile(plan()), theirs);
}

TEST_F(Recovery, ACopyWithoutRecordIsOfferedToo)
{
    AcApDocument *const document = manager.newDocument();
    change(document, 5);
    tick(10s);
    tick(30s);
    const QString left = orphan(onlyCopy());
    QFile::remove(left + ".record");
    const QList<AcApRecoverable> found = AcApRecovery::recoverable(data.path());
    ASSERT_EQ(found.size(), 1);
    EXPECT_TRUE(found[0].original.isEmpty());
    AcApRecovery::discard(found[0]);
    EXPECT_TRUE(data.fileNames().isEmpty());
}

TEST_F(Recovery, AFullOrMissingFolderIsToldAndTriedAgain)
{
    tests::writeFile(data.path("file"), "in the way");
    AcApRecovery blocked(manager, data.path("file/recovery"), 30s);
    change(openPlan(), 1);
    blocked.tick(now);
    blocked.tick(now += 40s);
    blocked.finish();
    EXPECT_FALSE(blocked.trouble().isEmpty());
    QFile::remove(data.path("file"));
    blocked.tick(now += 1s); // Behind again.
    blocked.tick(now += 40s);
    blocked.finish();
    EXPECT_TRUE(blocked.trouble().isEmpty()) << qPrintable(blocked.trouble());
}
