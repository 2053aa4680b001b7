// Where -o puts results, and what it never does.
#include "app/console/output_paths.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QDir>

using console::Overwrite;
using console::planOutputs;
using namespace Qt::StringLiterals;

TEST(OutputPaths, FollowTheNumberOfFilesAndTheTarget)
{
    const tests::TempDir folder;
    const QString existing = folder.write(u"there.dxf"_s, "x");
    QDir(folder.path()).mkdir(u"out"_s);
    QDir(folder.path()).mkpath(u"full/a.dxf"_s);
    const QString out = folder.path(u"out"_s);
    const QString a = u"in/a.dxf"_s;
    const QString b = u"in/b.dxf"_s;
    struct Case {
        const char *what;
        QStringList files;
        QString output;
        Overwrite overwrite;
        QStringList targets; ///< Empty: refused.
        const char *reason = "";
    };
    const Case cases[] = {
        {"no -o", {a, b}, {}, Overwrite::no, {QString(), QString()}},
        {"one file", {a}, folder.path(u"new.dxf"_s), Overwrite::no, {folder.path(u"new.dxf"_s)}},
        {"one file into a folder", {a}, out, Overwrite::no, {out + u"/a.dxf"_s}},
        {"one file into a new folder",
         {a},
         folder.path(u"made/"_s),
         Overwrite::no,
         {folder.path(u"made/a.dxf"_s)}},
        {"several",
         {a, b},
         folder.path(u"made"_s),
         Overwrite::no,
         {folder.path(u"made/a.dxf"_s), folder.path(u"made/b.dxf"_s)}},
        {"existing", {a}, existing, Overwrite::no, {}, "exists; -f overwrites it"},
        {"existing, allowed", {a}, existing, Overwrite::yes, {existing}},
        {"existing in a folder", {u"in/there.dxf"_s}, folder.path(), Overwrite::no, {}, "there.dxf exists"},
        {"a folder of that name", {a}, folder.path(u"full"_s), Overwrite::yes, {}, "is no plain file"},
        {"several into a file", {a, b}, existing, Overwrite::yes, {}, "is no folder"},
        {"the same name twice", {a, u"other/a.dxf"_s}, out, Overwrite::yes, {}, "two files would become"},
        {"no such folder", {a}, folder.path(u"missing/new.dxf"_s), Overwrite::no, {}, "there is no folder"},
    };
    for (const Case &c : cases) {
        const auto planned = planOutputs(c.files, c.output, c.overwrite);
        ASSERT_EQ(planned.ok(), !c.targets.isEmpty()) << c.what;
        if (planned)
            EXPECT_EQ(*planned, c.targets) << c.what;
        else
            EXPECT_TRUE(planned.error().contains(QLatin1String(c.reason))) << qPrintable(planned.error());
    }
    EXPECT_FALSE(QFileInfo::exists(folder.path(u"made"_s))) << "planning makes nothing";
}

TEST(OutputPaths, AreLookedAtAgainBeforeWriting)
{
    const tests::TempDir folder;
    const QString target = folder.path(u"made/a.dxf"_s);
    EXPECT_TRUE(console::prepareOutput(target, Overwrite::no));
    EXPECT_TRUE(QFileInfo(folder.path(u"made"_s)).isDir());
    folder.write(u"made/a.dxf"_s, "a script has written it meanwhile");
    EXPECT_FALSE(console::prepareOutput(target, Overwrite::no));
    EXPECT_TRUE(console::prepareOutput(target, Overwrite::yes));
}
