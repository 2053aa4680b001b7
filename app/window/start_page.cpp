#include "app/window/start_page.h"

#include "app/window/icons.h"
#include "app/window/recent_files.h"

#include <QCommandLinkButton>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace window
{

static QLabel *heading(const QString &text, double size)
{
    auto *const label = new QLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * size);
    label->setFont(font);
    return label;
}

static QCommandLinkButton *link(const QString &what, const QString &description, const char *iconName)
{
    auto *const button = new QCommandLinkButton(what, description);
    button->setIcon(icon(iconName));
    button->setAccessibleName(what);
    button->setAccessibleDescription(description);
    // As high as its text needs, never higher: the room below belongs to nobody.
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    policy.setHeightForWidth(true);
    button->setSizePolicy(policy);
    return button;
}

StartPage::StartPage(QWidget *parent) : QWidget(parent), m_recent(new QVBoxLayout)
{
    const int unit = fontMetrics().height();
    auto *const actions = new QVBoxLayout;
    auto *const opening = link(tr("打开图形…"), tr("DXF 文件；也可以把文件拖到窗口里"), "open");
    auto *const creating = link(tr("新建图形"), tr("从内置样板开始"), "new");
    actions->addWidget(opening);
    actions->addWidget(creating);
    actions->addStretch(1);
    m_recent->setSpacing(0);

    auto *const columns = new QHBoxLayout;
    columns->setSpacing(3 * unit);
    columns->addLayout(actions, 2);
    columns->addLayout(m_recent, 3);

    auto *const page = new QWidget;
    page->setMaximumWidth(52 * unit);
    auto *const rows = new QVBoxLayout(page);
    rows->addStretch(2);
    rows->addWidget(heading(QStringLiteral("Quillnote"), 2.4));
    auto *const purpose = new QLabel(tr("在图纸上写下校审意见，设计人在同一张图里回复。"));
    purpose->setWordWrap(true);
    rows->addWidget(purpose);
    rows->addSpacing(2 * unit);
    rows->addLayout(columns);
    rows->addStretch(3);

    // The list of files may be longer than a small screen is high.
    auto *const content = new QWidget;
    auto *const area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(content);
    auto *const whole = new QVBoxLayout(this);
    whole->setContentsMargins({});
    whole->addWidget(area);

    auto *const middle = new QHBoxLayout(content);
    middle->setContentsMargins(2 * unit, unit, 2 * unit, unit);
    middle->addStretch(1);
    middle->addWidget(page, 8);
    middle->addStretch(1);

    connect(opening, &QCommandLinkButton::clicked, this, &StartPage::openWanted);
    connect(creating, &QCommandLinkButton::clicked, this, &StartPage::newWanted);
    refresh();
}

void StartPage::refresh()
{
    while (QLayoutItem *const item = m_recent->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const QStringList files = RecentFiles::list();
    auto *const title = heading(files.isEmpty() ? tr("还没有打开过图形") : tr("最近的文件"), 1.15);
    title->setContentsMargins(fontMetrics().height() / 2, 0, 0, fontMetrics().height() / 2);
    m_recent->addWidget(title);
    for (const QString &path : files) {
        const QFileInfo file(path);
        auto *const button = link(file.fileName(), file.absolutePath(), "");
        button->setToolTip(path);
        connect(button, &QCommandLinkButton::clicked, this, [this, path] { Q_EMIT fileWanted(path); });
        m_recent->addWidget(button);
    }
    m_recent->addStretch(1);
}

} // namespace window
