// Names of files whatever their bytes, and texts that a terminal may show.
#include "host/base/path_name.h"
#include "host/base/terminal_text.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

using base::decodePath;
using base::encodePath;

TEST(PathName, EveryNameComesBackAsItWas)
{
    const QByteArray gbk = "/\xB5\xE7\xC6\xF8/plan.dxf";
    for (const QByteArray &name : {gbk, QByteArray("图纸 \xF0\x9F\x98\x80.dxf"), QByteArray("cut \xE5\x9B"),
                                   QByteArray("\xED\xB2\x80"), QByteArray("\xFF\xC3\xBC\x80"), QByteArray()})
        EXPECT_EQ(encodePath(decodePath(name)), name) << name.toHex().constData();
    EXPECT_EQ(decodePath("图.dxf"), QString::fromUtf8("图.dxf"));
    EXPECT_EQ(base::terminalText(decodePath(gbk)), "/\\xb5\\xe7\\xc6\\xf8/plan.dxf");
}

TEST(PathName, FilesWithSuchNamesAreFound)
{
    const tests::TempDir folder;
    const QString path = folder.path() + u'/' + decodePath("\xB5\xE7.dxf");
    EXPECT_FALSE(base::pathExists(path));
    ::close(::open(encodePath(path).constData(), O_CREAT | O_WRONLY, 0644));
    EXPECT_TRUE(base::isPlainFile(path));
    EXPECT_FALSE(base::isFolder(path));
    EXPECT_EQ(base::fullPath(folder.path() + "/./" + decodePath("\xB5\xE7.dxf")), base::fullPath(path));
    EXPECT_TRUE(base::fullPath(path).endsWith(decodePath("\xB5\xE7.dxf")));
    QFile file;
    EXPECT_TRUE(base::openForReading(file, path));
}

TEST(TerminalText, NothingSteersTheTerminalOrTurnsTheText)
{
    const std::pair<const char16_t *, const char *> rows[] = {
        {u"两行\n\tand a tab 😀", "两行\n\tand a tab 😀"},
        {u"a\r\nb\rc", "a\nb\\u000dc"},
        {u"\x1B[2J\x7F\u009B", "\\u001b[2J\\u007f\\u009b"},
        {u"\u202Efxd.exe\u2066\u200F\u061C\u2028", "\\u202efxd.exe\\u2066\\u200f\\u061c\\u2028"},
    };
    for (const auto &[text, safe] : rows)
        EXPECT_EQ(base::terminalText(QString::fromUtf16(text)), QString::fromUtf8(safe));
    EXPECT_EQ(base::terminalText(QString(QChar(0xD83D)) + u'x'), "\\ud83dx");
}
