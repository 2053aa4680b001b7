// Helper libraries: files of any name, functions by name, what is told when there is none.
#include "host/os/helper_library.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>

using Twice = int (*)(int);

static QString libraryName()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/host_os_answer/Answer_X64.dll");
}

TEST(HelperLibrary, FunctionsOfAFileOfAnyNameAreCalled)
{
    const os::HelperLibrary library(libraryName());
    ASSERT_TRUE(library.isLoaded()) << qPrintable(library.error());
    EXPECT_EQ(library.error(), QString());
    const auto twice = library.function<Twice>("answerTwice");
    ASSERT_NE(twice, nullptr);
    EXPECT_EQ(twice(21), 42);
    EXPECT_EQ(library.entry("answerThrice"), nullptr);
}

TEST(HelperLibrary, OnlyTheNamedFileIsLoaded)
{
    const tests::TempDir folder;
    const QString suffixed = folder.path(QStringLiteral("Answer.so"));
    ASSERT_TRUE(QFile::copy(libraryName(), suffixed));
    EXPECT_TRUE(os::HelperLibrary(suffixed).isLoaded());
    for (const QString &path : {folder.path(QStringLiteral("Answer")), QStringLiteral("libc.so.6"),
                                folder.write(QStringLiteral("text.dll"), "no library"), QString()}) {
        const os::HelperLibrary library(path);
        EXPECT_FALSE(library.isLoaded()) << qPrintable(path);
        EXPECT_EQ(library.function<Twice>("answerTwice"), nullptr);
        EXPECT_FALSE(library.error().isEmpty()) << qPrintable(path);
    }
}
