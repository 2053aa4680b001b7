// The mark editor: the dialog in which the reviewer types an opinion. Values in, values out: the caller makes
// or changes the mark.
#pragma once

#include "host/acui/acuidialog.h"

#include <QRect>

#include <memory>
#include <optional>

namespace Ui
{
class MarkEditor;
}

struct MarkEditorValue {
    QString text;
    int weight = 5; ///< Of the phrase chosen last.
    QString bigCategory;
    QString smallCategory;
};

/// Shows the editor until it is closed; no value when it was cancelled. The window's place and its options
/// are kept in the settings.
std::optional<MarkEditorValue> runMarkEditor(const MarkEditorValue &start);

/// Where the editor opens: the saved rectangle, or 900 x 180 pixels at the top of the screen, centred, when
/// there is none or it does not fit the screen.
QRect markEditorRectangle(const QRect &saved, const QSize &screen);

class CAddMarkWnd : public CAcUiDialog
{
    Q_OBJECT

public:
    explicit CAddMarkWnd(const MarkEditorValue &start, QWidget *parent = nullptr);
    ~CAddMarkWnd() override;

    MarkEditorValue value() const;
    /// Check box "draw at once after a phrase is chosen".
    bool drawsDirectly() const;

protected:
    /// Ctrl, Shift or Alt with Enter confirms; Enter alone breaks the line.
    bool preTranslateKey(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    std::unique_ptr<Ui::MarkEditor> m_form;
    MarkEditorValue m_start;
    QSize m_laidOut; ///< Client size that the controls' places belong to.
};
