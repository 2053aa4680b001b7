#include "tests/support/environment.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>

namespace tests
{

Environment::Environment()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
    qputenv("FONTCONFIG_FILE", QUILL_SOURCE_DIR "/tests/support/fonts.conf");
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        const QString folder = m_scratch.filePath(QString::fromLatin1(variable));
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(variable, QFile::encodeName(folder));
    }
    // Files without a folder belong to nobody.
    QDir::setCurrent(m_scratch.path());
    QCoreApplication::setOrganizationName(QStringLiteral("quillnote"));
    QCoreApplication::setApplicationName(QStringLiteral("quillnote-tests"));
}

int runAll(int argc, char **argv)
{
    GTEST_FLAG_SET(shuffle, true);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

} // namespace tests
