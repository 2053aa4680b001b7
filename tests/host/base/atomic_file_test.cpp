// Atomic writing: at every moment the target holds the old content or the new, and nothing else is left.
#include "host/base/atomic_file.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QFile>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using base::AtomicFileWriter;
using base::FileError;
using base::writeFileAtomically;

namespace
{
class AtomicFile : public testing::Test
{
protected:
    tests::TempDir folder;
    QString target = folder.path(QStringLiteral("图.dxf"));

    QByteArray native(const QString &path) const { return QFile::encodeName(path); }
    mode_t modeOf(const QString &path) const
    {
        struct stat status;
        return ::stat(native(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    std::optional<FileError::Code> refusal(const QString &path) const
    {
        const auto writer = AtomicFileWriter::open(path);
        return writer ? std::nullopt : std::optional(writer.error().code);
    }
};
} // namespace

TEST_F(AtomicFile, ReplacesTheContentOnlyAtCommit)
{
    tests::writeFile(target, "old");
    QByteArray expected;
    auto writer = *AtomicFileWriter::open(target);
    for (int i = 0; i < 100'000; ++i) { // Small pieces, and large ones between them.
        const QByteArray piece = i % 20'000 == 0 ? QByteArray(300'000, 'x') : QByteArray::number(i);
        writer.write(piece);
        expected += piece;
    }
    EXPECT_EQ(tests::readFile(target), "old");
    ASSERT_TRUE(writer.commit());
    EXPECT_EQ(tests::readFile(target), expected);
    EXPECT_EQ(folder.fileNames(), QStringList(QStringLiteral("图.dxf")));
}

TEST_F(AtomicFile, LeavesNothingBehindWithoutCommit)
{
    tests::writeFile(target, "old");
    {
        auto writer = *AtomicFileWriter::open(target);
        writer.write("half of the new content");
        auto moved = std::move(writer); // The one that was moved from must not remove the file.
        moved.write("more");
        EXPECT_EQ(folder.fileNames().size(), 2);
    }
    EXPECT_EQ(tests::readFile(target), "old");
    EXPECT_EQ(folder.fileNames().size(), 1);
}

TEST_F(AtomicFile, ProcessKilledWhileWritingLeavesTheOldContent)
{
    tests::writeFile(target, "old");
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        auto writer = *AtomicFileWriter::open(target);
        writer.write(QByteArray(1'000'000, 'n'));
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(tests::readFile(target), "old");
}

TEST_F(AtomicFile, KeepsPermissionsAndLinks)
{
    tests::writeFile(target, "old");
    ::chmod(native(target).constData(), 0640);
    const QString link = folder.path(QStringLiteral("link.dxf"));
    ASSERT_EQ(::symlink("图.dxf", native(link).constData()), 0);
    ASSERT_TRUE(writeFileAtomically(link, "new"));
    EXPECT_EQ(tests::readFile(target), "new");
    EXPECT_EQ(modeOf(target), 0640u);
    EXPECT_EQ(QFile::symLinkTarget(link), target);

    const QString dangling = folder.path(QStringLiteral("dangling"));
    ASSERT_EQ(::symlink("made later", native(dangling).constData()), 0);
    ASSERT_TRUE(writeFileAtomically(dangling, "new"));
    EXPECT_EQ(tests::readFile(folder.path(QStringLiteral("made later"))), "new");
}

TEST_F(AtomicFile, NewFilesGetTheUsersUsualPermissions)
{
    const mode_t before = ::umask(027);
    ASSERT_TRUE(writeFileAtomically(target, "new"));
    ::umask(before);
    EXPECT_EQ(modeOf(target), 0640u);
}

TEST_F(AtomicFile, RefusesTargetsThatMustNotBeReplaced)
{
    tests::writeFile(target, "old");
    ::chmod(native(target).constData(), 0444);
    EXPECT_EQ(refusal(target), FileError::Code::readOnly);
    ::chmod(native(target).constData(), 0644);
    ::chmod(native(folder.path()).constData(), 0555);
    EXPECT_EQ(refusal(target), FileError::Code::readOnly);
    ::chmod(native(folder.path()).constData(), 0755);

    EXPECT_EQ(refusal(folder.path(QStringLiteral("no/such/folder.dxf"))), FileError::Code::notFound);
    EXPECT_EQ(refusal(folder.path()), FileError::Code::notAFile);
    const QString loop = folder.path(QStringLiteral("loop"));
    ASSERT_EQ(::symlink("loop", native(loop).constData()), 0);
    EXPECT_EQ(AtomicFileWriter::open(loop).error().systemError, ELOOP);
    EXPECT_EQ(tests::readFile(target), "old");
}

TEST_F(AtomicFile, FullDiskIsReportedAndKeepsTheOldContent)
{
    tests::writeFile(target, "old");
    // A limit on the file size stands in for a full disk.
    rlimit before;
    ::getrlimit(RLIMIT_FSIZE, &before);
    const auto oldHandler = ::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{100'000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const auto result = writeFileAtomically(target, QByteArray(2'000'000, 'n'));
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, oldHandler);

    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, FileError::Code::noSpace);
    EXPECT_EQ(tests::readFile(target), "old");
    EXPECT_EQ(folder.fileNames().size(), 1);
}

TEST_F(AtomicFile, FailingRenameRemovesTheTemporaryFile)
{
    auto writer = *AtomicFileWriter::open(target);
    writer.write("new");
    ASSERT_EQ(::mkdir(native(target).constData(), 0755), 0); // Somebody else takes the name meanwhile.
    const auto result = writer.commit();
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, FileError::Code::notAFile);
    EXPECT_TRUE(folder.fileNames().isEmpty());
}

TEST_F(AtomicFile, WhatKilledWritersLeftIsRemovedAndNothingElse)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        auto writer = *AtomicFileWriter::open(target);
        writer.write(QByteArray(1'000'000, 'n'));
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    tests::writeFile(folder.path(QStringLiteral(".quill-notes.txt")), "of the user");
    auto writing = *AtomicFileWriter::open(target);
    writing.write("new");
    ASSERT_TRUE(writing.finishWriting());

    EXPECT_EQ(base::removeLeftTemporaryFiles(folder.path()), 1);
    EXPECT_EQ(base::removeLeftTemporaryFiles(folder.path(QStringLiteral("missing"))), 0);
    ASSERT_TRUE(writing.commit());
    EXPECT_EQ(tests::readFile(target), "new");
    EXPECT_EQ(folder.fileNames(),
              (QStringList{QStringLiteral(".quill-notes.txt"), QStringLiteral("图.dxf")}));
}

TEST_F(AtomicFile, ReplacesOnlyWhatWasMeant)
{
    const auto writeIf = [this](const base::MayReplace &mayReplace) {
        auto writer = *AtomicFileWriter::open(target);
        writer.write("new");
        return writer.commit(mayReplace);
    };
    const auto never = [](const QString &) { return false; };
    ASSERT_TRUE(writeIf(never)) << "there is nothing to replace";
    tests::writeFile(target, "theirs");
    EXPECT_EQ(writeIf(never).error().code, FileError::Code::changed);
    EXPECT_EQ(tests::readFile(target), "theirs");

    const auto written = writeIf([this](const QString &path) { return path == target; });
    ASSERT_TRUE(written);
    EXPECT_EQ(tests::readFile(target), "new");
    EXPECT_EQ(written->stamp, base::fileStamp(target));
    EXPECT_EQ(written->digest, base::contentDigest("new"));
    EXPECT_EQ(written->digest, base::fileDigest(target));
    EXPECT_EQ(folder.fileNames().size(), 1);
}

TEST_F(AtomicFile, AFileThatComesBetweenTheLookAndTheRenamingIsPutBack)
{
    tests::writeFile(target, "old");
    auto writer = *AtomicFileWriter::open(target);
    writer.write("new");
    const auto result = writer.commit([this](const QString &) {
        const QString other = folder.write(QStringLiteral("other"), "theirs");
        return ::rename(native(other).constData(), native(target).constData()) == 0;
    });
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, FileError::Code::changed);
    EXPECT_EQ(tests::readFile(target), "theirs");
    EXPECT_EQ(folder.fileNames().size(), 1);
}

TEST_F(AtomicFile, WhoClearsUpDisturbsNoReplacing)
{
    tests::writeFile(target, "old");
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    while (child == 0)
        base::removeLeftTemporaryFiles(folder.path());
    int failed = 0;
    for (int save = 0; save < 300; ++save) {
        auto writer = *AtomicFileWriter::open(target);
        writer.write(QByteArray::number(save));
        failed += !writer.commit([](const QString &) { return true; });
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(tests::readFile(target), "299");
}

TEST_F(AtomicFile, KeepsOwnerGroupAndAttributesOrSaysSo)
{
    tests::writeFile(target, "old");
    const QByteArray name = native(target);
    const bool hasAttributes = ::setxattr(name.constData(), "user.note", "kept", 4, 0) == 0;
    const bool isRoot = ::geteuid() == 0;
    if (isRoot) {
        ASSERT_EQ(::chown(name.constData(), 12345, 23456), 0);
    }
    ::chmod(name.constData(), 0660);
    const auto save = [this] {
        auto writer = *AtomicFileWriter::open(target);
        writer.write("new");
        return writer.commit()->notKept;
    };
    EXPECT_EQ(save(), QStringList());
    struct stat status;
    ASSERT_EQ(::stat(name.constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0660u);
    if (isRoot) {
        EXPECT_EQ(std::pair(status.st_uid, status.st_gid), std::pair(uid_t(12345), gid_t(23456)));
    }
    char value[8] = {};
    if (hasAttributes) {
        EXPECT_EQ(::getxattr(name.constData(), "user.note", value, sizeof value), 4);
    }
    ASSERT_EQ(::link(name.constData(), native(folder.path(QStringLiteral("backup"))).constData()), 0);
    EXPECT_EQ(save().size(), 1) << "a backup keeps the old content";
}

/// Root could keep everything: a child that is somebody else saves.
TEST_F(AtomicFile, AnotherUserIsToldAndNobodyGetsMore)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can try it";
    tests::writeFile(target, "old");
    ::chmod(native(folder.path()).constData(), 0777);
    ::chmod(native(target).constData(), 0662);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // The folders above may be closed to him.
        const bool isOther =
            ::chdir(native(folder.path()).constData()) == 0 && ::setgid(23456) == 0 && ::setuid(12345) == 0;
        auto writer = AtomicFileWriter::open(QStringLiteral("图.dxf"));
        if (!writer)
            ::_exit(2);
        const auto written = writer->commit();
        ::_exit(isOther && written && written->notKept.size() == 2 ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "owner and group are told";
    EXPECT_EQ(modeOf(target), 0622u) << "the other group may what everybody might";
}
