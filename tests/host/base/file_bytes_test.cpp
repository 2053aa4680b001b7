// Reading whole files: sizes around the limits of the buffer, pipes, and what cannot be read.
#include "host/base/file_bytes.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QFile>

#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using base::FileBytes;
using base::FileError;
using base::readFileBytes;

static QByteArray pattern(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 251);
    return bytes;
}

TEST(FileBytes, ReadsEverySizeWhole)
{
    const tests::TempDir folder;
    for (const qsizetype size : {0, 1, 65535, 65536, 65537, 3 * 1024 * 1024 + 5}) {
        const QByteArray content = pattern(size);
        auto file = readFileBytes(folder.write(QStringLiteral("评图.bin"), content));
        ASSERT_TRUE(file) << file.error().text().toStdString();
        const FileBytes moved = *std::move(file);
        EXPECT_EQ(moved.view(), std::string_view(content.data(), static_cast<std::size_t>(size)));
    }
}

TEST(FileBytes, ReadsWhatHasNoSizeBeforehand)
{
    const tests::TempDir folder;
    const QByteArray path = QFile::encodeName(folder.path(QStringLiteral("pipe")));
    ASSERT_EQ(::mkfifo(path.constData(), 0600), 0);
    const QByteArray content = pattern(300'000);
    std::thread writer([&] {
        const int pipe = ::open(path.constData(), O_WRONLY);
        for (qsizetype at = 0; at < content.size();)
            at += std::max<ssize_t>(
                0, ::write(pipe, content.data() + at, static_cast<std::size_t>(content.size() - at)));
        ::close(pipe);
    });
    const auto file = readFileBytes(QFile::decodeName(path), base::Pipes::read);
    writer.join();
    ASSERT_TRUE(file);
    EXPECT_EQ(file->view(), std::string_view(content.data(), static_cast<std::size_t>(content.size())));
}

TEST(FileBytes, OutlivesItsFileAndItsFormerOwner)
{
    const tests::TempDir folder;
    const QString path = folder.write(QStringLiteral("a"), "content");
    FileBytes first = *readFileBytes(path);
    QFile::remove(path);
    FileBytes second = FileBytes::fromByteArray("other");
    second = std::move(first);
    EXPECT_EQ(second.view(), "content");
    EXPECT_EQ(first.size(), 0u);
}

TEST(FileBytes, SaysWhyItCannotRead)
{
    const tests::TempDir folder;
    const auto missing = readFileBytes(folder.path(QStringLiteral("missing.dwg")));
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().code, FileError::Code::notFound);
    EXPECT_TRUE(missing.error().text().endsWith(QStringLiteral("missing.dwg: not found")));
    const auto directory = readFileBytes(folder.path());
    ASSERT_FALSE(directory);
    EXPECT_EQ(directory.error().code, FileError::Code::notAFile);
    // Neither waits for a writer nor reads for ever.
    const QString pipe = folder.path(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &path : {pipe, QStringLiteral("/dev/zero")})
        EXPECT_EQ(readFileBytes(path).error().code, FileError::Code::notAFile) << qPrintable(path);
    EXPECT_EQ(readFileBytes("/dev/zero", base::Pipes::read).error().code, FileError::Code::notAFile);
}
