// Temporary names: reserved, different, in the user's folder.
#include "host/os/temp_files.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

TEST(TempFiles, EachNameIsReservedByAnEmptyFile)
{
    const auto first = os::temporaryFileName(QStringLiteral("QNS"));
    const auto second = os::temporaryFileName(QStringLiteral("QNS"));
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    const QFileInfo file(*first);
    EXPECT_EQ(file.size(), 0);
    EXPECT_TRUE(file.exists());
    EXPECT_EQ(file.absolutePath(), qEnvironmentVariable("TMPDIR"));
    static const QRegularExpression form(QStringLiteral("^QNS[0-9A-F]{8}\\.TMP$"));
    EXPECT_TRUE(form.match(file.fileName()).hasMatch()) << qPrintable(file.fileName());
    QFile::remove(*first);
    QFile::remove(*second);
}

TEST(TempFiles, MissingFolderIsAnError)
{
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", before + "/missing");
    const auto name = os::temporaryFileName(QStringLiteral("QNS"));
    qputenv("TMPDIR", before);
    ASSERT_FALSE(name);
    EXPECT_EQ(name.error().code, base::FileError::Code::notFound);
}
