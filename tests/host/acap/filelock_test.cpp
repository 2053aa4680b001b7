// Lock files, changes on disk, progress: what keeps two people from overwriting each other.
#include "host/acap/docman.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSysInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

const QByteArray kDrawing = "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n1.0\n20\n2.0\n11\n3.0\n21\n4.0\n"
                            "0\nENDSEC\n0\nEOF\n";

class FileLock : public testing::Test
{
protected:
    FileLock() { manager.setLocksFiles(true); }

    /// A lock as another program writes it.
    void lockAs(const QByteArray &user, const QByteArray &host, qint64 pid, const QByteArray &start = "0")
    {
        tests::writeFile(lock, "quillnote-lock 1\t" + user + '\t' + host + '\t' + QByteArray::number(pid) +
                                   '\t' + start + "\t2024-05-06T07:08:09Z\n");
    }
    AcApDocument *open(AcApOpenAs as = AcApOpenAs::editable)
    {
        const auto opened = manager.openDocument(drawing, as);
        EXPECT_TRUE(opened) << qPrintable(opened ? QString() : opened.error());
        return opened ? *opened : nullptr;
    }
    QString refusal(AcApDocument *document, const QString &path = {})
    {
        const auto saved = manager.saveDocument(document, path);
        return saved ? QString() : saved.error();
    }
    static void change(AcApDocument *document)
    {
        document->database()->setHeaderVariable("$USERI1", {{70, std::int64_t(7)}});
    }
    static qint64 deadProcess()
    {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(0);
        ::waitpid(child, nullptr, 0);
        return child;
    }

    const QByteArray here = QSysInfo::machineHostName().toUtf8();
    tests::TempDir folder;
    const QString drawing = folder.write("plan.dxf", kDrawing);
    const QString lock = folder.path(".plan.dxf.quill-lock");
    AcApDocManager manager;
};

} // namespace

TEST_F(FileLock, IsHeldWhileADrawingIsOpenAndFollowsItsName)
{
    AcApDocument *const document = open();
    EXPECT_FALSE(document->isReadOnly());
    EXPECT_EQ(document->lockResult(), AcApFileLock::taken);
    EXPECT_TRUE(tests::readFile(lock).contains('\t' + here + '\t' + QByteArray::number(::getpid()) + '\t'));
    EXPECT_FALSE(acapForeignLock(drawing));

    change(document);
    ASSERT_EQ(refusal(document, folder.path("other.dxf")), QString());
    EXPECT_EQ(folder.fileNames(), (QStringList{".other.dxf.quill-lock", "other.dxf", "plan.dxf"}));
    manager.closeDocument(document);
    EXPECT_EQ(folder.fileNames(), (QStringList{"other.dxf", "plan.dxf"}));
}

TEST_F(FileLock, OfSomebodyElseMakesADrawingReadOnly)
{
    struct Case {
        const char *name;
        QByteArray host;
        qint64 pid;
    };
    const Case cases[] = {{"another program", here, ::getppid()}, {"another computer", "elsewhere", 1}};
    for (const Case &c : cases) {
        lockAs("ann", c.host, c.pid);
        AcApDocument *const document = open();
        EXPECT_TRUE(document->isReadOnly()) << c.name;
        EXPECT_EQ(document->lockResult(), AcApFileLock::refused) << c.host.constData();
        EXPECT_EQ(document->lockHolder().user, "ann");
        change(document);
        const QString reason = refusal(document);
        EXPECT_TRUE(reason.contains("ann on " + c.host) && reason.contains("2024-05-06"))
            << qPrintable(reason);
        EXPECT_EQ(tests::readFile(drawing), kDrawing);
        EXPECT_EQ(refusal(document, folder.path(c.name) + ".dxf"), QString()) << "another name is free";
        EXPECT_FALSE(document->isReadOnly());
        manager.closeDocument(document);
        EXPECT_TRUE(tests::readFile(lock).contains("ann")) << "the other one's lock stays";
    }
    lockAs("ann", here, ::getppid());
    AcApDocument *const waiting = open();
    change(waiting);
    EXPECT_NE(refusal(waiting), QString());
    QFile::remove(lock); // Ann is done and has changed nothing.
    EXPECT_EQ(refusal(waiting), QString());
    EXPECT_FALSE(waiting->isReadOnly());
    EXPECT_TRUE(QFile::exists(lock));
}

TEST_F(FileLock, BarsScriptsThatWriteTheFile)
{
    manager.setLocksFiles(false);
    lockAs("ann", "elsewhere", 1);
    AcApDocument *const document = open();
    EXPECT_FALSE(document->isReadOnly()) << "reading needs no lock";
    change(document);
    EXPECT_TRUE(manager.saveDocument(document, folder.path("copy.dxf"), true));
    const auto saved = manager.saveDocument(document, drawing, true);
    ASSERT_FALSE(saved);
    EXPECT_TRUE(saved.error().contains("ann on elsewhere"));
}

TEST_F(FileLock, IsTakenOverFromTheGoneAndOnDemand)
{
    lockAs("ann", here, deadProcess());
    AcApDocument *document = open();
    EXPECT_FALSE(document->isReadOnly());
    EXPECT_EQ(document->lockResult(), AcApFileLock::takenOver);
    EXPECT_EQ(document->lockHolder().user, "ann") << "it can be said";
    manager.closeDocument(document);

    const pid_t killed = ::fork();
    if (killed == 0)
        ::_exit(0);
    siginfo_t end{};
    ASSERT_EQ(::waitid(P_PID, id_t(killed), &end, WEXITED | WNOWAIT), 0); // Its number is still taken.
    lockAs("ann", here, killed);
    document = open();
    EXPECT_FALSE(document->isReadOnly());
    manager.closeDocument(document);
    ::waitpid(killed, nullptr, 0);

    lockAs("ann", here, ::getppid(), "1"); // Another process got the number.
    document = open();
    EXPECT_FALSE(document->isReadOnly());
    manager.closeDocument(document);

    lockAs("ann", "elsewhere", 1);
    document = open(AcApOpenAs::takeOver);
    EXPECT_FALSE(document->isReadOnly());
    EXPECT_TRUE(tests::readFile(lock).contains(here));
    lockAs("bob", "elsewhere", 2); // Who takes it over in turn keeps us from saving, and keeps his lock.
    change(document);
    EXPECT_TRUE(refusal(document).contains("bob"));
    manager.closeDocument(document);
    EXPECT_TRUE(tests::readFile(lock).contains("bob"));

    tests::writeFile(lock, "something else\n");
    document = open();
    EXPECT_TRUE(document->isReadOnly()) << "what cannot be read is honoured";
}

TEST_F(FileLock, IsNoConditionForEditing)
{
    // The lock's name would be too long for the file system; root, too, cannot make it.
    const auto opened = manager.openDocument(folder.write(QString(248, 'n') + ".dxf", kDrawing));
    ASSERT_TRUE(opened);
    EXPECT_FALSE((*opened)->isReadOnly());
    EXPECT_EQ((*opened)->lockResult(), AcApFileLock::impossible);
    change(*opened);
    EXPECT_EQ(refusal(*opened), QString());
}

TEST_F(FileLock, AFailedOpeningLeavesNone)
{
    const QString broken = folder.write("broken.dxf", "hello\n");
    EXPECT_FALSE(manager.openDocument(broken));
    EXPECT_EQ(folder.fileNames(), (QStringList{"broken.dxf", "plan.dxf"}));
}

TEST_F(FileLock, ChangesOnDiskAreNotOverwritten)
{
    AcApDocument *const document = open();
    EXPECT_EQ(manager.changedOnDisk(*document), AcApFileChange::none);
    change(document);
    ASSERT_EQ(refusal(document), QString());
    EXPECT_EQ(manager.changedOnDisk(*document), AcApFileChange::none) << "our own saving is no change";
    ASSERT_TRUE(manager.saveDocument(document, drawing, true));
    EXPECT_EQ(manager.changedOnDisk(*document), AcApFileChange::none);

    // The same size within the same second, and another file under the name.
    const QByteArray present = tests::readFile(drawing);
    tests::writeFile(folder.path("new"), present);
    QFile::remove(drawing);
    ASSERT_TRUE(QFile::rename(folder.path("new"), drawing));
    EXPECT_EQ(manager.changedOnDisk(*document), AcApFileChange::changed);
    change(document);
    EXPECT_TRUE(refusal(document).contains("meanwhile"));
    EXPECT_FALSE(manager.saveDocument(document, drawing, true)) << "a copy over it neither";
    EXPECT_EQ(tests::readFile(drawing), present);
    EXPECT_TRUE(manager.saveDocument(document, {}, false, AcApOverwriteChanged::yes));
    EXPECT_EQ(manager.changedOnDisk(*document), AcApFileChange::none);

    QFile::remove(drawing);
    EXPECT_EQ(manager.changedOnDisk(*document), AcApFileChange::missing);
    EXPECT_EQ(refusal(document), QString()) << "nothing is overwritten";
}

TEST_F(FileLock, TheContentCountsWhereSizeAndTimeSayNothing)
{
    manager.setLocksFiles(false);
    AcApDocument *const document = open();
    change(document);
    struct stat status;
    ASSERT_EQ(::stat(qPrintable(drawing), &status), 0);
    const QByteArray other = QByteArray(kDrawing).replace("4.0", "5.0");
    { // In place, and with the time that it had.
        QFile file(drawing);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.write(other);
    }
    const timespec times[] = {status.st_atim, status.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, qPrintable(drawing), times, 0), 0);
    EXPECT_EQ(manager.changedOnDisk(*document), AcApFileChange::none) << "at a glance";
    EXPECT_TRUE(refusal(document).contains("meanwhile"));
    EXPECT_EQ(tests::readFile(drawing), other);
    EXPECT_EQ(folder.fileNames(), QStringList("plan.dxf"));
}

TEST_F(FileLock, WhatIsWrittenDuringASaveIsNotOverwritten)
{
    manager.setLocksFiles(false);
    AcApDocument *const document = open();
    change(document);
    const QString target = folder.path("copy.dxf");
    for (const QString &path : {QString(), target}) {
        const QString file = path.isEmpty() ? drawing : path;
        bool isLocked = false;
        manager.setProgress([&](const QString &, double) {
            isLocked = isLocked || QFile::exists(acapLockFileName(file));
            QFile::remove(file);
            tests::writeFile(file, "theirs");
            return true;
        });
        const auto saved = manager.saveDocument(document, path, !path.isEmpty());
        manager.setProgress({});
        ASSERT_FALSE(saved) << qPrintable(file);
        EXPECT_TRUE(saved.error().contains("meanwhile")) << qPrintable(saved.error());
        EXPECT_EQ(tests::readFile(file), "theirs");
        EXPECT_TRUE(isLocked) << "who saves is seen by others";
        EXPECT_FALSE(QFile::exists(acapLockFileName(file)));
    }
    EXPECT_FALSE(manager.saveDocument(document, target, true, AcApOverwriteChanged::nothing));
    EXPECT_TRUE(manager.saveDocument(document, target, true)) << "it is there before, and wanted";
}

TEST_F(FileLock, StoppingOpensAndSavesNothing)
{
    QStringList told;
    bool goOn = false;
    manager.setProgress([&](const QString &what, double) {
        told.append(what);
        EXPECT_TRUE(manager.isBusy());
        return goOn;
    });
    EXPECT_FALSE(manager.openDocument(drawing));
    EXPECT_TRUE(manager.wasStopped());
    EXPECT_TRUE(manager.documents().empty());
    EXPECT_EQ(told.size(), 2);
    EXPECT_TRUE(told.value(0).contains("plan.dxf"));
    EXPECT_TRUE(told.value(1).isEmpty());
    EXPECT_EQ(folder.fileNames(), QStringList("plan.dxf"));

    goOn = true;
    AcApDocument *const document = open();
    EXPECT_FALSE(manager.wasStopped());
    change(document);
    goOn = false;
    EXPECT_NE(refusal(document), QString());
    EXPECT_EQ(tests::readFile(drawing), kDrawing);
    EXPECT_TRUE(document->isModified());
    EXPECT_FALSE(manager.isBusy());
}

TEST_F(FileLock, ReadingAnewKeepsTheDrawingWhenTheFileIsBad)
{
    AcApDocument *document = open();
    change(document);
    tests::writeFile(drawing, "no drawing");
    EXPECT_FALSE(manager.rereadDocument(document));
    ASSERT_TRUE(manager.isOpen(document));
    EXPECT_TRUE(document->isModified());

    tests::writeFile(drawing, kDrawing);
    const auto opened = manager.rereadDocument(document);
    ASSERT_TRUE(opened);
    EXPECT_EQ(manager.documents().size(), 1u);
    EXPECT_FALSE((*opened)->isModified());
    EXPECT_EQ(manager.changedOnDisk(**opened), AcApFileChange::none);
    EXPECT_TRUE(tests::readFile(lock).contains(here)) << "the lock is the new document's";
}
