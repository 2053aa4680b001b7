#include "app/window/document_tabs.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edspace.h"

#include <QDir>
#include <QPainter>

#include <algorithm>

namespace window
{

FollowingTabs::FollowingTabs(QWidget *parent) : QTabBar(parent)
{
    setExpanding(false);
    setDrawBase(false);
    setUsesScrollButtons(true);
    setElideMode(Qt::ElideNone); // Names that cannot be read help nobody: the bar scrolls.
    connect(this, &QTabBar::currentChanged, this, [this](int place) {
        if (!m_isFollowing && place >= 0)
            Q_EMIT wanted(place);
    });
}

void FollowingTabs::show(const std::vector<Tab> &tabs, int current)
{
    m_isFollowing = true;
    const bool hasOthers = count() != int(tabs.size());
    while (count() > int(tabs.size()))
        removeTab(count() - 1);
    for (int i = 0; i < int(tabs.size()); ++i) {
        if (i == count())
            addTab(tabs[i].text);
        else if (tabText(i) != tabs[i].text)
            setTabText(i, tabs[i].text);
        setTabToolTip(i, tabs[i].toolTip);
    }
    setCurrentIndex(current);
    m_isFollowing = false;
    if (hasOthers)
        updateGeometry(); // A hidden tab bar forgets to tell its layout that it has grown.
}

/// Palettes of high contrast have one colour for all tabs.
void FollowingTabs::paintEvent(QPaintEvent *event)
{
    QTabBar::paintEvent(event);
    QRect line = tabRect(currentIndex());
    if (line.isEmpty())
        return;
    const int thick = std::max(2, fontMetrics().height() / 6);
    const bool isBelow = shape() == RoundedSouth;
    line.setHeight(thick);
    line.moveTop(isBelow ? tabRect(currentIndex()).bottom() - thick + 1 : tabRect(currentIndex()).top());
    QPainter(this).fillRect(line, palette().highlight());
}

/// Tab texts take "&" for the keyboard's letter.
static QString asTabText(QString text)
{
    return text.replace(u'&', QStringLiteral("&&"));
}

// Drawings ----------------------------------------------------------------------------------------

QString titleOf(const AcApDocument &document)
{
    const QString name = document.docTitle();
    return document.isReadOnly() ? DocumentTabs::tr("%1（只读）").arg(name) : name;
}

DocumentTabs::DocumentTabs(QWidget *parent) : FollowingTabs(parent)
{
    setTabsClosable(true);
    setDocumentMode(true);
    setAccessibleName(tr("打开的图形"));
}

void DocumentTabs::refresh()
{
    std::vector<Tab> tabs;
    int current = -1;
    for (const auto &document : acDocManager()->documents()) {
        if (document.get() == curDoc())
            current = int(tabs.size());
        const QString mark = document->isModified() ? QStringLiteral(" •") : QString();
        const QString path =
            document->isNamedDrawing() ? QDir::toNativeSeparators(document->fileName()) : tr("尚未保存");
        tabs.push_back({asTabText(titleOf(*document)) + mark,
                        document->isModified() ? tr("%1（已修改）").arg(path) : path});
    }
    show(tabs, current);
}

// Layouts -----------------------------------------------------------------------------------------

/// Place of a sheet's tab; sheets without one come last.
static std::int64_t tabOrder(AcDbObjectId blockRecord)
{
    constexpr std::int64_t kLast = 1 << 20;
    AcDbObjectPointer<AcDbBlockTableRecord> block(blockRecord, AcDb::kForRead);
    if (!block)
        return kLast;
    if (block->isModelSpace())
        return -1;
    AcDbObjectPointer<AcDbObject> layout(block->layoutId(), AcDb::kForRead);
    const resbuf *const order = layout ? findGroup(layout->groups(), 71) : nullptr;
    return order ? order->integer() : kLast;
}

QStringList layoutNames(const AcDbDatabase &database)
{
    std::vector<std::pair<std::int64_t, QString>> layouts;
    for (const AcDbObjectId block : acdbLayoutBlocks(database))
        layouts.emplace_back(tabOrder(block), acdbLayoutName(block));
    std::ranges::stable_sort(layouts, {}, &std::pair<std::int64_t, QString>::first);
    QStringList names;
    for (const auto &[order, name] : layouts)
        names += name;
    return names;
}

LayoutTabs::LayoutTabs(QWidget *parent) : FollowingTabs(parent)
{
    setShape(QTabBar::RoundedSouth);
    setDocumentMode(true);
    setAccessibleName(tr("布局"));
}

void LayoutTabs::refresh()
{
    m_names = curDoc() ? layoutNames(*acdbCurDwg()) : QStringList();
    std::vector<Tab> tabs;
    for (const QString &name : m_names) {
        const bool isModel = name.compare(QLatin1String("Model"), Qt::CaseInsensitive) == 0;
        tabs.push_back(
            {isModel ? tr("模型") : asTabText(name), isModel ? tr("模型空间") : tr("布局 %1").arg(name)});
    }
    const QString current = curDoc() ? acedCurrentLayoutName(*curDoc()) : QString();
    FollowingTabs::show(tabs, int(m_names.indexOf(current)));
}

} // namespace window
