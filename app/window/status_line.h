// The status line: where the cursor is, what is shown, what is selected, and how far long work has come.
#pragma once

#include "host/acap/docman.h"
#include "host/acge/gepoint.h"

#include <QElapsedTimer>
#include <QStatusBar>

class QLabel;
class QProgressBar;
class QToolButton;

namespace window
{

class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    explicit StatusLine(QWidget *parent = nullptr);

    /// Layout, twist, selection and the number of hidden marks of the current document; nothing without one.
    void refresh();
    void showPlace(const AcGePoint3d &world);
    void showBusy(bool busy);
    /// As AcEdFrontEnd::showService().
    void showService(const QString &text);
    /// As AcEdFrontEnd::progress(). Meanwhile nothing in the program takes keys or clicks but the button that
    /// stops the work.
    void showProgress(const QString &what, double share);

    QString placeText() const;
    QString factsText() const;

Q_SIGNALS:
    void stopWanted();
    void backgroundWanted();

private:
    void letStop();
    /// Of the shown space; counted again when the drawing has changed.
    int hiddenCount(const AcApDocument &document);

    const AcDbDatabase *m_counted = nullptr;
    AcDbObjectId m_countedSpace;
    std::uint64_t m_changeCount = 0;
    int m_hidden = 0;

    QLabel *m_place = nullptr;
    QLabel *m_facts = nullptr;
    QLabel *m_busy = nullptr;
    QLabel *m_service = nullptr;
    QLabel *m_work = nullptr;
    QProgressBar *m_progress = nullptr;
    QToolButton *m_stop = nullptr;
    QToolButton *m_background = nullptr;
    QElapsedTimer m_lastLook; ///< At the stop button.
};

} // namespace window
