// The review palette's window: it holds the review panel and remembers how wide it was made.
#pragma once

#include "quillnote/ui/review_panel.h"

#include "host/acui/acuidock.h"

#include <QTimer>

/// The width that a palette begins with: the stored one from 205 to 800, else 205.
int reviewBarWidth(int stored);

class CMyDockControlBar : public CAcUiDockControlBar
{
    Q_OBJECT

public:
    CMyDockControlBar();
    ~CMyDockControlBar() override;

    CMarkWnd2 &panel() const { return *m_panel; }
    /// Docked on the left, in front.
    void open();

Q_SIGNALS:
    void closed();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void keepWidth() const;

    CMarkWnd2 *m_panel;
    QTimer m_resized; ///< The width is stored once the edge is let go.
};
