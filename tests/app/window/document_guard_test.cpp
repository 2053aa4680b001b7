// The guard's questions and what comes of the answers: locks, changes on disk, recovery copies, closing.
#include "app/window/document_guard.h"

#include "app/window/recovery_dialog.h"
#include "tests/app/front_end/window_session.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <sys/wait.h>
#include <unistd.h>

using window::DocumentGuard;

namespace
{

const QByteArray kDrawing = "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n1.0\n20\n2.0\n11\n3.0\n21\n4.0\n"
                            "0\nENDSEC\n0\nEOF\n";

class Guard : public testing::Test
{
protected:
    Guard()
    {
        m_poll.setInterval(5);
        QObject::connect(&m_poll, &QTimer::timeout, [this] { answerWaiting(); });
        m_poll.start();
    }
    ~Guard() override
    {
        while (!acDocManager()->documents().empty())
            acDocManager()->closeDocument(acDocManager()->documents().back().get());
        for (const AcApRecoverable &copy : AcApRecovery::recoverable())
            AcApRecovery::discard(copy);
    }

    /// What is pressed at the next boxes and dialogs, in order.
    template <class... Buttons>
    void answers(Buttons... buttons)
    {
        m_answers = {int(buttons)...};
        m_asked.clear();
    }
    /// Texts of the boxes since then; every answer was used.
    QStringList asked()
    {
        EXPECT_TRUE(m_answers.empty());
        return m_asked;
    }
    static void change(AcApDocument *document)
    {
        document->database()->setHeaderVariable("$USERI1", {{70, std::int64_t(++s_changes)}});
    }
    void lockByAnn()
    {
        tests::writeFile(lock, "quillnote-lock 1\tann\telsewhere\t1\t0\t2024-05-06T07:08:09Z\n");
    }

    tests::TempDir folder;
    const QString plan = folder.write("plan.dxf", kDrawing);
    const QString lock = folder.path(".plan.dxf.quill-lock");
    tests::WindowSession session;
    QWidget window;
    DocumentGuard guard{session.front, &window};

private:
    void answerWaiting()
    {
        QWidget *const waiting = QApplication::activeModalWidget();
        if (!waiting)
            return;
        const int answer = m_answers.empty() ? int(QMessageBox::Cancel) : m_answers.front();
        if (m_answers.empty())
            ADD_FAILURE() << "nobody expected to be asked";
        else
            m_answers.erase(m_answers.begin());
        if (auto *const box = qobject_cast<QMessageBox *>(waiting)) {
            m_asked.append(box->text() + box->detailedText());
            QAbstractButton *const button = box->button(QMessageBox::StandardButton(answer));
            ASSERT_TRUE(button) << qPrintable(box->text());
            button->click();
        } else {
            m_asked.append(waiting->windowTitle());
            auto *const buttons = waiting->findChild<QDialogButtonBox *>();
            buttons->button(QDialogButtonBox::StandardButton(answer))->click();
        }
    }

    static inline int s_changes = 0;
    QTimer m_poll;
    std::vector<int> m_answers;
    QStringList m_asked;
};

/// A copy that a crash left behind, of `original`; its LINE has become a POINT.
QString leaveCopy(const QString &original)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    ::waitpid(child, nullptr, 0);
    const QString name = QStringLiteral("%1+%2+1+1.dxf").arg(acapThisProcess().host).arg(child);
    QDir().mkpath(AcApRecovery::userFolder());
    const QString copy = AcApRecovery::userFolder() + u'/' + name;
    tests::writeFile(copy, QByteArray(kDrawing).replace("LINE", "POINT"));
    tests::writeFile(copy + ".record", "quillnote-recovery 1\noriginal " + original.toUtf8() +
                                           "\ntitle plan.dxf\ntime 2199-05-06T07:08:09.000Z\n");
    return copy;
}

QByteArray firstKind()
{
    const BlockContents *const contents = acdbCurDwg()->blockContents(acdbCurDwg()->modelSpaceId());
    return acdbKindName(acdbCurDwg()->stub(contents->entities.at(0))->kind);
}

} // namespace

TEST_F(Guard, AsksAboutSomebodyElsesLock)
{
    struct Case {
        QMessageBox::StandardButton answer;
        bool opens, readOnly, locked;
    };
    for (const Case &c : {Case{QMessageBox::Cancel, false, false, false},
                          {QMessageBox::Open, true, true, false},
                          {QMessageBox::Ignore, true, false, true}}) {
        lockByAnn();
        answers(c.answer);
        EXPECT_EQ(guard.open(plan), c.opens);
        EXPECT_TRUE(asked().value(0).contains("ann (elsewhere")) << qPrintable(asked().value(0));
        EXPECT_EQ(!tests::readFile(lock).contains("ann"), c.locked);
        if (!c.opens)
            continue;
        AcApDocument *const document = acDocManager()->curDocument();
        EXPECT_EQ(document->isReadOnly(), c.readOnly);
        acDocManager()->closeDocument(document);
    }
}

TEST_F(Guard, TellsWhatWasMendedAndWhatCannotBeOpened)
{
    answers(QMessageBox::Ok);
    EXPECT_TRUE(guard.open(folder.write("cut.dxf", kDrawing.left(kDrawing.size() - 8))));
    EXPECT_TRUE(asked().value(0).contains("EOF")) << "the details list it";
    EXPECT_TRUE(session.printed.contains("cut.dxf"));
    answers(QMessageBox::Ok);
    EXPECT_FALSE(guard.open(folder.write("text.dxf", "hello\n")));
    EXPECT_TRUE(asked().value(0).contains("text.dxf"));
}

TEST_F(Guard, SavingAsksBeforeItOverwritesOthers)
{
    AcApDocument *const document = *acDocManager()->openDocument(plan);
    change(document);
    answers();
    EXPECT_TRUE(guard.save(document));
    EXPECT_TRUE(asked().isEmpty());
    EXPECT_TRUE(session.printed.contains(plan)) << "the user hears that it was saved";

    QFile::remove(plan);
    tests::writeFile(plan, kDrawing);
    change(document);
    answers(QMessageBox::Cancel);
    EXPECT_FALSE(guard.save(document));
    EXPECT_EQ(asked().size(), 1);
    EXPECT_EQ(tests::readFile(plan), kDrawing);
    answers(QMessageBox::Ignore);
    EXPECT_TRUE(guard.save(document));
    EXPECT_NE(tests::readFile(plan), kDrawing);

    lockByAnn();
    change(document);
    answers(QMessageBox::Cancel);
    EXPECT_FALSE(guard.save(document));
    EXPECT_TRUE(asked().value(0).contains("ann"));
}

TEST_F(Guard, TypedCommandsLeaveTheSameChoices)
{
    session.front.setDrawingKeeper(&guard);
    const auto type = [this](const QString &line) { session.front.giveText(line); };
    lockByAnn();
    answers(QMessageBox::Ignore, QMessageBox::Cancel, QMessageBox::Ignore);
    session.play({
        [&] { type("OPEN " + plan); },
        [&] {
            ASSERT_TRUE(acDocManager()->curDocument());
            EXPECT_FALSE(acDocManager()->curDocument()->isReadOnly()) << "the lock was taken over";
            QFile::remove(plan);
            tests::writeFile(plan, kDrawing);
            type("POINT 7,8");
        },
        [&] { type("QSAVE"); },
        [&] {
            EXPECT_EQ(tests::readFile(plan), kDrawing);
            type("SAVEAS " + plan);
        },
    });
    EXPECT_EQ(asked().size(), 3);
    EXPECT_TRUE(tests::readFile(plan).contains("POINT"));
}

TEST_F(Guard, ClosingAsksOnlyAboutUnsavedChanges)
{
    AcApDocument *const document = *acDocManager()->openDocument(plan);
    answers();
    EXPECT_TRUE(guard.mayClose(document));
    change(document);
    answers(QMessageBox::Cancel, QMessageBox::Discard, QMessageBox::Save);
    const std::vector<AcApDocument *> all = acDocManager()->allDocuments();
    EXPECT_FALSE(guard.mayClose(all));
    EXPECT_TRUE(guard.mayClose(all));
    EXPECT_TRUE(document->isModified());
    EXPECT_TRUE(guard.mayClose(all));
    EXPECT_FALSE(document->isModified());
    EXPECT_EQ(asked().size(), 3);
}

TEST_F(Guard, NoticesOnceThatAFileWasChanged)
{
    ASSERT_TRUE(acDocManager()->openDocument(plan));
    const auto rewrite = [&](const char *kind) {
        QFile::remove(plan);
        tests::writeFile(plan, QByteArray(kDrawing).replace("LINE", kind));
    };
    session.play({[&] {
        answers();
        guard.checkFiles();
        EXPECT_TRUE(asked().isEmpty());
        rewrite("POINT");
        answers(QMessageBox::No);
        guard.checkFiles();
        guard.checkFiles();
        EXPECT_EQ(asked().size(), 1);
        EXPECT_EQ(firstKind(), "LINE");
        rewrite("3DFACE");
        answers(QMessageBox::Yes);
        guard.checkFiles();
    }});
    EXPECT_EQ(asked().size(), 1);
    EXPECT_EQ(firstKind(), "3DFACE");
    EXPECT_EQ(acDocManager()->documents().size(), 1u);
}

TEST_F(Guard, OffersWhatACrashLeft)
{
    const QString copy = leaveCopy(plan);
    answers(QDialogButtonBox::Close);
    guard.offerRecovery();
    EXPECT_EQ(asked().size(), 1);
    EXPECT_TRUE(QFile::exists(copy)) << "kept for later";

    // Opening the drawing itself offers the copy as well.
    answers(QMessageBox::No);
    EXPECT_TRUE(guard.open(plan));
    EXPECT_EQ(asked().size(), 1);
    EXPECT_FALSE(acDocManager()->curDocument()->isModified());
    acDocManager()->closeDocument(acDocManager()->curDocument());

    answers(QDialogButtonBox::Open);
    guard.offerRecovery();
    EXPECT_EQ(asked().size(), 1);
    ASSERT_TRUE(acDocManager()->curDocument());
    EXPECT_EQ(acDocManager()->curDocument()->fileName(), plan);
    EXPECT_TRUE(acDocManager()->curDocument()->isModified());
    EXPECT_EQ(firstKind(), "POINT");
    EXPECT_TRUE(AcApRecovery::recoverable().isEmpty());
    EXPECT_TRUE(guard.save(acDocManager()->curDocument()));
    EXPECT_TRUE(tests::readFile(plan).contains("POINT"));
    EXPECT_TRUE(QDir(AcApRecovery::userFolder()).isEmpty(QDir::Files));

    const QString second = leaveCopy(folder.path("gone.dxf"));
    answers(QDialogButtonBox::Discard);
    guard.offerRecovery();
    EXPECT_FALSE(QFile::exists(second));
}
