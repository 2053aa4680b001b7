// The command line: what was said so far, what is being asked, and where the answer is typed.
#pragma once

#include <QLineEdit>
#include <QWidget>

class QCompleter;
class QLabel;
class QPlainTextEdit;
class QStandardItemModel;
class QToolButton;

namespace window
{

class WindowFrontEnd;

/// The line that is typed in; it tells its panel what its keys mean.
class CommandEdit : public QLineEdit
{
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

Q_SIGNALS:
    void confirmed();
    void blankTyped(bool &taken); ///< Set `taken` when the blank has confirmed the line.
    void escaped();
    void earlierWanted();
    void laterWanted();
    void copyWanted();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};

class CommandLinePanel : public QWidget
{
    Q_OBJECT

public:
    explicit CommandLinePanel(WindowFrontEnd &front, QWidget *parent = nullptr);

    /// Text typed elsewhere in the window lands here, and the keyboard with it.
    void type(const QString &text);
    /// Enter, as typed in the line.
    void confirm();
    void escape();
    /// Shows much or little of the history.
    void toggleHistory();

    CommandEdit &edit() const { return *m_edit; }
    QLabel &prompt() const { return *m_prompt; }
    QString historyText() const;

Q_SIGNALS:
    /// The panel would like to be so high.
    void heightWanted(int height);

protected:
    void changeEvent(QEvent *event) override;

private:
    void showPrompt();
    void append(const QString &text);
    void renewNames();
    void complete();
    void give(const QString &typed);
    void recall(int step);
    void copySelection();

    WindowFrontEnd &m_front;
    QPlainTextEdit *m_history = nullptr;
    bool m_follows = true; ///< The history shows its end.
    QLabel *m_prompt = nullptr;
    CommandEdit *m_edit = nullptr;
    QToolButton *m_expand = nullptr;
    QCompleter *m_completer = nullptr;
    QStandardItemModel *m_names = nullptr;
    std::size_t m_knownCommands = 0;
    int m_knownMenus = -1;
    QStringList m_typed; ///< Lines, the latest last.
    qsizetype m_recalled = 0;
    bool m_isLarge = false;
};

} // namespace window
