#include "helpers/phrase_bank/choose_window.h"

#include "helpers/phrase_bank/telling.h"

#include <QComboBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace bank
{

static constexpr int kMostShown = 200;

CPhraseBankWnd::CPhraseBankWnd(Bank &bank, const QString &key, QWidget *parent)
    : CAcUiDialog(parent), m_bank(bank), m_key(key), m_search(new QLineEdit(this)),
      m_banks(new QComboBox(this)), m_list(new QTreeWidget(this)), m_count(new QLabel(this))
{
    setWindowTitle(tr("知识库"));
    m_search->setObjectName(acuiObjectName(1001));
    m_search->setPlaceholderText(tr("输入文字即检索，几个词之间用空格隔开"));
    m_search->setClearButtonEnabled(true);
    m_banks->setObjectName(acuiObjectName(1002));
    m_banks->addItem(tr("全部"), 0);
    for (const BankInfo &info : bank.banks())
        m_banks->addItem(info.name, info.id);
    m_banks->setCurrentIndex(std::max(0, m_banks->findData(bank.searched())));
    m_list->setObjectName(acuiObjectName(1003));
    m_list->setHeaderLabels({tr("条目"), tr("命中"), tr("分类"), tr("选用次数")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setStretchLastSection(false);

    auto *ok = new QPushButton(tr("选用"), this);
    ok->setObjectName(acuiObjectName(kAcUiOk));
    ok->setDefault(true);
    auto *cancel = new QPushButton(tr("取消"), this);
    cancel->setObjectName(acuiObjectName(kAcUiCancel));
    auto *top = new QHBoxLayout;
    top->addWidget(m_search, 1);
    top->addWidget(m_banks);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_count, 1);
    bottom->addWidget(ok);
    bottom->addWidget(cancel);
    auto *column = new QVBoxLayout(this);
    column->addLayout(top);
    column->addWidget(m_list, 1);
    column->addLayout(bottom);

    connect(m_search, &QLineEdit::textChanged, this, [this] { telling([this] { search(); }); });
    connect(m_banks, &QComboBox::currentIndexChanged, this, [this] { telling([this] { search(); }); });
    connect(m_list, &QTreeWidget::doubleClicked, this, &CPhraseBankWnd::choose);
    connect(ok, &QPushButton::clicked, this, &CPhraseBankWnd::choose);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    search();
    m_search->setFocus();
    resize(QSize(820, 480).boundedTo(QGuiApplication::primaryScreen()->availableSize() - QSize(16, 48)));
}

void CPhraseBankWnd::search()
{
    m_found = m_bank.find(m_search->text(), m_key, m_banks->currentData().toLongLong(), kMostShown);
    m_list->clear();
    QList<QTreeWidgetItem *> rows;
    for (const Found &found : m_found) {
        QString line = found.entry.text;
        line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
        auto *row =
            new QTreeWidgetItem({line, found.hits.join(u'、'), found.bank + u'/' + found.entry.category,
                                 QString::number(found.chosen)});
        row->setToolTip(0, found.entry.text);
        rows.append(row);
    }
    m_list->addTopLevelItems(rows);
    for (int column = 1; column < m_list->columnCount(); ++column)
        m_list->resizeColumnToContents(column);
    if (!rows.isEmpty())
        m_list->setCurrentItem(rows.first());
    m_count->setText(int(rows.size()) < kMostShown ? tr("%n 条", nullptr, int(rows.size()))
                                                   : tr("只显示前 %n 条", nullptr, int(rows.size())));
}

void CPhraseBankWnd::choose()
{
    QStringList texts;
    for (std::size_t i = 0; i < m_found.size(); ++i) {
        if (!m_list->topLevelItem(int(i))->isSelected())
            continue;
        texts.append(m_found[i].entry.text);
        telling([&] { m_bank.countChoice(m_found[i].id); });
    }
    m_chosen = texts.join(QStringLiteral("\r\n"));
    accept();
}

QString CPhraseBankWnd::chosen() const
{
    return m_chosen;
}

bool CPhraseBankWnd::preTranslateKey(QKeyEvent *event)
{
    const int way = event->key() == Qt::Key_Down ? 1 : event->key() == Qt::Key_Up ? -1 : 0;
    if (!way || focusWidget() != m_search)
        return false;
    const int next = m_list->indexOfTopLevelItem(m_list->currentItem()) + way;
    if (QTreeWidgetItem *row = m_list->topLevelItem(next))
        m_list->setCurrentItem(row);
    return true;
}

} // namespace bank
