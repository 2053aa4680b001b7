// Starting programs: what starts, what is only recorded, and what must not start.
#include "host/os/shell.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <sys/stat.h>

using os::ShellRequest;
using os::ShellStatus;

namespace
{
class Shell : public testing::Test
{
protected:
    ~Shell() override
    {
        os::setShellRecorder({});
        os::setShellEnabled(true);
        for (const auto &[name, value] : m_environment)
            qputenv(name, value);
    }
    void setVariable(const char *name, const QByteArray &value)
    {
        m_environment.emplace_back(name, qgetenv(name));
        qputenv(name, value);
    }
    /// A program that writes its folder and arguments into the file "seen".
    QString makeProgram(const QString &name)
    {
        const QString path =
            folder.write(name, "#!/bin/sh\n{ pwd; printf '%s\\n' \"$@\"; } > \"${0%/*}/part\"\n"
                               "mv \"${0%/*}/part\" \"${0%/*}/seen\"\n");
        ::chmod(QFile::encodeName(path).constData(), 0755);
        return path;
    }
    QByteArray seen()
    {
        const QString path = folder.path(QStringLiteral("seen"));
        QElapsedTimer timer;
        for (timer.start(); !QFile::exists(path) && timer.elapsed() < 20'000;)
            QThread::msleep(5);
        return tests::readFile(path);
    }

    tests::TempDir folder;

private:
    std::vector<std::pair<const char *, QByteArray>> m_environment;
};
} // namespace

TEST_F(Shell, StartsAProgramInItsFolderWithItsArguments)
{
    const QString program = makeProgram(QStringLiteral("program"));
    const QString work = folder.path(QStringLiteral("工作"));
    QDir().mkpath(work);
    EXPECT_EQ(os::startProgram(program, {QStringLiteral("two words"), QStringLiteral("评图")}, work),
              ShellStatus::started);
    EXPECT_EQ(seen(), work.toUtf8() + "\ntwo words\n评图\n");

    EXPECT_EQ(os::startProgram(folder.path(QStringLiteral("missing"))), ShellStatus::notFound);
    EXPECT_EQ(os::startProgram(QStringLiteral("no-such-program-anywhere")), ShellStatus::notFound);
    EXPECT_EQ(os::startProgram(program, {}, folder.path(QStringLiteral("missing"))), ShellStatus::notFound);
}

TEST_F(Shell, OpensThroughTheDesktopOnlyWhenThereIsOne)
{
    makeProgram(QStringLiteral("xdg-open"));
    const QString report = folder.write(QStringLiteral("-report.htm"), "x");
    setVariable("PATH", QFile::encodeName(folder.path()) + ":/usr/bin:/bin");
    setVariable("WAYLAND_DISPLAY", {});
    setVariable("DISPLAY", {});
    EXPECT_EQ(os::shellOpen(report), ShellStatus::noDesktop);
    EXPECT_FALSE(QFile::exists(folder.path(QStringLiteral("seen"))));

    setVariable("DISPLAY", ":77");
    EXPECT_EQ(os::shellOpen(folder.path(QStringLiteral("missing.htm"))), ShellStatus::notFound);
    EXPECT_EQ(os::shellOpen(report), ShellStatus::started);
    EXPECT_TRUE(seen().endsWith('\n' + report.toUtf8() + '\n'));
}

TEST_F(Shell, RecordsInsteadOfStarting)
{
    std::vector<ShellRequest> requests;
    os::setShellRecorder([&](const ShellRequest &request) { requests.push_back(request); });
    os::setShellEnabled(false); // The recorder comes first.
    EXPECT_EQ(os::shellOpen(QStringLiteral("https://example.org")), ShellStatus::started);
    EXPECT_EQ(os::startProgram(QStringLiteral("missing"), {QStringLiteral("-x")}, QStringLiteral("/nowhere")),
              ShellStatus::started);
    const std::vector<ShellRequest> expected = {
        {QStringLiteral("https://example.org"), {}, {}, false},
        {QStringLiteral("missing"), {QStringLiteral("-x")}, QStringLiteral("/nowhere"), true}};
    EXPECT_EQ(requests, expected);
}

TEST_F(Shell, StartsNothingWhenSwitchedOff)
{
    os::setShellEnabled(false);
    EXPECT_EQ(os::startProgram(makeProgram(QStringLiteral("program"))), ShellStatus::disabled);
    EXPECT_EQ(os::shellOpen(QStringLiteral("https://example.org")), ShellStatus::disabled);
    EXPECT_FALSE(QFile::exists(folder.path(QStringLiteral("seen"))));
}
