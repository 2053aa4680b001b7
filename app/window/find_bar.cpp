#include "app/window/find_bar.h"

#include "app/front_end/window_front_end.h"
#include "app/window/icons.h"
#include "host/acdb/dbentity.h"
#include "host/aced/edspace.h"
#include "host/aced/edview.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace window
{

static QToolButton *button(QWidget *parent, const char *iconName, const QString &what)
{
    auto *const made = new QToolButton(parent);
    made->setIcon(icon(iconName));
    made->setAutoRaise(true);
    made->setToolTip(what);
    made->setAccessibleName(what);
    made->setFocusPolicy(Qt::TabFocus);
    return made;
}

FindBar::FindBar(WindowFrontEnd &front, QWidget *parent)
    : QWidget(parent), m_front(front), m_edit(new QLineEdit(this)), m_status(new QLabel(this)),
      m_previous(button(this, "up", tr("上一处 (Shift+回车)"))),
      m_next(button(this, "down", tr("下一处 (回车)")))
{
    auto *const label = new QLabel(tr("查找:"), this);
    label->setBuddy(m_edit);
    m_edit->setAccessibleName(tr("要查找的文字"));
    m_edit->setPlaceholderText(tr("图中的文字"));
    m_edit->setClearButtonEnabled(true);
    m_edit->setMaximumWidth(fontMetrics().averageCharWidth() * 48);
    m_status->setAccessibleName(tr("查找结果"));
    auto *const closing = button(this, "close", tr("关闭查找栏 (Esc)"));

    auto *const line = new QHBoxLayout(this);
    const int gap = fontMetrics().horizontalAdvance(u'x');
    line->setContentsMargins(gap, gap / 2, gap / 2, gap / 2);
    line->setSpacing(gap);
    line->addWidget(label);
    line->addWidget(m_edit, 1);
    line->addWidget(m_previous);
    line->addWidget(m_next);
    line->addWidget(m_status);
    line->addStretch(1);
    line->addWidget(closing);

    connect(m_next, &QToolButton::clicked, this, [this] { step(1); });
    connect(m_previous, &QToolButton::clicked, this, [this] { step(-1); });
    connect(closing, &QToolButton::clicked, this, &FindBar::leave);
    connect(m_edit, &QLineEdit::textEdited, this, [this] { m_status->clear(); });
}

void FindBar::open()
{
    show();
    m_edit->setFocus(Qt::ShortcutFocusReason);
    m_edit->selectAll();
}

void FindBar::leave()
{
    hide();
    Q_EMIT closed();
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        leave();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        step(event->modifiers() & Qt::ShiftModifier ? -1 : 1);
    else
        QWidget::keyPressEvent(event);
}

void FindBar::search(const QString &wanted)
{
    m_edit->setText(wanted);
    m_searched = nullptr;
    step(1);
}

void FindBar::forget()
{
    m_searched = nullptr;
    m_picked = {};
    m_found.clear();
    m_status->clear();
}

QString FindBar::status() const
{
    return m_status->text();
}

void FindBar::step(int by)
{
    m_front.whenIdle([this, by] {
        AcApDocument *const document = curDoc();
        if (!document || m_edit->text().isEmpty())
            return;
        const bool isKnown = m_wanted == m_edit->text() && m_searched == document->database() &&
                             m_changeCount == document->database()->changeCount();
        if (!isKnown)
            searchNow(m_edit->text());
        if (m_found.empty())
            m_status->setText(tr("没有找到"));
        else if (!isKnown)
            goTo(by > 0 ? 0 : m_found.size() - 1);
        else
            goTo((m_at + m_found.size() + std::size_t(by)) % m_found.size());
    });
}

void FindBar::searchNow(const QString &wanted)
{
    m_wanted = wanted;
    m_searched = acdbCurDwg();
    m_changeCount = acdbCurDwg()->changeCount();
    m_found = findTexts(*curDoc(), wanted);
}

/// The text with room around it, so that one sees where it stands.
static void zoomTo(AcApDocument &document, AcDbObjectId id)
{
    constexpr double kRoom = 1.5; ///< Sizes of the text to each side.
    AcDbExtents box;
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (!entity || entity->getGeomExtents(box) != Acad::eOk || !box.isValid())
        return;
    const AcGeVector3d size = box.maxPoint() - box.minPoint();
    const double width = std::max(size.length(), 1e-9);
    const AcGeVector3d room = AcGeVector3d(width, width, 0.0) * kRoom;
    acedRememberView(document);
    acedZoomWindow(document, box.minPoint() - room, box.maxPoint() + room);
}

void FindBar::goTo(std::size_t place)
{
    m_at = place;
    const FoundText &found = m_found[place];
    if (found.space != acedShownSpace(*curDoc())) {
        acedMakeSpaceCurrent(*curDoc(), found.space);
        m_picked = {};
        m_changeCount = acdbCurDwg()->changeCount(); // Another layout is shown, nothing else.
    }
    zoomTo(*curDoc(), found.shown);
    std::vector<AcDbObjectId> &picked = curDoc()->pickSet();
    // What the bar selected before goes; what the user selected stays.
    if (const AcDbObjectId before = std::exchange(m_picked, {}); !before.isNull())
        std::erase(picked, before);
    if (std::ranges::find(picked, found.entity) == picked.end()) {
        picked.push_back(found.entity);
        m_picked = found.entity;
    }
    m_status->setText(tr("%1 / %2: %3").arg(place + 1).arg(m_found.size()).arg(found.text.left(40)));
}

} // namespace window
