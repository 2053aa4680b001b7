#include "quillnote/review/palette_control.h"

#include "quillnote/authoring/flag_refresh.h"
#include "quillnote/review/show_mark.h"
#include "quillnote/snapshot/snapshot_viewer.h"

#include "host/acdb/dbundo.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

#include <algorithm>
#include <limits>

QString &reviewerFilter()
{
    static QString filter = QStringLiteral("ALL");
    return filter;
}

// Building ----------------------------------------------------------------------------------------

ReviewPalette::ReviewPalette() : m_bar(new CMyDockControlBar), m_index([this] { refreshLater(); })
{
    connectPanel();
}

ReviewPalette::~ReviewPalette()
{
    m_index.watch(nullptr);
    if (m_bar)
        m_bar->disconnect();
    delete m_bar.data();
}

void ReviewPalette::connectPanel()
{
    CMarkWnd2 *const source = &panel();
    // Whatever a person does, he does it to the drawing as it is now.
    const auto on = [this, source](auto signal, auto act) {
        QObject::connect(source, signal, source, [this, act](auto... value) {
            refresh();
            act(value...);
        });
    };
    on(&CMarkWnd2::stepWanted, [this](int by) { step(by); });
    on(&CMarkWnd2::reviewerChosen, [this](const QString &entry) { chooseReviewer(entry); });
    on(&CMarkWnd2::numberWanted, [this](const QString &typed) { goToNumber(typed); });
    on(&CMarkWnd2::searchWanted, [this](const QString &text) { search(text); });
    on(&CMarkWnd2::resultWanted, [this](int by) { stepResult(by); });
    on(&CMarkWnd2::saveWanted, [this] { commit(); });
    on(&CMarkWnd2::opinionEditWanted, [this] { allowOpinionEdit(); });
    on(&CMarkWnd2::phraseWanted, [this] { takePhrase(); });
    on(&CMarkWnd2::storingWanted, [this] { storePhrase(); });
    on(&CMarkWnd2::snapshotsToggled,
       [this] { showPictureOf(m_shown ? m_shown->summary.id : AcDbObjectId(), panel().showsSnapshots()); });
    QObject::connect(m_bar, &CMyDockControlBar::closed, source, [this] {
        commit();
        closeSnapshotViewers();
    });
}

void ReviewPalette::open(AcDbObjectId mark)
{
    refresh();
    commit(true);
    m_bar->open();
    refresh();
    if (mark.isNull())
        show(m_at, Zoom::yes);
    else
        goTo(mark, true);
    m_bar->activateWindow();
    panel().focusFeedback();
}

// The drawing -------------------------------------------------------------------------------------

/// Notifications come while marks are open; they are looked at afterwards.
void ReviewPalette::refreshLater()
{
    if (m_isLater || !m_bar)
        return;
    m_isLater = true;
    QMetaObject::invokeMethod(
        &panel(),
        [this] {
            m_isLater = false;
            refresh();
        },
        Qt::QueuedConnection);
}

void ReviewPalette::refresh()
{
    if (!m_bar)
        return;
    AcApDocument *const current = curDoc();
    if (current != m_document || (current && current->database() != m_index.database()))
        showDocument(current);
    else if (m_document && m_index.isStale())
        followShown();
}

void ReviewPalette::showDocument(AcApDocument *document)
{
    m_document = document;
    m_index.watch(document ? document->database() : nullptr);
    m_shown.reset();
    m_lost = {};
    m_results.clear();
    m_list.clear();
    enableResults();
    closeSnapshotViewers();
    if (!document) {
        panel().setReviewers({}, {});
        showNothing(QStringLiteral("没有打开的图形。"));
        return;
    }
    reload();
    if (m_list.empty() && reviewerFilter() != u"ALL") {
        reviewerFilter() = QStringLiteral("ALL");
        reload();
    }
    const auto *const known = document->attachments().find<ReviewPosition>();
    const ReviewPosition position = known ? *known : readReviewPosition(*document->database());
    m_at = std::size_t(std::max<std::int16_t>(position.index, 0)); // show() knows the end.
    show(m_at, Zoom::no);
}

void ReviewPalette::reload()
{
    const std::vector<MarkSummary> &marks = m_index.marks();
    m_list = passingMarks(marks, reviewerFilter());
    panel().setReviewers(reviewersOf(marks), reviewerFilter());
}

/// m_list.size() when it is not on the list.
std::size_t ReviewPalette::placeOf(AcDbObjectId mark)
{
    const std::vector<MarkSummary> &marks = m_index.marks();
    const auto place = std::ranges::find_if(m_list, [&](std::size_t each) { return marks[each].id == mark; });
    return std::size_t(place - m_list.begin());
}

// Showing -----------------------------------------------------------------------------------------

void ReviewPalette::showNothing(const QString &why)
{
    m_shown.reset();
    panel().showMark({});
    panel().setOpinionEditable(false);
    panel().lockAnswer(why);
    showPlace();
}

/// The step buttons. Where a mark is gone both lead to its neighbours.
void ReviewPalette::showPlace()
{
    const std::size_t count = m_list.size();
    const bool isGap = !m_shown;
    panel().enableSteps(count > 0 && m_at > 0, isGap ? m_at < count : m_at + 1 < count);
}

void ReviewPalette::showFields(const ReviewedMark &mark)
{
    CMarkWnd2::Shown shown;
    shown.counter = counterText(mark.summary, m_at, m_list.size());
    shown.reviewerLine = reviewerLine(mark.summary.reviewer, panel().chosenReviewer());
    shown.opinion = mark.summary.opinion;
    shown.feedback = mark.feedback.text;
    shown.status = mark.statusControl();
    panel().showMark(shown);
    panel().setOpinionEditable(false);
    panel().lockAnswer(whyNotAnswered(*m_document, mark.summary.id));
    showPlace();
}

void ReviewPalette::show(std::size_t place, Zoom zoom)
{
    m_lost = {};
    m_shown.reset();
    if (m_list.empty()) {
        m_at = 0;
        closeSnapshotViewers();
        if (m_document)
            showNothing(QStringLiteral("本图中无评图标签。"));
        return;
    }
    m_at = std::min(place, m_list.size() - 1);
    const AcDbObjectId id = listed(m_at).id;
    m_shown = readReviewedMark(id);
    if (!m_shown) {
        showNothing(QStringLiteral("该评图标签无法读取。"));
        return;
    }
    showFields(*m_shown);
    rememberPosition();
    if (zoom == Zoom::no)
        return;
    const bool pictures = panel().showsSnapshots();
    zoomToMark(*m_document, id, standsBesidePicture(id, pictures));
    showPictureOf(id, pictures);
    refreshDrawnMarks();
    acedFrontEnd().lookAgain();
}

/// Marks have come, gone or changed. What a person has typed and not saved stays, unless its mark is gone.
void ReviewPalette::followShown()
{
    const AcDbObjectId id = m_shown ? m_shown->summary.id : m_lost;
    const bool isTyped = m_shown && !changeOf(*m_shown, panel().feedback(), panel().status()).isEmpty();
    const QString typed = panel().feedback();
    const int status = panel().status();
    reload();
    const std::size_t place = placeOf(id);
    if (place == m_list.size()) {
        if (id.isNull()) {
            show(m_at, Zoom::no);
            return;
        }
        m_at = std::min(m_at, m_list.size());
        m_lost = id;
        closeSnapshotViewers();
        showNothing(QStringLiteral("该评图标签已被删除。"));
        return;
    }
    m_at = place;
    m_lost = {};
    m_shown = readReviewedMark(id);
    if (!m_shown) {
        showNothing(QStringLiteral("该评图标签无法读取。"));
        return;
    }
    showFields(*m_shown);
    if (isTyped) {
        panel().setFeedback(typed);
        panel().checkRadio(1009, 1013, status);
    }
}

void ReviewPalette::rememberPosition()
{
    const std::size_t most = std::size_t(std::numeric_limits<std::int16_t>::max());
    m_document->attachments().get<ReviewPosition>() = {std::int16_t(std::min(m_at, most)),
                                                       m_shown->summary.id};
}

// Saving and leaving ------------------------------------------------------------------------------

void ReviewPalette::storeInput(AcApDocument &document, bool forSaving)
{
    if (&document == m_document)
        commit(true);
    auto *const position = document.attachments().find<ReviewPosition>();
    if (!forSaving || !position)
        return;
    AcDbDatabase &database = *document.database();
    if (!position->mark.isValid())
        position->mark = {};
    if (readReviewPosition(database) == *position)
        return;
    const AcDbUncountedChange quietly(database);
    writeReviewPosition(database, *position);
}

void ReviewPalette::forget(const AcApDocument &document)
{
    if (m_document != &document)
        return;
    m_document = nullptr;
    m_index.watch(nullptr);
    m_shown.reset();
    m_lost = {};
    m_list.clear();
    m_results.clear();
    if (!m_bar)
        return;
    enableResults();
    showNothing(QStringLiteral("没有打开的图形。"));
    refreshLater();
}
