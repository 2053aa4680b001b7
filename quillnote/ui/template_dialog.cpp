#include "quillnote/ui/template_dialog.h"

#include "quillnote/frame/settings/install_folder.h"
#include "ui_134.h"

#include "host/aced/edmessage.h"
#include "host/aced/edshell.h"

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QScreen>

#include <algorithm>

enum Control : int { kFirstPick = 500, kFirstCaption = 520, kFirstValue = 540, kHelp = 1156 };

static void showHelp()
{
    const QString shipped = installedFile(QStringLiteral("评图标签V7.2自定义模板方法.mht"));
    if (QFileInfo::exists(shipped))
        acedOpenWithDesktop(shipped);
    else
        acedOpenWithDesktop(QStringLiteral("file://") + installedFile(QStringLiteral("help/templates.html")));
}

CTmpExcel::CTmpExcel(const std::vector<TemplateDialogRow> &rows, const QString &drawing, QWidget *parent)
    : CAcUiDialog(parent), m_form(std::make_unique<Ui::TemplateDialog>()), m_rows(rows), m_drawing(drawing)
{
    m_form->setupUi(this);
    connectOkCancel();
    connect(qobject_cast<QPushButton *>(item(kHelp)), &QPushButton::clicked, this, showHelp);
    for (int i = 0; i < kMostRows; ++i) {
        const bool isShown = std::size_t(i) < m_rows.size();
        for (const int first : {kFirstPick, kFirstCaption, kFirstValue})
            setItemVisible(first + i, isShown);
        if (isShown)
            setUpRow(i, m_rows[std::size_t(i)]);
    }
    showDrawing();
    // Typing begins where there is something to type.
    const auto typed = std::ranges::find(m_rows, false, &TemplateDialogRow::isDrawing);
    if (typed != m_rows.end())
        item(kFirstValue + int(typed - m_rows.begin()))->setFocus();
    // All rows at once where the screen has room for them.
    const QSize screen = this->screen()->availableSize();
    resize(QSize(560, m_form->rows->sizeHint().height() + 90).boundedTo(screen - QSize(40, 80)));
}

CTmpExcel::~CTmpExcel() = default;

void CTmpExcel::setUpRow(int index, const TemplateDialogRow &row)
{
    if (index < 0 || index >= kMostRows) {
        acedAlert(QStringLiteral("index输入错误"));
        return;
    }
    setItemText(kFirstCaption + index, row.caption.isEmpty() ? QStringLiteral("不能空白！") : row.caption);
    qobject_cast<QComboBox *>(item(kFirstValue + index))->addItems(row.remembered);
    setText(index, row.text);
    connect(qobject_cast<QPushButton *>(item(kFirstPick + index)), &QPushButton::clicked, this,
            [this, index] { done(kPickText + index); });
}

void CTmpExcel::setText(int row, const QString &text)
{
    setItemText(kFirstValue + row, text);
}

QStringList CTmpExcel::texts() const
{
    QStringList texts;
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        texts.append(m_rows[i].isDrawing ? m_drawing : itemText(kFirstValue + int(i)).trimmed());
    return texts;
}

void CTmpExcel::showDrawing()
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].isDrawing && itemText(kFirstValue + int(i)) != m_drawing)
            setText(int(i), m_drawing);
    }
}

void CTmpExcel::paintEvent(QPaintEvent *event)
{
    showDrawing();
    CAcUiDialog::paintEvent(event);
}

std::optional<QStringList> runFieldDialog(CTmpExcel &dialog,
                                          const std::function<std::optional<QString>()> &pick)
{
    for (;;) {
        const int result = dialog.doModal();
        if (result == QDialog::Accepted)
            return dialog.texts();
        if (result < CTmpExcel::kPickText)
            return {};
        if (const auto text = pick())
            dialog.setText(result - CTmpExcel::kPickText, *text);
    }
}

std::optional<QStringList> runTemplateDialog(const std::vector<TemplateDialogRow> &rows,
                                             const QString &drawing,
                                             const std::function<std::optional<QString>()> &pick)
{
    // Over the window that the user works in.
    CTmpExcel dialog(rows, drawing, QApplication::activeWindow());
    return runFieldDialog(dialog, pick);
}
