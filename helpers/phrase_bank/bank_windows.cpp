#include "helpers/phrase_bank/bank_windows.h"

#include "helpers/phrase_bank/bank_files.h"
#include "helpers/phrase_bank/telling.h"

#include "host/acui/acuifile.h"

#include <QComboBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace bank
{

static QPushButton *newButton(QWidget *parent, int number, const QString &caption)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(acuiObjectName(number));
    button->setAutoDefault(false);
    return button;
}

// Banks ------------------------------------------------------------------------------------------

CBankSetupWnd::CBankSetupWnd(Bank &bank, QWidget *parent)
    : CAcUiDialog(parent), m_bank(bank), m_searched(new QComboBox(this)), m_list(new QListWidget(this))
{
    setWindowTitle(tr("选择默认检索知识库"));
    m_searched->setObjectName(acuiObjectName(1100));
    m_list->setObjectName(acuiObjectName(1101));
    auto *import = newButton(this, 1102, tr("导入知识条目文件…"));
    auto *exporting = newButton(this, 1103, tr("导出为知识条目文件…"));
    auto *remove = newButton(this, 1104, tr("删除"));
    auto *close = newButton(this, kAcUiOk, tr("确定"));
    close->setDefault(true);

    auto *form = new QFormLayout;
    form->addRow(tr("默认检索："), m_searched);
    auto *buttons = new QVBoxLayout;
    for (QPushButton *button : {import, exporting, remove})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(close);
    auto *row = new QHBoxLayout;
    row->addWidget(m_list, 1);
    row->addLayout(buttons);
    auto *column = new QVBoxLayout(this);
    column->addLayout(form);
    column->addLayout(row, 1);

    fill();
    connect(m_searched, &QComboBox::activated, this, [this](int index) {
        telling([&] { m_bank.setSearched(m_searched->itemData(index).toLongLong()); });
    });
    connect(import, &QPushButton::clicked, this, [this] { telling([this] { importFile(); }); });
    connect(exporting, &QPushButton::clicked, this, [this] { telling([this] { exportFile(); }); });
    connect(remove, &QPushButton::clicked, this, [this] { telling([this] { removeBank(); }); });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    resize(560, 340);
}

void CBankSetupWnd::fill()
{
    m_infos = m_bank.banks();
    m_list->clear();
    m_searched->clear();
    m_searched->addItem(tr("全部"), 0);
    for (const BankInfo &info : m_infos) {
        m_list->addItem(tr("%1（%n 条）", nullptr, info.phrases).arg(info.name));
        m_searched->addItem(info.name, info.id);
    }
    m_searched->setCurrentIndex(std::max(0, m_searched->findData(m_bank.searched())));
    m_list->setCurrentRow(0);
}

const BankInfo *CBankSetupWnd::current() const
{
    const int row = m_list->currentRow();
    return row >= 0 && row < int(m_infos.size()) ? &m_infos[std::size_t(row)] : nullptr;
}

void CBankSetupWnd::importFile()
{
    QString path;
    if (acedGetFileD(tr("导入知识条目文件"), {}, QStringLiteral("txt"), kAcUiOpenFile, path) != RTNORM)
        return;
    const std::vector<Entry> entries = readPhraseFile(path);
    const int added = m_bank.add(QFileInfo(path).completeBaseName(), entries);
    fill();
    acedAlert(tr("导入 %1 条，其中 %2 条是新的。").arg(entries.size()).arg(added));
}

void CBankSetupWnd::exportFile()
{
    const BankInfo *const info = current();
    QString path;
    if (!info || acedGetFileD(tr("导出为知识条目文件"), info->name + QStringLiteral(".txt"),
                              QStringLiteral("txt"), kAcUiSaveFile, path) != RTNORM)
        return;
    writePhraseFile(path, m_bank.entries(info->id));
    acedAlert(tr("已导出 %n 条。", nullptr, info->phrases));
}

void CBankSetupWnd::removeBank()
{
    const BankInfo *const info = current();
    if (!info || acedAsk(tr("删除“%1”的全部条目？").arg(info->name), AcEdButtons::yesNo) != AcEdButton::yes)
        return;
    m_bank.remove(info->id);
    fill();
}

// Keywords ---------------------------------------------------------------------------------------

CKeywordsWnd::CKeywordsWnd(Bank &bank, QWidget *parent)
    : CAcUiDialog(parent), m_bank(bank), m_list(new QListWidget(this)), m_word(new QLineEdit(this)),
      m_synonyms(new QLineEdit(this))
{
    setWindowTitle(tr("定义知识库检索关键词"));
    auto *note =
        new QLabel(tr("靶区内的图层名、图块名或文字含有关键词或其同义词时，含有它们的条目排在前面。"), this);
    note->setWordWrap(true);
    m_list->setObjectName(acuiObjectName(1201));
    m_word->setObjectName(acuiObjectName(1202));
    m_synonyms->setObjectName(acuiObjectName(1203));
    m_synonyms->setPlaceholderText(tr("几个词之间用逗号或顿号隔开"));
    auto *keepButton = newButton(this, 1204, tr("保存"));
    auto *remove = newButton(this, 1205, tr("删除"));
    auto *close = newButton(this, kAcUiOk, tr("关闭"));

    auto *form = new QFormLayout;
    form->addRow(tr("关键词："), m_word);
    form->addRow(tr("同义词："), m_synonyms);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(keepButton);
    buttons->addWidget(remove);
    buttons->addStretch();
    buttons->addWidget(close);
    auto *column = new QVBoxLayout(this);
    column->addWidget(note);
    column->addWidget(m_list, 1);
    column->addLayout(form);
    column->addLayout(buttons);

    fill();
    connect(m_list, &QListWidget::currentRowChanged, this, &CKeywordsWnd::showCurrent);
    connect(keepButton, &QPushButton::clicked, this, [this] { telling([this] { keep(); }); });
    connect(remove, &QPushButton::clicked, this, [this] { telling([this] { removeCurrent(); }); });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    resize(460, 400);
}

void CKeywordsWnd::fill()
{
    m_keywords = m_bank.keywords();
    m_list->clear();
    for (const Keyword &keyword : m_keywords)
        m_list->addItem(keyword.synonyms.isEmpty()
                            ? keyword.word
                            : keyword.word + QStringLiteral(" = ") + keyword.synonyms.join(u'、'));
}

void CKeywordsWnd::showCurrent()
{
    const int row = m_list->currentRow();
    if (row < 0 || row >= int(m_keywords.size()))
        return;
    m_word->setText(m_keywords[std::size_t(row)].word);
    m_synonyms->setText(m_keywords[std::size_t(row)].synonyms.join(u'、'));
}

void CKeywordsWnd::keep()
{
    const QString word = m_word->text().trimmed();
    if (word.isEmpty())
        throw Trouble(tr("请输入关键词。"));
    QStringList synonyms = splitWords(m_synonyms->text());
    synonyms.removeAll(word);
    m_bank.setKeyword({word, synonyms});
    fill();
    m_word->clear();
    m_synonyms->clear();
    m_word->setFocus();
}

void CKeywordsWnd::removeCurrent()
{
    m_bank.removeKeyword(m_word->text().trimmed());
    fill();
}

} // namespace bank
