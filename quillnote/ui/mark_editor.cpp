#include "quillnote/ui/mark_editor.h"

#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/installed_programs.h"
#include "quillnote/ui/phrase_bank.h"
#include "quillnote/ui/phrase_folder.h"
#include "quillnote/ui/recent_phrases.h"
#include "ui_201.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTextCursor>
#include <QtMath>

enum Control : int {
    kText = 1003,
    kSketch = 1035,
    kFromBank = 1036,
    kIntoBank = 1037,
    kDrawDirectly = 1055,
};
enum Item : int {
    kShowFolder = 202,
    kChooseFolder = 203,
    kUpload = 206,
    kNextSource = 207,
    kDownload = 209,
    kHelp = 57670
};

static constexpr QSize kSmallestLayout(200, 20);
static constexpr QSize kDesigned(900, 156); ///< The form below its menu bar.

// The window's place -----------------------------------------------------------------------------

QRect markEditorRectangle(const QRect &saved, const QSize &screen)
{
    const bool none = saved.left() == 0 && saved.top() == 0 && saved.width() == 0 && saved.height() == 0;
    const bool outside = saved.left() < 0 || saved.top() < 0 ||
                         saved.left() + saved.width() > screen.width() ||
                         saved.top() + saved.height() > screen.height();
    const int width = std::min(900, screen.width());
    if (none || outside)
        return {(screen.width() - width) / 2, 0, width, 180};
    return saved;
}

static QRect savedRectangle()
{
    const int left = settings::number(u"left");
    const int top = settings::number(u"top");
    return {left, top, settings::number(u"right") - left, settings::number(u"bottom") - top};
}

static void saveRectangle(const QRect &rectangle)
{
    settings::setNumber(u"left", rectangle.left());
    settings::setNumber(u"top", rectangle.top());
    settings::setNumber(u"right", rectangle.left() + rectangle.width());
    settings::setNumber(u"bottom", rectangle.top() + rectangle.height());
}

/// What the texts of the buttons need: more than is usual with a large font.
QSize CAddMarkWnd::sizeThatFits() const
{
    double across = 0;
    double down = 1.0;
    for (const auto &[control, designed] : m_designed) {
        if (control->isHidden() || qobject_cast<const QPlainTextEdit *>(control))
            continue;
        across = std::max(across, double(control->sizeHint().width()) / designed.width());
        down = std::max(down, double(control->sizeHint().height()) / designed.height());
    }
    return {qCeil(kDesigned.width() * across),
            m_menus->sizeHint().height() + qRound(kDesigned.height() * down)};
}

void CAddMarkWnd::place()
{
    const QSize screen = QGuiApplication::primaryScreen()->size();
    // It may have been left on another screen, or before the font was enlarged.
    QRect rectangle = markEditorRectangle(savedRectangle(), screen);
    rectangle.setSize(rectangle.size().expandedTo(sizeThatFits()));
    move(std::max(0, std::min(rectangle.left(), screen.width() - rectangle.width())), rectangle.top());
    resize(rectangle.size());
}

// Every control keeps its share of the window.
void CAddMarkWnd::resizeEvent(QResizeEvent *event)
{
    CAcUiDialog::resizeEvent(event);
    const int menuHeight = m_menus->sizeHint().height();
    m_menus->setGeometry(0, 0, width(), menuHeight);
    const QSize now(width(), height() - menuHeight);
    if (now.width() < kSmallestLayout.width() || now.height() < kSmallestLayout.height())
        return;
    const double across = double(now.width()) / kDesigned.width();
    const double down = double(now.height()) / kDesigned.height();
    for (const auto &[control, designed] : m_designed)
        control->setGeometry(qRound(designed.x() * across), menuHeight + qRound(designed.y() * down),
                             qRound(designed.width() * across), qRound(designed.height() * down));
}

// The dialog -------------------------------------------------------------------------------------

CAddMarkWnd::CAddMarkWnd(const MarkEditorStart &start, QWidget *parent)
    : CAcUiDialog(parent), m_form(std::make_unique<Ui::MarkEditor>()), m_start(start),
      m_menus(new QMenuBar(this))
{
    m_form->setupUi(this);
    connectOkCancel();
    for (const int number :
         {int(kText), int(kFromBank), int(kIntoBank), kAcUiOk, kAcUiCancel, int(kDrawDirectly), int(kSketch)})
        m_designed.emplace_back(item(number), item(number)->geometry());
    m_menus->setNativeMenuBar(false);
    buildMenus();
    connect(m_form->id1036, &QPushButton::clicked, this, &CAddMarkWnd::getFromBank);
    connect(m_form->id1037, &QPushButton::clicked, this, &CAddMarkWnd::putIntoBank);
    connect(m_form->id1035, &QPushButton::clicked, this, [this] {
        if (m_start.sketch)
            m_value.sketchFile = m_start.sketch();
    });
    setItemText(kText, start.text);
    setChecked(kDrawDirectly, settings::number(u"derectDraw") == 1);
    place();
    item(kText)->setFocus();
}

CAddMarkWnd::~CAddMarkWnd() = default;

MarkEditorValue CAddMarkWnd::value() const
{
    MarkEditorValue answer = m_value;
    answer.text = itemText(kText);
    return answer;
}

bool CAddMarkWnd::drawsDirectly() const
{
    return isChecked(kDrawDirectly);
}

bool CAddMarkWnd::preTranslateKey(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        return !mayDropText();
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const Qt::KeyboardModifiers held =
        event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier);
    if (!isEnter || held == Qt::NoModifier)
        return false;
    setItemText(kText, itemText(kText).trimmed());
    acutPrintf(QStringLiteral("\nCtrl+回车，直接关闭窗口去画标记"));
    accept();
    return true;
}

void CAddMarkWnd::closeEvent(QCloseEvent *event)
{
    if (mayDropText())
        CAcUiDialog::closeEvent(event);
    else
        event->ignore();
}

/// The Cancel button says what it does; Esc is easily hit.
bool CAddMarkWnd::mayDropText()
{
    const QString text = itemText(kText);
    return text == m_start.text || text.trimmed().isEmpty() ||
           acedAsk(QStringLiteral("放弃已输入的文字？"), AcEdButtons::yesNo) == AcEdButton::yes;
}

/// As if typed, so that Ctrl+Z takes it back.
void CAddMarkWnd::putText(const QString &text)
{
    QTextCursor cursor(m_form->id1003->document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    m_form->id1003->moveCursor(QTextCursor::End);
}

void CAddMarkWnd::appendText(const QString &text)
{
    QTextCursor cursor(m_form->id1003->document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(text);
    m_form->id1003->moveCursor(QTextCursor::End);
}

// Menus ------------------------------------------------------------------------------------------

QAction *CAddMarkWnd::newItem(QMenu &menu, const PhraseItem &item)
{
    QString label = item.label;
    auto *action = new QAction(label.replace(u'&', QStringLiteral("&&")), &menu);
    action->setObjectName(acuiObjectName(item.number));
    if (item.text != item.label)
        action->setToolTip(item.text.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>")));
    // The item may be gone when its work is done: the menus are built anew.
    connect(action, &QAction::triggered, this, [this, number = item.number] { menuChosen(number); });
    return action;
}

void CAddMarkWnd::fillMenu(QMenu &menu, const PhrasePopup &popup)
{
    for (const PhraseItem &item : popup.items) {
        if (item.number)
            menu.addAction(newItem(menu, item));
        else
            menu.addSeparator();
    }
}

QMenu *CAddMarkWnd::addMenu(QString title)
{
    QMenu *const menu = m_menus->addMenu(title.replace(u'&', QStringLiteral("&&")));
    menu->setToolTipsVisible(true);
    return menu;
}

/// Hundreds of items would be made for every mark, and most marks use none of them.
void CAddMarkWnd::addPhraseMenu(std::size_t place)
{
    QMenu *const menu = addMenu(phrasePopupTitle(m_library, place));
    connect(menu, &QMenu::aboutToShow, this, [this, menu, place] {
        if (menu->isEmpty())
            fillMenu(*menu, phrasePopup(m_library, place));
    });
    m_phraseMenus.push_back(menu);
}

void CAddMarkWnd::addSettingsMenu()
{
    PhrasePopup popup{QStringLiteral("【帮助与设置】"), {}};
    const auto add = [&](int number, const QString &label) { popup.items.push_back({number, label, label}); };
    if (!m_library.fromXml) {
        add(kShowFolder, QStringLiteral("查看常用知识条目所在文件夹"));
        add(kChooseFolder, QStringLiteral("设置常用知识条目所在文件夹"));
        popup.items.push_back({});
    }
    add(kHelp, QStringLiteral("帮助"));
    popup.items.push_back({});
    if (!m_library.fromXml)
        add(kUpload, QStringLiteral("把常用知识条目上传到评图云"));
    add(kNextSource, m_library.fromXml ? QStringLiteral("下次使用本地的常用知识")
                                       : QStringLiteral("下次使用来自评图云的常用知识"));
    add(kDownload, QStringLiteral("从评图云选择下载专业与大类知识条目"));
    fillMenu(*addMenu(popup.title), popup);
    menuItem(kNextSource)->setCheckable(true);
}

void CAddMarkWnd::buildMenus()
{
    for (QMenu *menu : m_menus->findChildren<QMenu *>(Qt::FindDirectChildrenOnly)) {
        menu->setParent(nullptr); // Its items are not found any more; one of them may be at work.
        menu->deleteLater();
    }
    m_menus->clear();
    m_phraseMenus.clear();
    m_library = loadPhraseLibrary();
    addSettingsMenu();
    m_recentMenu = addMenu(recentPopup({}).title);
    connect(m_recentMenu, &QMenu::aboutToShow, this, [this] {
        if (!m_recentMenu->isEmpty())
            return;
        m_recent = recentPhrases();
        fillMenu(*m_recentMenu, recentPopup(m_recent));
    });
    for (std::size_t place = 0; place < phrasePopupCount(m_library); ++place)
        addPhraseMenu(place);
}

void CAddMarkWnd::menuChosen(int number)
{
    if (number >= kFirstPhraseItem && number < kFirstPlusItem)
        return choosePhrase(number - kFirstPhraseItem);
    if (number >= kFirstPlusItem && number < kFirstRecentItem)
        return addPhraseTo(number - kFirstPlusItem);
    if (number >= kFirstRecentItem && number <= kLastPhraseItem)
        return chooseRecent(number - kFirstRecentItem);
    switch (number) {
    case kShowFolder:
        return showPhraseFolder();
    case kChooseFolder:
        if (choosePhraseFolder())
            buildMenus();
        return;
    case kHelp:
        return openPhraseHelp();
    case kUpload:
        return uploadPhrases(m_library);
    case kNextSource:
        return toggleSource();
    case kDownload:
        return downloadPhrases();
    }
}

void CAddMarkWnd::choosePhrase(int index)
{
    if (index >= int(m_library.phrases.size()))
        return;
    const Phrase &phrase = m_library.phrases[std::size_t(index)];
    keepRecentPhrase(phrase.text);
    m_recentMenu->clear(); // Filled when it opens.
    m_value.weight = phrase.weight;
    m_value.smallCategory = phrase.category;
    m_value.bigCategory = m_library.bigCategory;
    takePhrase(phrase.text);
}

void CAddMarkWnd::chooseRecent(int position)
{
    if (position < m_recent.size())
        takePhrase(m_recent[position]);
}

void CAddMarkWnd::takePhrase(const QString &text)
{
    if (!drawsDirectly())
        return appendText(text);
    putText(text);
    accept();
}

/// What the editor holds becomes a phrase of that menu.
void CAddMarkWnd::addPhraseTo(int menu)
{
    const QString text = itemText(kText).trimmed();
    if (text.isEmpty() || m_library.fromXml || menu >= int(m_phraseMenus.size()))
        return;
    const PhraseMenu &target = m_library.menus[std::size_t(menu)];
    if (!storePhrase(target.file, text))
        return;
    const auto index = int(m_library.phrases.size());
    Phrase phrase = parsePhrase(text);
    phrase.category = target.name;
    m_library.phrases.push_back(phrase);
    if (index >= kMostPhrases)
        return; // The numbers behind belong to other items; the next opening shows it.
    QMenu &shown = *m_phraseMenus[std::size_t(menu)];
    shown.insertAction(shown.actions().value(0), newItem(shown, phraseItem(index, phrase.text)));
}

void CAddMarkWnd::toggleSource()
{
    const int next = settings::number(u"useXmlMenu") == 1 ? 0 : 1;
    settings::setNumber(u"useXmlMenu", next);
    menuItem(kNextSource)->setChecked((next == 1) != m_library.fromXml);
}

// The phrase bank --------------------------------------------------------------------------------

void CAddMarkWnd::getFromBank()
{
    const std::optional<QString> found = callPhraseBank(m_start.keywordText);
    if (!found)
        return;
    appendText(itemText(kText).isEmpty() || found->isEmpty() ? *found : QStringLiteral("\r\n") + *found);
    item(kText)->setFocus();
}

void CAddMarkWnd::putIntoBank()
{
    callAddToSelfDefLib(itemText(kText));
}

std::optional<MarkEditorValue> runMarkEditor(const MarkEditorStart &start)
{
    CAddMarkWnd editor(start, QApplication::activeWindow());
    if (editor.doModal() != QDialog::Accepted)
        return {};
    saveRectangle({editor.pos(), editor.size()});
    settings::setNumber(u"derectDraw", editor.drawsDirectly() ? 1 : 0);
    return editor.value();
}
