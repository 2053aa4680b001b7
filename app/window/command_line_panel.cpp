#include "app/window/command_line_panel.h"

#include "app/front_end/window_front_end.h"
#include "app/window/command_names.h"
#include "app/window/icons.h"
#include "host/aced/edcommands.h"
#include "host/aced/edmenu.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QCompleter>
#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTextDocumentFragment>
#include <QToolButton>
#include <QVBoxLayout>

namespace window
{

static constexpr int kHistoryBlocks = 5000;
static constexpr qsizetype kTypedLines = 200;
static constexpr int kSmallHistory = 3; ///< Lines.
static constexpr int kLargeHistory = 16;

// The line ----------------------------------------------------------------------------------------

/// With nothing typed, the keys that would edit it are the window's: undo, delete, select all.
bool CommandEdit::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && text().isEmpty()) {
        const auto *const key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo) ||
            key->matches(QKeySequence::Delete) || key->matches(QKeySequence::SelectAll)) {
            event->ignore();
            return false;
        }
    }
    return QLineEdit::event(event);
}

void CommandEdit::keyPressEvent(QKeyEvent *event)
{
    bool taken = true;
    if (event->matches(QKeySequence::Copy) && !hasSelectedText()) {
        Q_EMIT copyWanted();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        Q_EMIT confirmed();
    } else if (event->key() == Qt::Key_Escape) {
        Q_EMIT escaped();
    } else if (event->key() == Qt::Key_Up) {
        Q_EMIT earlierWanted();
    } else if (event->key() == Qt::Key_Down) {
        Q_EMIT laterWanted();
    } else if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
        taken = false;
        Q_EMIT blankTyped(taken);
    } else {
        taken = false;
    }
    if (taken)
        event->accept();
    else
        QLineEdit::keyPressEvent(event);
}

// Proposals ---------------------------------------------------------------------------------------

namespace
{

/// A command's name, and behind it what the command does.
class ProposalDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        constexpr int kNameLength = 32; // Characters.
        QStyledItemDelegate::paint(painter, option, index);
        const int wide = option.fontMetrics.averageCharWidth();
        const QRect room = option.rect.adjusted(kNameLength * wide, 0, -wide, 0);
        const bool isSelected = option.state & QStyle::State_Selected;
        painter->setPen(option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
        painter->drawText(room, Qt::AlignVCenter | Qt::TextSingleLine,
                          option.fontMetrics.elidedText(index.data(Qt::AccessibleDescriptionRole).toString(),
                                                        Qt::ElideRight, room.width()));
    }
};

} // namespace

// The panel ---------------------------------------------------------------------------------------

static int linesHeight(const QPlainTextEdit &edit, int lines)
{
    return lines * edit.fontMetrics().lineSpacing() + 2 * edit.frameWidth() +
           int(2 * edit.document()->documentMargin());
}

CommandLinePanel::CommandLinePanel(WindowFrontEnd &front, QWidget *parent)
    : QWidget(parent), m_front(front), m_history(new QPlainTextEdit(this)), m_prompt(new QLabel(this)),
      m_edit(new CommandEdit(this)), m_expand(new QToolButton(this)), m_completer(new QCompleter(this)),
      m_names(new QStandardItemModel(0, 1, this))
{
    // What came last stays in sight, also when the history becomes smaller, unless one looks further up.
    QScrollBar *const bar = m_history->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this,
            [=, this] { m_follows = bar->value() >= bar->maximum() - 1; });
    connect(bar, &QScrollBar::rangeChanged, this, [=, this] {
        if (m_follows)
            bar->setValue(bar->maximum());
    });
    m_history->setReadOnly(true);
    m_history->setMaximumBlockCount(kHistoryBlocks);
    m_history->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_history->setMinimumHeight(linesHeight(*m_history, 1));
    m_history->setTabChangesFocus(true);
    m_history->setAccessibleName(tr("命令历史"));
    m_history->setFrameShape(QFrame::NoFrame);

    m_prompt->setTextFormat(Qt::RichText);
    m_prompt->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    m_prompt->setAccessibleName(tr("提示"));
    m_prompt->setBuddy(m_edit);
    m_edit->setAccessibleName(tr("命令行"));
    m_edit->setToolTip(tr("输入命令、选项或坐标；空格或回车确认，Esc 取消"));
    m_edit->setContextMenuPolicy(Qt::DefaultContextMenu);
    m_edit->setAcceptDrops(false); // Files are for the window, which opens them.
    m_expand->setIcon(icon("up"));
    m_expand->setAutoRaise(true);
    m_expand->setAccessibleName(tr("命令历史"));
    m_expand->setToolTip(tr("展开或收起命令历史 (F2)"));

    auto *const line = new QHBoxLayout;
    const int gap = fontMetrics().horizontalAdvance(u'x');
    line->setContentsMargins(gap, gap / 2, gap / 2, gap / 2);
    line->setSpacing(gap);
    line->addWidget(m_prompt);
    line->addWidget(m_edit, 1);
    line->addWidget(m_expand);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_history, 1);
    column->addLayout(line);

    m_completer->setModel(m_names);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setMaxVisibleItems(12);
    m_completer->popup()->setAccessibleName(tr("命令"));
    m_completer->popup()->setItemDelegate(new ProposalDelegate(this));

    setFocusProxy(m_edit);
    connect(m_edit, &CommandEdit::confirmed, this, &CommandLinePanel::confirm);
    connect(m_edit, &CommandEdit::escaped, this, &CommandLinePanel::escape);
    connect(m_edit, &CommandEdit::earlierWanted, this, [this] { recall(-1); });
    connect(m_edit, &CommandEdit::laterWanted, this, [this] { recall(1); });
    connect(m_edit, &CommandEdit::copyWanted, this, &CommandLinePanel::copySelection);
    connect(m_edit, &CommandEdit::blankTyped, this, [this](bool &taken) {
        taken = !m_front.prompt() || blankConfirms(*m_front.prompt(), m_edit->text());
        if (taken)
            confirm();
    });
    connect(m_expand, &QToolButton::clicked, this, &CommandLinePanel::toggleHistory);
    connect(m_prompt, &QLabel::linkActivated, this, [this](const QString &keyword) {
        m_edit->clear();
        m_edit->setFocus();
        m_front.giveText(keyword);
    });
    connect(&m_front, &WindowFrontEnd::promptChanged, this, &CommandLinePanel::showPrompt);
    connect(&m_front, &WindowFrontEnd::printed, this, &CommandLinePanel::append);
    showPrompt();
}

QString CommandLinePanel::historyText() const
{
    return m_history->toPlainText();
}

// Typing ------------------------------------------------------------------------------------------

void CommandLinePanel::type(const QString &text)
{
    m_edit->setFocus();
    for (const QChar sign : text) {
        if (sign == u' ' && m_front.prompt() && blankConfirms(*m_front.prompt(), m_edit->text()))
            confirm();
        else
            m_edit->insert(sign);
    }
    complete();
}

/// Text that came from elsewhere does not wake the completer by itself.
void CommandLinePanel::complete()
{
    if (!m_front.isIdle() || m_edit->text().isEmpty() || !m_edit->completer())
        return;
    m_completer->setCompletionPrefix(m_edit->text());
    if (m_completer->completionCount() > 0)
        m_completer->complete();
}

void CommandLinePanel::confirm()
{
    // While a command works the line stays: it is confirmed when somebody asks.
    if (!m_front.prompt())
        return;
    m_completer->popup()->hide();
    const QString typed = m_edit->text();
    m_edit->clear();
    if (!typed.isEmpty() && (m_typed.isEmpty() || m_typed.constLast() != typed))
        m_typed.append(typed);
    if (m_typed.size() > kTypedLines)
        m_typed.removeFirst();
    m_recalled = m_typed.size();
    give(typed);
}

void CommandLinePanel::give(const QString &typed)
{
    const bool repeats = typed.trimmed().isEmpty() && m_front.isIdle();
    m_front.giveText(repeats ? m_front.lastCommand() : typed);
}

void CommandLinePanel::escape()
{
    m_completer->popup()->hide();
    m_edit->clear();
    m_recalled = m_typed.size();
    m_front.cancel();
}

void CommandLinePanel::recall(int step)
{
    const qsizetype wanted = m_recalled + step;
    if (wanted < 0 || wanted > m_typed.size())
        return;
    m_recalled = wanted;
    m_edit->setText(m_typed.value(wanted));
}

void CommandLinePanel::copySelection()
{
    if (const QString chosen = m_history->textCursor().selection().toPlainText(); !chosen.isEmpty())
        QApplication::clipboard()->setText(chosen);
}

// Showing -----------------------------------------------------------------------------------------

/// The palette's link colour is often meant for white; then the text's own colour, underlined, is better.
static QColor linkColor(const QPalette &palette)
{
    const QColor link = palette.color(QPalette::Link);
    const int distance = qAbs(qGray(link.rgb()) - qGray(palette.color(QPalette::Window).rgb()));
    return distance >= 100 ? link : palette.color(QPalette::WindowText);
}

void CommandLinePanel::showPrompt()
{
    const AcEdPrompt *const prompt = m_front.prompt();
    if (!prompt)
        return; // The old one stands until the next: most commands end at once.
    m_prompt->setText(promptAsHtml(*prompt, linkColor(palette())));
    const bool isCommand = prompt->kind == AcEdPromptKind::command;
    if (isCommand)
        renewNames();
    if (isCommand != (m_edit->completer() != nullptr))
        m_edit->setCompleter(isCommand ? m_completer : nullptr);
    m_edit->setPlaceholderText(isCommand && m_typed.isEmpty() ? tr("输入命令") : QString());
}

void CommandLinePanel::renewNames()
{
    const std::size_t count = acedRegCmds()->commands().size();
    if (count == m_knownCommands && m_knownMenus == acedMenus().revision())
        return;
    m_knownCommands = count;
    m_knownMenus = acedMenus().revision();
    m_names->clear();
    for (const CommandName &name : commandNames()) {
        auto *const item = new QStandardItem(name.name);
        item->setAccessibleDescription(name.meaning);
        m_names->appendRow(item);
    }
}

void CommandLinePanel::append(const QString &text)
{
    QTextCursor end(m_history->document());
    end.movePosition(QTextCursor::End);
    const bool first = m_history->document()->isEmpty() && text.startsWith(u'\n');
    end.insertText(first ? text.mid(1) : text);
}

void CommandLinePanel::toggleHistory()
{
    m_isLarge = !m_isLarge;
    m_expand->setIcon(icon(m_isLarge ? "down" : "up"));
    const int lines = linesHeight(*m_history, m_isLarge ? kLargeHistory : kSmallHistory);
    Q_EMIT heightWanted(lines + height() - m_history->height());
}

void CommandLinePanel::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showPrompt();
}

} // namespace window
