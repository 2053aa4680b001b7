// The tab bars around the drawing: the open drawings above it, model space and layouts below it.
#pragma once

#include "host/acap/docman.h"

#include <QTabBar>

namespace window
{

/// A tab bar that follows the program; `wanted` tells that the user wants another tab.
class FollowingTabs : public QTabBar
{
    Q_OBJECT

public:
    explicit FollowingTabs(QWidget *parent = nullptr);

Q_SIGNALS:
    void wanted(int place);

protected:
    struct Tab {
        QString text;
        QString toolTip;
    };
    /// Makes these the tabs.
    void show(const std::vector<Tab> &tabs, int current);
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_isFollowing = false;
};

/// The drawing's name, and that it was opened read-only.
QString titleOf(const AcApDocument &document);

class DocumentTabs : public FollowingTabs
{
    Q_OBJECT

public:
    explicit DocumentTabs(QWidget *parent = nullptr);
    void refresh();
};

class LayoutTabs : public FollowingTabs
{
    Q_OBJECT

public:
    explicit LayoutTabs(QWidget *parent = nullptr);
    void refresh();
    /// As the drawing spells it: "Model", "Layout1".
    QString layoutName(int place) const { return m_names.value(place); }

private:
    QStringList m_names;
};

/// "Model", then the sheets in the order of their tabs.
QStringList layoutNames(const AcDbDatabase &database);

} // namespace window
