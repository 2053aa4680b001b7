#include "host/acui/acuixref.h"

#include "host/acap/docman.h"
#include "host/acdb/dbxref.h"
#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "host/acui/acuidialog.h"
#include "host/acui/acuifile.h"
#include "host/base/host_text.h"

#include <QApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>

namespace
{

enum Control {
    list = 1001,
    attach = 1010,
    overlay,
    reload,
    unload,
    path,
    bind,
    detach,
};

QString stateText(const AcDbXref &xref)
{
    switch (xref.state) {
    case AcDbXrefState::loaded:
        return Host::tr("已加载");
    case AcDbXrefState::unloaded:
        return Host::tr("已卸载");
    case AcDbXrefState::notFound:
        return Host::tr("未找到");
    case AcDbXrefState::refused:
        return Host::tr("不能读取");
    case AcDbXrefState::circular:
        return Host::tr("循环参照");
    }
    return {};
}

class CAcUiXrefDialog : public CAcUiDialog
{
    Q_OBJECT

public:
    CAcUiXrefDialog(AcDbXrefs &xrefs, const QString &chosen, QWidget *parent)
        : CAcUiDialog(parent), m_list(new QTreeWidget(this))
    {
        setWindowTitle(Host::tr("外部参照"));
        m_list->setObjectName(acuiObjectName(list));
        m_list->setHeaderLabels({Host::tr("名称"), Host::tr("状态"), Host::tr("类型"), Host::tr("路径")});
        m_list->setAccessibleName(windowTitle());
        for (const AcDbXref &xref : xrefs.all()) {
            auto *const item = new QTreeWidgetItem(m_list);
            fill(*item, xref, 0);
            if (xref.name.compare(chosen, Qt::CaseInsensitive) == 0)
                m_list->setCurrentItem(item);
        }
        if (!m_list->currentItem())
            m_list->setCurrentItem(m_list->topLevelItem(0));
        m_list->expandAll();
        for (int column = 0; column < 3; ++column)
            m_list->resizeColumnToContents(column);

        auto *const buttons = new QVBoxLayout;
        add(*buttons, attach, Host::tr("附着(&A)..."));
        add(*buttons, overlay, Host::tr("覆盖(&O)..."));
        buttons->addSpacing(fontMetrics().height() / 2);
        add(*buttons, reload, Host::tr("重载(&R)"));
        add(*buttons, unload, Host::tr("卸载(&U)"));
        add(*buttons, path, Host::tr("路径(&P)..."));
        add(*buttons, bind, Host::tr("绑定(&B)"));
        add(*buttons, detach, Host::tr("拆离(&D)"));
        buttons->addStretch();
        auto *const close = new QPushButton(Host::tr("关闭"), this);
        close->setObjectName(acuiObjectName(kAcUiCancel));
        connect(close, &QPushButton::clicked, this, &QDialog::reject);
        buttons->addWidget(close);
        auto *const row = new QHBoxLayout(this);
        row->addWidget(m_list, 1);
        row->addLayout(buttons);
        connect(m_list, &QTreeWidget::currentItemChanged, this, &CAcUiXrefDialog::settleButtons);
        settleButtons();
        const QSize room = (parent ? parent->screen() : QApplication::primaryScreen())->availableSize();
        resize(
            QSize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 22).boundedTo(room * 0.9));
        m_list->setFocus();
    }

    /// The name of the reference that is chosen; empty for none and for nested ones, which belong to others.
    QString chosen() const
    {
        const QTreeWidgetItem *const item = m_list->currentItem();
        return item && !item->parent() ? item->text(0) : QString();
    }

private:
    void add(QVBoxLayout &buttons, int number, const QString &caption)
    {
        auto *const button = new QPushButton(caption, this);
        button->setObjectName(acuiObjectName(number));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, number] { done(number); });
        buttons.addWidget(button);
    }

    void settleButtons()
    {
        for (const int number : {reload, unload, path, bind, detach})
            setItemEnabled(number, !chosen().isEmpty());
    }

    static void fill(QTreeWidgetItem &item, const AcDbXref &xref, int depth)
    {
        item.setText(0, xref.name);
        item.setText(1, stateText(xref));
        item.setText(2, xref.isOverlay ? Host::tr("覆盖") : Host::tr("附着"));
        item.setText(3, QDir::toNativeSeparators(xref.path));
        const QString trouble = acdbXrefTrouble(xref);
        const QString hint = trouble.isEmpty() ? QDir::toNativeSeparators(xref.file) : trouble;
        for (int column = 0; column < 4; ++column)
            item.setToolTip(column, hint);
        constexpr int kDeepest = 8; // Whoever has more looks into the drawing itself.
        if (!xref.database || depth >= kDeepest)
            return;
        for (const AcDbXref &nested : xref.database->xrefs().all())
            fill(*new QTreeWidgetItem(&item), nested, depth + 1);
    }

    QTreeWidget *m_list;
};

void chooseNewPath(const QString &name, const QString &present)
{
    QString path;
    if (acedGetFileD(Host::tr("%1 的图形文件").arg(name), present, QStringLiteral("dwg;dxf"), kAcUiOpenFile,
                     path) == RTNORM)
        acedCommandS({QStringLiteral("-XREF"), QStringLiteral("Path"), name, path});
}

void xref()
{
    QString name;
    for (;;) {
        AcDbXrefs &xrefs = acdbCurDwg()->xrefs();
        CAcUiXrefDialog dialog(xrefs, name, QApplication::activeWindow());
        const int pressed = dialog.doModal();
        name = dialog.chosen();
        const auto run = [&](const char *option) {
            acedCommandS({QStringLiteral("-XREF"), QString::fromLatin1(option), name});
        };
        switch (pressed) {
        case attach:
        case overlay:
            // Its place is pointed at in the drawing, after this dialog.
            ads_queueexpr(QStringLiteral("-XREF %1").arg(QLatin1String(pressed == attach ? "A" : "O")));
            return;
        case reload:
            run("Reload");
            break;
        case unload:
            run("Unload");
            break;
        case path: {
            const AcDbXref *const chosen = xrefs.find(acdbCurDwg()->tableRecord(SymbolTable::block, name));
            chooseNewPath(name, chosen ? chosen->file : QString());
            break;
        }
        case bind:
            run("Bind");
            break;
        case detach:
            run("Detach");
            break;
        default:
            return;
        }
    }
}

} // namespace

void acuiRegisterXrefCommand()
{
    acedRegCmds()->addCommand({.group = QStringLiteral("HOST.DIALOGS"),
                               .globalName = QStringLiteral("XREF"),
                               .localName = QStringLiteral("XREF"),
                               .flags = ACRX_CMD_MODAL,
                               .function = xref,
                               .title = QT_TRANSLATE_NOOP("Host", "外部参照"),
                               .aliases = {QStringLiteral("XR")}});
}

#include "acuixref.moc"
