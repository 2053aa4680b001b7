#include "quillnote/ui/mark_editor.h"

#include "quillnote/frame/settings/settings.h"
#include "ui_201.h"

#include "host/aced/edfrontend.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>

enum Control : int { kText = 1003, kDrawDirectly = 1055, kOk = 1 };

static constexpr QSize kSmallestLayout(200, 20);

QRect markEditorRectangle(const QRect &saved, const QSize &screen)
{
    const bool none = saved.left() == 0 && saved.top() == 0 && saved.width() == 0 && saved.height() == 0;
    const bool outside = saved.left() < 0 || saved.top() < 0 ||
                         saved.left() + saved.width() > screen.width() ||
                         saved.top() + saved.height() > screen.height();
    if (none || outside)
        return {screen.width() / 2 - 450, 0, 900, 180};
    return saved;
}

static QRect savedRectangle()
{
    const int left = settings::number(u"left");
    const int top = settings::number(u"top");
    return {left, top, settings::number(u"right") - left, settings::number(u"bottom") - top};
}

static void saveRectangle(const QRect &rectangle)
{
    settings::setNumber(u"left", rectangle.left());
    settings::setNumber(u"top", rectangle.top());
    settings::setNumber(u"right", rectangle.left() + rectangle.width());
    settings::setNumber(u"bottom", rectangle.top() + rectangle.height());
}

CAddMarkWnd::CAddMarkWnd(const MarkEditorValue &start, QWidget *parent)
    : CAcUiDialog(parent), m_form(std::make_unique<Ui::MarkEditor>()), m_start(start)
{
    m_form->setupUi(this);
    connectOkCancel();
    m_laidOut = size();
    setItemText(kText, start.text);
    setChecked(kDrawDirectly, settings::number(u"derectDraw") == 1);
    setGeometry(markEditorRectangle(savedRectangle(), QGuiApplication::primaryScreen()->size()));
    item(kText)->setFocus();
}

CAddMarkWnd::~CAddMarkWnd() = default;

MarkEditorValue CAddMarkWnd::value() const
{
    MarkEditorValue answer = m_start;
    answer.text = itemText(kText);
    return answer;
}

bool CAddMarkWnd::drawsDirectly() const
{
    return isChecked(kDrawDirectly);
}

bool CAddMarkWnd::preTranslateKey(QKeyEvent *event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const Qt::KeyboardModifiers held =
        event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier);
    if (!isEnter || held == Qt::NoModifier)
        return false;
    setItemText(kText, itemText(kText).trimmed());
    acutPrintf(QStringLiteral("\nCtrl+回车，直接关闭窗口去画标记"));
    accept();
    return true;
}

// Every control keeps its share of the window.
void CAddMarkWnd::resizeEvent(QResizeEvent *event)
{
    CAcUiDialog::resizeEvent(event);
    const QSize now = event->size();
    if (now.width() < kSmallestLayout.width() || now.height() < kSmallestLayout.height() ||
        m_laidOut.isEmpty())
        return;
    const double across = double(now.width()) / m_laidOut.width();
    const double down = double(now.height()) / m_laidOut.height();
    for (QWidget *control : findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        const QRect old = control->geometry();
        control->setGeometry(qRound(old.x() * across), qRound(old.y() * down), qRound(old.width() * across),
                             qRound(old.height() * down));
    }
    m_laidOut = now;
}

std::optional<MarkEditorValue> runMarkEditor(const MarkEditorValue &start)
{
    CAddMarkWnd editor(start);
    if (editor.doModal() != QDialog::Accepted)
        return {};
    saveRectangle(editor.geometry());
    settings::setNumber(u"derectDraw", editor.drawsDirectly() ? 1 : 0);
    return editor.value();
}
