// The mark editor: the dialog in which the reviewer types an opinion or picks it from menus of phrases.
// Values in, values out: the caller makes or changes the mark.
#pragma once

#include "quillnote/ui/phrase_menu.h"

#include "host/acui/acuidialog.h"

#include <QRect>

#include <functional>
#include <memory>
#include <optional>

class QMenu;
class QMenuBar;

namespace Ui
{
class MarkEditor;
}

struct MarkEditorStart {
    QString text;
    QString keywordText; ///< What stands in the target, divided by commas: for the phrase bank.
    /// Lets the user sketch over the target; the file with the sketch, empty when there is none.
    std::function<QString()> sketch;
};

struct MarkEditorValue {
    QString text;
    int weight = 5;        ///< Of the phrase chosen last.
    QString bigCategory;   ///< Of the phrase chosen last: its library,
    QString smallCategory; ///< and its menu. Empty when none was chosen.
    QString sketchFile;    ///< Empty: no sketch.
};

/// Shows the editor until it is closed; no value when it was cancelled. The window's place and its options
/// are kept in the settings.
std::optional<MarkEditorValue> runMarkEditor(const MarkEditorStart &start);

/// Where the editor opens: the saved rectangle, or 900 x 180 pixels at the top of the screen, centred, when
/// there is none or it does not fit the screen. Never wider than the screen.
QRect markEditorRectangle(const QRect &saved, const QSize &screen);

class CAddMarkWnd : public CAcUiDialog
{
    Q_OBJECT

public:
    explicit CAddMarkWnd(const MarkEditorStart &start, QWidget *parent = nullptr);
    ~CAddMarkWnd() override;

    MarkEditorValue value() const;
    /// Check box "draw at once after a phrase is chosen".
    bool drawsDirectly() const;

protected:
    /// Ctrl, Shift or Alt with Enter confirms; Enter alone breaks the line. Esc asks before typed text is
    /// lost.
    bool preTranslateKey(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    // Menus
    void buildMenus();
    QMenu *addMenu(QString title);
    void addPhraseMenu(std::size_t place);
    void fillMenu(QMenu &menu, const PhrasePopup &popup);
    void addSettingsMenu();
    QAction *newItem(QMenu &menu, const PhraseItem &item);
    void menuChosen(int number);
    void choosePhrase(int index);
    void chooseRecent(int position);
    void addPhraseTo(int menu);
    void takePhrase(const QString &text);
    void toggleSource();

    void getFromBank();
    void putIntoBank();

    bool mayDropText();
    void putText(const QString &text);
    void appendText(const QString &text);
    void place();
    QSize sizeThatFits() const;

    std::unique_ptr<Ui::MarkEditor> m_form;
    MarkEditorStart m_start;
    MarkEditorValue m_value;
    PhraseLibrary m_library;
    QStringList m_recent;
    QMenuBar *m_menus = nullptr;
    QMenu *m_recentMenu = nullptr;
    std::vector<QMenu *> m_phraseMenus;
    std::vector<std::pair<QWidget *, QRect>> m_designed; ///< Where the form puts its controls.
};
