// Message boxes and the file dialog, answered by script lines.
#include "host/acui/acuifile.h"
#include "host/acui/acuiinstall.h"
#include "host/acui/acuimessage.h"
#include "tests/host/acui/scripted_front_end.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>

using namespace Qt::StringLiterals;

TEST(MessageBox, TakesOnlyTheButtonsItHas)
{
    struct Case {
        AcEdButtons buttons;
        const char *line; ///< Null: the script has ended.
        AcEdButton result;
        bool refused;
    };
    const Case cases[] = {
        {AcEdButtons::ok, "ok", AcEdButton::ok, false},
        {AcEdButtons::ok, "yes", AcEdButton::ok, true},
        {AcEdButtons::ok, nullptr, AcEdButton::ok, false},
        {AcEdButtons::okCancel, "ok", AcEdButton::ok, false},
        {AcEdButtons::okCancel, "cancel", AcEdButton::cancel, false},
        {AcEdButtons::okCancel, "no", AcEdButton::cancel, true},
        {AcEdButtons::okCancel, nullptr, AcEdButton::cancel, false},
        {AcEdButtons::yesNo, "yes", AcEdButton::yes, false},
        {AcEdButtons::yesNo, "no", AcEdButton::no, false},
        {AcEdButtons::yesNo, "cancel", AcEdButton::no, true},
        {AcEdButtons::yesNo, "set 1003 yes", AcEdButton::no, true},
        {AcEdButtons::yesNoCancel, "yes", AcEdButton::yes, false},
        {AcEdButtons::yesNoCancel, nullptr, AcEdButton::cancel, false},
    };
    acuiInstall();
    for (const Case &c : cases) {
        ScriptedFrontEnd script(c.line ? QStringList{QString::fromUtf8(c.line)} : QStringList());
        EXPECT_EQ(acedAsk(u"Go on?"_s, c.buttons), c.result) << (c.line ? c.line : "end");
        EXPECT_EQ(script.refusals.size(), c.refused ? 1 : 0) << (c.line ? c.line : "end");
        EXPECT_EQ(script.printed, u"\nGo on?"_s);
        ASSERT_EQ(script.asked.size(), 1);
        EXPECT_TRUE(script.asked.first().contains(u"Go on?"_s));
        EXPECT_EQ(acuiIsAlert(script.asked.first()), c.buttons == AcEdButtons::ok);
    }
    acuiUninstall();
}

TEST(MessageBox, EnterPressesWhatChangesLeast)
{
    struct Person : ScriptedFrontEnd {
        Person() : ScriptedFrontEnd({}) {}
        bool isScripted() const override { return false; }
    };
    const std::pair<AcEdButtons, AcEdButton> cases[] = {{AcEdButtons::ok, AcEdButton::ok},
                                                        {AcEdButtons::okCancel, AcEdButton::cancel},
                                                        {AcEdButtons::yesNo, AcEdButton::no},
                                                        {AcEdButtons::yesNoCancel, AcEdButton::cancel}};
    acuiInstall();
    const Person person;
    for (const auto &[buttons, pressed] : cases) {
        QTimer::singleShot(0, [] {
            QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
            QApplication::sendEvent(QApplication::activeModalWidget(), &enter);
        });
        EXPECT_EQ(acedAsk(u"Drop it?"_s, buttons), pressed);
    }
    acuiUninstall();
}

TEST(FileDialog, TakesAPathOrIsLeft)
{
    const tests::TempDir folder;
    const QString existing = folder.write(u"there.html"_s, "x");
    struct Case {
        QString line;
        int flags;
        int result;
        QString path;
        bool refused;
    };
    const Case cases[] = {
        {u"file \"%1\""_s.arg(existing), kAcUiOpenFile, RTNORM, existing, false},
        {u"file "_s + QDir::current().relativeFilePath(existing), kAcUiOpenFile, RTNORM, existing, false},
        {u"file \"%1\""_s.arg(folder.path(u"missing.html"_s)), kAcUiOpenFile, RTCAN, {}, true},
        {u"file \"%1\""_s.arg(folder.path()), kAcUiOpenFile, RTCAN, {}, true},
        {u"file \"%1\""_s.arg(folder.path(u"new"_s)), kAcUiSaveFile, RTNORM, folder.path(u"new.html"_s),
         false},
        {u"file \"%1\""_s.arg(folder.path(u"new.txt"_s)), kAcUiSaveFile, RTNORM, folder.path(u"new.txt"_s),
         false},
        {u"file \"\""_s, kAcUiSaveFile, RTCAN, {}, true},
        {u"cancel"_s, kAcUiOpenFile, RTCAN, {}, false},
        {u"ok"_s, kAcUiOpenFile, RTCAN, {}, true},
    };
    for (const Case &c : cases) {
        ScriptedFrontEnd script({c.line});
        QString path;
        EXPECT_EQ(acedGetFileD(u"Template"_s, {}, u"html; htm"_s, c.flags, path), c.result)
            << qPrintable(c.line);
        EXPECT_EQ(QDir::cleanPath(path), c.path) << qPrintable(c.line);
        EXPECT_EQ(script.refusals.size(), c.refused ? 1 : 0) << qPrintable(c.line);
        EXPECT_TRUE(script.asked.value(0).contains(u"Template"_s));
    }
}
