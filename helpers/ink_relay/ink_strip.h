// The tool strip over the drawing: which pen is taken, and what else the person asks for.
#pragma once

#include "helpers/ink_relay/ink_document.h"

#include <QFrame>

#include <array>

class QAction;
class QActionGroup;
class QHBoxLayout;
class QKeySequence;

namespace ink
{

enum class Tool { line, rectangle, roundedRectangle, ellipse, freehand };

/// What the next shape is drawn with.
struct Pen {
    Tool tool = Tool::freehand;
    bool fills = false;
    QRgb color = 0xFFFF0000;
    int width = 2;

    /// Of the shape; freehand strokes are lines.
    Kind kind() const;
};

/// Begins with a red freehand pen of the second width. Every button has a key or is reached with Tab; the
/// strip can be dragged away from what is to be drawn on.
class Strip : public QFrame
{
    Q_OBJECT

public:
    explicit Strip(QWidget *overlay);

    const Pen &pen() const { return m_pen; }
    /// Enables what can be done.
    void follow(const Document &document);

Q_SIGNALS:
    void undoAsked();
    void redoAsked();
    void clearAsked();
    void cancelAsked();
    void doneAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QAction *addAction(QHBoxLayout *row, const QIcon &icon, const QString &name,
                       const QList<QKeySequence> &keys);
    /// One of several: taking it changes the pen.
    template <class Take>
    QAction *addChoice(QHBoxLayout *row, QActionGroup *group, const QIcon &icon, const QString &name,
                       const QList<QKeySequence> &keys, Take take);
    void addTools(QHBoxLayout *row);
    void addWidths(QHBoxLayout *row);
    void addColors(QHBoxLayout *row);
    void addSteps(QHBoxLayout *row);
    void addEndings(QHBoxLayout *row);

    Pen m_pen;
    QAction *m_fill = nullptr;
    QAction *m_undo = nullptr;
    QAction *m_redo = nullptr;
    QAction *m_clear = nullptr;
    QPoint m_heldAt; ///< Where the strip was taken hold of.
};

} // namespace ink
