#include "app/window/document_guard.h"

#include "app/front_end/window_front_end.h"
#include "app/window/recovery_dialog.h"
#include "host/acdb/dbxref.h"
#include "host/acui/acuifile.h"
#include "host/base/path_name.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace window
{

static constexpr std::chrono::seconds kTick{10};

DocumentGuard::DocumentGuard(WindowFrontEnd &front, QWidget *window)
    : m_front(front), m_window(window), m_recovery(*acDocManager())
{
    acDocManager()->setLocksFiles(true);
    acDocManager()->addReactor(this);
    m_timer.setInterval(kTick);
    connect(&m_timer, &QTimer::timeout, this, &DocumentGuard::tick);
}

DocumentGuard::~DocumentGuard()
{
    acDocManager()->removeReactor(this);
    acDocManager()->setLocksFiles(false);
}

// Telling and asking ------------------------------------------------------------------------------

int DocumentGuard::ask(QMessageBox &box)
{
    const bool wasAsking = std::exchange(m_isAsking, true);
    box.setWindowTitle(QApplication::applicationDisplayName());
    box.setTextFormat(Qt::PlainText);
    QApplication::setOverrideCursor(Qt::ArrowCursor); // The caller may have set the one for waiting.
    const int pressed = box.exec();
    QApplication::restoreOverrideCursor();
    m_isAsking = wasAsking;
    return pressed;
}

bool DocumentGuard::tell(const QString &trouble)
{
    m_front.print(u'\n' + trouble);
    QMessageBox box(QMessageBox::Warning, {}, trouble, QMessageBox::Ok, m_window);
    ask(box);
    return false;
}

static QString timeText(const QDateTime &time)
{
    return QLocale().toString(time.toLocalTime(), QLocale::ShortFormat);
}

static QString holderText(const AcApLockHolder &holder)
{
    if (holder.user.isEmpty())
        return DocumentGuard::tr("他人");
    const QString time = holder.since.isValid() ? timeText(holder.since) : QString();
    return QStringLiteral("%1 (%2)").arg(holder.user,
                                         QStringList{holder.process.host, time}.join(QStringLiteral(", ")));
}

/// What is special about the lock of a drawing that was opened; often nothing.
static QString lockLine(const AcApDocument &document)
{
    const QString name = document.docTitle();
    switch (document.lockResult().value_or(AcApFileLock::taken)) {
    case AcApFileLock::taken:
        return {};
    case AcApFileLock::takenOver:
        return DocumentGuard::tr("%1: 接管了 %2 留下的锁定文件。")
            .arg(name, holderText(document.lockHolder()));
    case AcApFileLock::refused:
        return DocumentGuard::tr("%1 正由 %2 编辑，以只读方式打开。")
            .arg(name, holderText(document.lockHolder()));
    case AcApFileLock::impossible:
        return DocumentGuard::tr("%1: 文件夹中不能建立锁定文件，他人可能同时编辑。").arg(name);
    }
    return {};
}

static QString repairsLine(const AcApDocument &document)
{
    return DocumentGuard::tr("打开 %1 时修正了 %2 处损坏。")
        .arg(document.docTitle())
        .arg(document.database()->repairs().size());
}

/// Whichever way a drawing was opened, the user hears what is special about it.
void DocumentGuard::documentCreated(AcApDocument *document)
{
    if (const QString line = lockLine(*document); !line.isEmpty())
        m_front.print(u'\n' + line);
    if (!document->database()->repairs().isEmpty())
        m_front.print(u'\n' + repairsLine(*document));
    tellXrefs(*document);
}

/// The references that show nothing.
void DocumentGuard::tellXrefs(const AcApDocument &document)
{
    AcDbXrefs &xrefs = document.database()->xrefs();
    for (const std::vector<AcDbXref> &some : {xrefs.all(), xrefs.nested()}) {
        for (const AcDbXref &xref : some) {
            if (xref.state != AcDbXrefState::loaded && xref.state != AcDbXrefState::unloaded)
                m_front.print(u'\n' + tr("外部参照 %1 没有显示: %2").arg(xref.name, acdbXrefTrouble(xref)));
        }
    }
}

void DocumentGuard::tellRepairs(const AcApDocument &document)
{
    const QStringList repairs = document.database()->repairs();
    if (repairs.isEmpty())
        return;
    QMessageBox box(QMessageBox::Information, {}, repairsLine(document), QMessageBox::Ok, m_window);
    box.setDetailedText(repairs.join(u'\n'));
    ask(box);
}

// Opening -----------------------------------------------------------------------------------------

bool DocumentGuard::openRecovered(const AcApRecoverable &copy)
{
    const auto opened = m_recovery.reopen(copy);
    return opened || tell(tr("不能恢复图形: %1").arg(opened.error()));
}

bool DocumentGuard::open(const QString &path)
{
    const auto &documents = acDocManager()->documents();
    const bool isOpen = std::ranges::any_of(documents, [&](const auto &each) {
        return each->isNamedDrawing() && each->fileName() == base::fullPath(path);
    });
    if (const auto copy = isOpen ? std::nullopt : AcApRecovery::newerCopy(path)) {
        QMessageBox box(
            QMessageBox::Question, {},
            tr("%1 有一份更新的恢复副本(%2)，其中有未保存的修改。").arg(copy->title, timeText(copy->time)),
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, m_window);
        box.button(QMessageBox::Yes)->setText(tr("打开恢复副本(&R)"));
        box.button(QMessageBox::No)->setText(tr("打开文件，保留副本(&F)"));
        const int pressed = ask(box);
        if (pressed != QMessageBox::No)
            return pressed == QMessageBox::Yes && openRecovered(*copy);
    }
    AcApOpenAs as = AcApOpenAs::editable;
    if (const auto holder = acapForeignLock(base::fullPath(path))) {
        QMessageBox box(QMessageBox::Question, {},
                        tr("%1 正由 %2 编辑。").arg(QFileInfo(path).fileName(), holderText(*holder)),
                        QMessageBox::Open | QMessageBox::Ignore | QMessageBox::Cancel, m_window);
        box.button(QMessageBox::Open)->setText(tr("以只读方式打开(&R)"));
        box.button(QMessageBox::Ignore)->setText(tr("仍然编辑(&E)"));
        box.setDefaultButton(QMessageBox::Open);
        const int pressed = ask(box);
        if (pressed == QMessageBox::Cancel)
            return false;
        as = pressed == QMessageBox::Ignore ? AcApOpenAs::takeOver : AcApOpenAs::readOnly;
    }
    const auto opened = acDocManager()->openDocument(path, as);
    if (!opened)
        return !acDocManager()->wasStopped() && tell(tr("不能打开图形: %1").arg(opened.error()));
    if (!isOpen)
        tellRepairs(**opened);
    return true;
}

// Saving ------------------------------------------------------------------------------------------

/// What the format of a name cannot hold.
bool DocumentGuard::mayLose(const AcApDocument &document, const QString &path)
{
    const QStringList losses = acDocManager()->lossesOfSaving(document, path);
    if (losses.isEmpty())
        return true;
    QMessageBox box(QMessageBox::Warning, {}, tr("另存为 %1 会有损失。继续吗?").arg(path),
                    QMessageBox::Save | QMessageBox::Cancel, m_window);
    box.setInformativeText(losses.join(u'\n'));
    box.setDefaultButton(QMessageBox::Cancel);
    return ask(box) == QMessageBox::Save;
}

bool DocumentGuard::write(AcApDocument *document, const QString &path, AcApOverwriteChanged overwrite)
{
    if (!path.isEmpty() && !mayLose(*document, path))
        return false;
    const auto saved = acDocManager()->saveDocument(document, path, false, overwrite);
    if (saved) {
        m_front.print(u'\n' + tr("已保存 %1。").arg(QDir::toNativeSeparators(document->fileName())));
        if (!saved->note.isEmpty())
            m_front.print(u'\n' + saved->note);
        return true;
    }
    return !acDocManager()->wasStopped() && tell(tr("不能保存图形: %1").arg(saved.error()));
}

bool DocumentGuard::saveElsewhere(AcApDocument *document, const QString &reason)
{
    QMessageBox box(QMessageBox::Warning, {}, reason, QMessageBox::Save | QMessageBox::Cancel, m_window);
    box.button(QMessageBox::Save)->setText(tr("另存为(&A)..."));
    return ask(box) == QMessageBox::Save && saveAs(document);
}

bool DocumentGuard::save(AcApDocument *document, const QString &path)
{
    if (!path.isEmpty() && (!document->isNamedDrawing() || base::fullPath(path) != document->fileName()))
        return write(document, path, AcApOverwriteChanged::no);
    if (!document->isNamedDrawing())
        return saveAs(document);
    if (const QString reason = acDocManager()->whyNotSaved(*document); !reason.isEmpty())
        return saveElsewhere(document, reason);
    const QString name = document->docTitle();
    if (const auto holder = acapForeignLock(document->fileName()))
        return saveElsewhere(document,
                             tr("%1 正由 %2 编辑，不能以原名保存。").arg(name, holderText(*holder)));
    if (acDocManager()->changedOnDisk(*document) != AcApFileChange::changed)
        return write(document, {}, AcApOverwriteChanged::no);

    QMessageBox box(QMessageBox::Warning, {}, tr("%1 打开之后，文件已被他人修改。").arg(name),
                    QMessageBox::Save | QMessageBox::Ignore | QMessageBox::Cancel, m_window);
    box.button(QMessageBox::Save)->setText(tr("另存为(&A)..."));
    box.button(QMessageBox::Ignore)->setText(tr("覆盖他人的修改(&O)"));
    box.setDefaultButton(QMessageBox::Save);
    const int pressed = ask(box);
    if (pressed == QMessageBox::Cancel)
        return false;
    return pressed == QMessageBox::Ignore ? write(document, {}, AcApOverwriteChanged::yes) : saveAs(document);
}

bool DocumentGuard::saveAs(AcApDocument *document)
{
    QString present = document->isNamedDrawing() ? document->fileName() : document->docTitle();
    const QString suffix = acDocManager()->suffixToSave(*document);
    if (const QFileInfo file(present); file.suffix() != suffix)
        present = file.dir().filePath(file.completeBaseName() + u'.' + suffix);
    QString path;
    const QString endings = suffix == u"dxf" ? suffix : suffix + QStringLiteral(";dxf");
    if (acedGetFileD(tr("图形另存为"), present, endings, kAcUiSaveFile, path) != RTNORM)
        return false;
    return save(document, path);
}

bool DocumentGuard::mayClose(AcApDocument *document)
{
    acDocManager()->gatherInput(document);
    if (!document->isModified())
        return true;
    Q_EMIT asksAbout(document);
    QMessageBox box(QMessageBox::Question, {}, tr("%1 的修改尚未保存。保存修改吗?").arg(document->docTitle()),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, m_window);
    box.setDefaultButton(QMessageBox::Save);
    const int pressed = ask(box);
    return pressed == QMessageBox::Discard || (pressed == QMessageBox::Save && save(document));
}

bool DocumentGuard::mayClose(const std::vector<AcApDocument *> &documents)
{
    return std::ranges::all_of(documents, [this](AcApDocument *document) { return mayClose(document); });
}

// Recovery ----------------------------------------------------------------------------------------

void DocumentGuard::offerRecovery()
{
    for (;;) {
        const QList<AcApRecoverable> copies = AcApRecovery::recoverable();
        if (copies.isEmpty())
            return;
        RecoveryDialog dialog(copies, m_window);
        const int choice = dialog.exec();
        const QList<AcApRecoverable> chosen = dialog.chosen();
        if (choice == RecoveryDialog::keep || chosen.isEmpty())
            return;
        bool allDone = true;
        for (const AcApRecoverable &copy : chosen) {
            if (choice == RecoveryDialog::discard)
                AcApRecovery::discard(copy);
            else
                allDone = openRecovered(copy) && allDone;
        }
        if (choice == RecoveryDialog::open || !allDone)
            return; // What is left is offered next time.
    }
}

bool DocumentGuard::leaveAtOnce()
{
    if (acDocManager()->isBusy())
        return false;
    m_recovery.copyNow();
    m_recovery.finish();
    acDocManager()->giveBackLocks();
    return true;
}

void DocumentGuard::watch(bool on)
{
    if (on) {
        m_timer.start();
        m_window->installEventFilter(this);
    } else {
        m_timer.stop();
        m_window->removeEventFilter(this);
    }
}

void DocumentGuard::tick()
{
    m_recovery.tick();
    const QString trouble = m_recovery.trouble();
    if (std::exchange(m_toldTrouble, trouble) != trouble && !trouble.isEmpty())
        m_front.print(u'\n' + tr("不能写恢复副本: %1").arg(trouble));
    if (m_window->isActiveWindow())
        checkFiles();
}

// Files on the disk -------------------------------------------------------------------------------

bool DocumentGuard::eventFilter(QObject *watched, QEvent *event)
{
    // Not from within the event: the question opens a window of its own.
    if (watched == m_window && event->type() == QEvent::WindowActivate)
        QTimer::singleShot(0, this, &DocumentGuard::checkFiles);
    return QObject::eventFilter(watched, event);
}

/// Between commands only: a running command may hold on to the drawing.
void DocumentGuard::checkFiles()
{
    if (m_isAsking || acDocManager()->isBusy() || !m_front.isIdle())
        return;
    const auto isNews = [this](const QString &path) {
        const auto stamp = base::fileStamp(path);
        const auto [told, isFirst] = m_told.try_emplace(path, stamp);
        return isFirst || std::exchange(told->second, stamp) != stamp;
    };
    for (const auto &document : acDocManager()->documents()) {
        if (acDocManager()->changedOnDisk(*document) == AcApFileChange::changed &&
            isNews(document->fileName()))
            return askAboutFile(document.get()); // The list of documents may be another one then.
        QStringList changed;
        for (const AcDbXref &xref : document->database()->xrefs().changedOnDisk()) {
            if (isNews(xref.file))
                changed << xref.name;
        }
        if (!changed.isEmpty())
            return askAboutXrefs(document.get(), changed);
    }
}

/// What a reference shows is no part of the drawing: reading it again loses nothing.
void DocumentGuard::askAboutXrefs(AcApDocument *document, const QStringList &changed)
{
    QMessageBox box(QMessageBox::Question, {},
                    tr("%1 的外部参照已改变: %2。重新加载吗?")
                        .arg(document->docTitle(), changed.join(QStringLiteral(", "))),
                    QMessageBox::Yes | QMessageBox::No, m_window);
    if (ask(box) != QMessageBox::Yes)
        return;
    m_front.whenIdle([this, document] {
        if (!acDocManager()->isOpen(document))
            return;
        document->database()->xrefs().reloadChanged();
        tellXrefs(*document);
    });
}

void DocumentGuard::askAboutFile(AcApDocument *document)
{
    acDocManager()->gatherInput(document);
    QString text = tr("%1 已被他人修改。重新读取吗?").arg(document->docTitle());
    if (document->isModified())
        text += u'\n' + tr("重新读取会丢失您未保存的修改。");
    QMessageBox box(QMessageBox::Question, {}, text, QMessageBox::Yes | QMessageBox::No, m_window);
    box.button(QMessageBox::Yes)->setText(tr("重新读取(&R)"));
    box.button(QMessageBox::No)->setText(tr("保留我的图形(&K)"));
    box.setDefaultButton(QMessageBox::No);
    if (ask(box) != QMessageBox::Yes)
        return;
    m_front.whenIdle([this, document] {
        if (acDocManager()->isOpen(document))
            reload(document);
    });
}

void DocumentGuard::reload(AcApDocument *document)
{
    const auto opened = acDocManager()->rereadDocument(document);
    if (!opened && !acDocManager()->wasStopped())
        tell(tr("不能打开图形: %1").arg(opened.error()));
}

} // namespace window
