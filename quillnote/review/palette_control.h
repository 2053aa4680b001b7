// ReviewPalette: what a review palette knows and does. The panel tells it what a person wants; the index
// tells it what happened to the marks.
#pragma once

#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/review/answer.h"
#include "quillnote/ui/review_bar.h"

#include <QPointer>

enum class Zoom { no, yes };

class ReviewPalette
{
public:
    ReviewPalette();
    ~ReviewPalette();

    void open(AcDbObjectId mark);
    void refresh();
    void storeInput(AcApDocument &document, bool forSaving);
    void forget(const AcApDocument &document);
    /// False when the main window took it along.
    bool hasWindow() const { return !m_bar.isNull(); }

private:
    CMarkWnd2 &panel() { return m_bar->panel(); }
    void connectPanel();
    void refreshLater();

    // What is on the list
    void showDocument(AcApDocument *document);
    void reload();
    std::size_t placeOf(AcDbObjectId mark);
    const MarkSummary &listed(std::size_t place) { return m_index.marks()[m_list[place]]; }

    // What is shown
    void show(std::size_t place, Zoom zoom);
    void showNothing(const QString &why);
    void showFields(const ReviewedMark &mark);
    void showPlace();
    void followShown();
    void rememberPosition();

    // What a person does
    bool commit(bool insideCommand = false);
    void step(int by);
    bool goTo(AcDbObjectId mark, bool insideCommand = false);
    void chooseReviewer(const QString &entry);
    void goToNumber(const QString &typed);
    void search(const QString &text);
    void stepResult(int by);
    void enableResults();
    void allowOpinionEdit();
    void takePhrase();
    void storePhrase();

    QPointer<CMyDockControlBar> m_bar;
    MarkIndex m_index;
    AcApDocument *m_document = nullptr;
    std::vector<std::size_t> m_list; ///< Places in the index of the marks that the filter passes.
    std::size_t m_at = 0;            ///< Place in the list.
    std::optional<ReviewedMark> m_shown;
    AcDbObjectId m_lost; ///< The mark that was shown and is gone; it may come back.
    bool m_isLater = false;
    std::vector<AcDbObjectId> m_results;
    std::size_t m_result = 0;
};

/// "ALL", a name or "*未命名*"; lives as long as the program.
QString &reviewerFilter();
