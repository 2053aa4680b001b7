// Dialogs worked by script lines, seen from their controls and listeners.
#include "host/acui/acuiinstall.h"
#include "host/acui/acuiscript.h"
#include "tests/host/acui/sample_dialog.h"
#include "tests/host/acui/scripted_front_end.h"

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QMessageBox>

using namespace Qt::StringLiterals;

TEST(Dialog, LinesWorkEveryKindOfControl)
{
    SampleDialog dialog;
    QStringList heard;
    const auto hear = [&heard](const QString &text) { heard.append(text); };
    QObject::connect(dialog.control<QLineEdit>(1003), &QLineEdit::textEdited,
                     [&](const QString &t) { hear(u"edited "_s + t); });
    QObject::connect(dialog.control<QLineEdit>(1003), &QLineEdit::editingFinished,
                     [&] { hear(u"left edit"_s); });
    QObject::connect(dialog.control<QPlainTextEdit>(1004), &QPlainTextEdit::textChanged,
                     [&] { hear(u"text changed"_s); });
    QObject::connect(dialog.control<QCheckBox>(1006), &QCheckBox::clicked,
                     [&](bool on) { hear(on ? u"checked"_s : u"cleared"_s); });
    QObject::connect(dialog.control<QComboBox>(1030), &QComboBox::textActivated,
                     [&](const QString &t) { hear(u"chosen "_s + t); });
    QObject::connect(dialog.control<QListWidget>(1063), &QListWidget::itemDoubleClicked,
                     [&](QListWidgetItem *i) { hear(u"double "_s + i->text()); });
    QObject::connect(dialog.menuItem(202), &QAction::triggered, [&] { hear(u"menu"_s); });
    QObject::connect(dialog.control<QPushButton>(1090), &QPushButton::clicked, [&] { hear(u"button"_s); });

    ScriptedFrontEnd script({u"set 1003 \"new text\""_s, u"set 1004 \"one\\ntwo\""_s, u"set 1005 42"_s,
                             u"set 1006 1"_s, u"set 1006 1"_s, u"set 1010 1"_s, u"set 1030 \"li\""_s,
                             u"set 1031 \"typed\""_s, u"doubleclick 1063 \"Li\""_s, u"set 1070 7"_s,
                             u"click 202"_s, u"click 1090"_s, u"ok"_s});
    EXPECT_EQ(dialog.doModal(), QDialog::Accepted);
    EXPECT_TRUE(script.refusals.isEmpty()) << qPrintable(script.refusals.join(u'\n'));
    EXPECT_EQ(script.asked.value(0), u"dialog SampleDialog \"Sample\""_s);

    EXPECT_EQ(dialog.itemText(1003), u"new text"_s);
    EXPECT_EQ(dialog.itemText(1004), u"one\ntwo"_s);
    EXPECT_EQ(dialog.itemText(1005), u"42"_s);
    EXPECT_TRUE(dialog.isChecked(1006));
    EXPECT_EQ(dialog.checkedRadio(1009, 1011), 1010);
    EXPECT_EQ(dialog.itemText(1030), u"li"_s);
    EXPECT_EQ(dialog.itemText(1031), u"typed"_s);
    EXPECT_EQ(dialog.itemText(1063), u"Li"_s);
    EXPECT_EQ(dialog.itemText(1070), u"7"_s);
    EXPECT_EQ(heard, (QStringList{u"edited new text"_s, u"left edit"_s, u"text changed"_s, u"checked"_s,
                                  u"chosen li"_s, u"double Li"_s, u"menu"_s, u"button"_s}));
}

TEST(Dialog, ALineThatCannotBeDoneEndsIt)
{
    struct Case {
        const char *line;
        const char *reason;
    };
    const Case cases[] = {
        {"click 4711", "there is no control 4711"},
        {"set 1090 1", "control 1090 is a button"},
        {"set 1080 x", "control 1080 cannot be set"},
        {"click 1080", "control 1080 cannot be pressed"},
        {"click 1003", "control 1003 cannot be pressed"},
        {"set 202 1", "control 202 is a menu item"},
        {"set 1005 101x", "control 1005 does not take"},
        {"set 1006 2", "control 1006 does not take \"2\""},
        {"set 1009 0", "control 1009 does not take \"0\""},
        {"set 1030 Wang", "control 1030 has no entry \"Wang\""},
        {"set 1063 Wang", "control 1063 has no entry \"Wang\""},
        {"set 1070 10", "control 1070 does not take"},
        {"doubleclick 1003 x", "control 1003 is no list"},
        {"set 1011 1", "control 1011 is hidden"},
        {"click 1090", "control 1090 is disabled"},
        {"set 1004 x", "control 1004 is read-only"},
        {"keys Ctrl+Nothing", "is no key"},
        {"keys Ctrl", "is no key"},
        {"yes", "\"yes\" answers no dialog"},
        {"file x", "\"file\" answers no dialog"},
        {"shut", "no dialog line"},
        {"in CNoWindow click 1", "no window CNoWindow is shown"},
    };
    for (const Case &c : cases) {
        SampleDialog dialog;
        dialog.setItemVisible(1011, false);
        dialog.control<QPlainTextEdit>(1004)->setReadOnly(true);
        if (QByteArrayView(c.line) == "click 1090")
            dialog.setItemEnabled(1090, false);
        ScriptedFrontEnd script({QString::fromUtf8(c.line), u"ok"_s});
        EXPECT_EQ(dialog.doModal(), QDialog::Rejected) << c.line;
        ASSERT_EQ(script.refusals.size(), 1) << c.line;
        const QString refusal = script.refusals.first();
        EXPECT_TRUE(refusal.startsWith(u"dialog SampleDialog \"Sample\": @"_s + QLatin1String(c.line)))
            << qPrintable(refusal);
        EXPECT_TRUE(refusal.contains(QLatin1String(c.reason))) << c.line << ": " << qPrintable(refusal);
        EXPECT_EQ(script.unusedLines().size(), 1) << "the run stops at the line";
    }
}

TEST(Dialog, EndsWhenTheScriptEnds)
{
    for (const bool keepOpen : {false, true}) {
        SampleDialog dialog;
        dialog.keepOpen = keepOpen; // A dialog that cannot be left may not hold up the run.
        ScriptedFrontEnd script({u"set 1003 x"_s, u"ok"_s, u"cancel"_s});
        EXPECT_EQ(dialog.doModal(), keepOpen ? QDialog::Rejected : QDialog::Accepted);
        EXPECT_FALSE(dialog.isVisible());
    }
}

TEST(Dialog, OkAndCancelPressTheButtonsOrCloseADialogWithout)
{
    struct Case {
        const char *line;
        bool hasButtons;
        int result;
    };
    for (const Case &c : {Case{"ok", true, QDialog::Accepted}, Case{"cancel", true, QDialog::Rejected},
                          Case{"ok", false, QDialog::Accepted}, Case{"cancel", false, QDialog::Rejected}}) {
        SampleDialog dialog;
        bool pressed = false;
        for (const int number : {kAcUiOk, kAcUiCancel}) {
            dialog.setItemVisible(number, c.hasButtons);
            QObject::connect(dialog.control<QPushButton>(number), &QPushButton::clicked,
                             [&] { pressed = true; });
        }
        ScriptedFrontEnd script({QString::fromUtf8(c.line)});
        EXPECT_EQ(dialog.doModal(), c.result) << c.line;
        EXPECT_EQ(pressed, c.hasButtons) << c.line;
    }
}

TEST(Dialog, DisabledOkCannotConfirm)
{
    SampleDialog dialog;
    dialog.setItemEnabled(kAcUiOk, false);
    ScriptedFrontEnd script({u"ok"_s});
    EXPECT_EQ(dialog.doModal(), QDialog::Rejected);
    EXPECT_TRUE(script.refusals.value(0).contains(u"control 1 is disabled"_s));
}

TEST(Dialog, SeesKeysBeforeItsControls)
{
    SampleDialog dialog;
    dialog.onKey = [&dialog](QKeyEvent *event) {
        if (event->key() != Qt::Key_Return || !event->modifiers())
            return false;
        dialog.accept();
        return true;
    };
    ScriptedFrontEnd script({u"set 1004 a"_s, u"keys Enter"_s, u"keys b"_s, u"keys Ctrl+Enter"_s});
    EXPECT_EQ(dialog.doModal(), QDialog::Accepted);
    EXPECT_EQ(dialog.itemText(1004), u"a\nb"_s);
    EXPECT_EQ(dialog.translated, 3) << "each press counts once, however far it climbs";

    SampleDialog again;
    again.onKey = dialog.onKey;
    ScriptedFrontEnd held({u"keys Enter"_s});
    held.held = {u"Shift"_s};
    dialog.onKey = {};
    EXPECT_EQ(again.doModal(), QDialog::Rejected) << "the handler closes the other dialog";
    EXPECT_EQ(again.translated, 1);
}

TEST(Dialog, OpensOthersAndKeepsItsNumbersApart)
{
    SampleDialog outer;
    int inner = -1;
    QString innerText;
    QObject::connect(outer.control<QPushButton>(1090), &QPushButton::clicked, [&] {
        SampleDialog second(&outer);
        inner = second.doModal();
        innerText = second.itemText(1003);
    });
    ScriptedFrontEnd script(
        {u"set 1003 outer"_s, u"click 1090"_s, u"set 1003 inner"_s, u"ok"_s, u"set 1006 1"_s, u"cancel"_s});
    EXPECT_EQ(outer.doModal(), QDialog::Rejected);
    EXPECT_TRUE(script.refusals.isEmpty());
    EXPECT_EQ(inner, QDialog::Accepted);
    EXPECT_EQ(innerText, u"inner"_s);
    EXPECT_EQ(outer.itemText(1003), u"outer"_s);
    EXPECT_TRUE(outer.isChecked(1006));
}

TEST(Dialog, ModelessWindowsAreFoundByTheirClass)
{
    QWidget palette;
    auto *panel = new SampleDialog(&palette);
    panel->embed();
    palette.show();
    panel->show();
    const auto act = [](const QString &line) { return acuiPerformOnWindow(*acuiParseAction(line)); };
    EXPECT_TRUE(act(u"in SampleDialog set 1003 \"seen\""_s));
    EXPECT_EQ(panel->itemText(1003), u"seen"_s);
    const auto refused = act(u"in SampleDialog click 4711"_s);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), u"SampleDialog: there is no control 4711"_s);
    palette.hide();
    EXPECT_FALSE(act(u"in SampleDialog set 1003 x"_s)) << "a hidden window takes no actions";
}

TEST(Dialog, RadioGroupsAreSetAndRead)
{
    SampleDialog dialog;
    EXPECT_EQ(dialog.checkedRadio(1009, 1011), 0);
    dialog.checkRadio(1009, 1011, 1011);
    EXPECT_EQ(dialog.checkedRadio(1009, 1011), 1011);
    dialog.checkRadio(1009, 1011, 1009);
    EXPECT_EQ(dialog.checkedRadio(1009, 1011), 1009);
    EXPECT_FALSE(dialog.isChecked(1011));
}

TEST(Install, ADialogThatNoScriptCanAnswerIsClosed)
{
    acuiInstall();
    acuiInstall();
    ScriptedFrontEnd script({});
    QMessageBox stranger(QMessageBox::Question, u"Stranger"_s, u"Wait?"_s,
                         QMessageBox::Yes | QMessageBox::No);
    stranger.setEscapeButton(QMessageBox::No);
    EXPECT_EQ(stranger.exec(), QMessageBox::No);
    ASSERT_EQ(script.refusals.size(), 1);
    EXPECT_TRUE(script.refusals.first().contains(u"QMessageBox"_s)) << qPrintable(script.refusals.first());
    acuiUninstall();
}
