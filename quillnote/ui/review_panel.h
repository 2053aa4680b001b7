// The review panel: the controls with which a designer walks through marks and answers them. It shows what it
// is given and says what a person wants; what comes of it is decided elsewhere.
//
// All of it can be worked from the keyboard while the cursor is in the feedback; the tooltips show the keys.
// Enter saves, or goes to the typed number, or searches; Shift+Enter breaks the line of the feedback.
#pragma once

#include "host/acui/acuidialog.h"

#include <memory>

namespace Ui
{
class ReviewPanel;
}

class CMarkWnd2 : public CAcUiDialog
{
    Q_OBJECT

public:
    explicit CMarkWnd2(QWidget *parent = nullptr);
    ~CMarkWnd2() override;

    struct Shown {
        QString counter;
        QString reviewerLine;
        QString opinion;
        QString feedback;
        int status = 1012; ///< Radio button.
    };
    void showMark(const Shown &shown);
    void setOpinion(const QString &opinion);
    void setOpinionEditable(bool on);
    /// An empty text lets answers be given; any other one says why none can be.
    void lockAnswer(const QString &reason);
    /// Names in their order of sorting; "显示全部" stands before them when there is more than one.
    void setReviewers(const QStringList &names, const QString &chosen);
    void chooseFirstReviewer();
    void enableSteps(bool previous, bool next);
    void enableResults(bool previous, bool next);

    QString feedback() const;
    void setFeedback(const QString &text);
    int status() const;
    QString chosenReviewer() const;
    bool onlyUnhandled() const;
    bool showsSnapshots() const;
    void focusFeedback();

    // It stays open; its default button saves.
    void accept() override;
    void reject() override {}

Q_SIGNALS:
    void stepWanted(int by);
    void reviewerChosen(const QString &entry);
    void numberWanted(const QString &typed);
    void searchWanted(const QString &text);
    void resultWanted(int by);
    void snapshotsToggled();
    void saveWanted();
    void opinionEditWanted();
    void phraseWanted();
    void storingWanted();

protected:
    bool preTranslateKey(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectControls();
    bool isMine(const QKeyEvent &event) const;
    bool pressEnter(Qt::KeyboardModifiers modifiers);

    std::unique_ptr<Ui::ReviewPanel> m_form;
};

/// The entry that stands for every reviewer.
QString allReviewersEntry();
