#include "quillnote/ui/setup_dialog.h"

#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/phrase_bank.h"
#include "quillnote/ui/phrase_folder.h"
#include "ui_104.h"

#include "host/aced/edmessage.h"
#include "host/acgi/index_color.h"
#include "host/acui/acuicolor.h"
#include "host/acui/acuifile.h"
#include "host/base/file_bytes.h"

#include <QApplication>
#include <QLayout>
#include <QScreen>
#include <QScrollBar>
#include <QShowEvent>

#include <array>

// What stands where ------------------------------------------------------------------------------

namespace
{

struct Choice {
    int control;
    int value;
};

struct Check {
    int control;
    bool SetupValues::*value;
};

constexpr std::array<Choice, 6> kOutlines{{{1009, 4}, {1010, 2}, {1011, 1}, {1012, 3}, {1013, 5}, {1014, 6}}};
constexpr std::array<Choice, 6> kFrames{
    {{1018, 100}, {1020, 101}, {1022, 102}, {1025, 103}, {1026, 104}, {1027, 105}}};
constexpr std::array<Choice, 3> kDoubleClicks{{{1021, 0}, {1019, 2}, {1023, 1}}};

constexpr std::array<Check, 14> kChecks{{
    {1155, &SetupValues::applyAll},
    {1052, &SetupValues::useLayer},
    {1057, &SetupValues::noPlotLayer},
    {1150, &SetupValues::displayFlagWithFreehandDraw},
    {1151, &SetupValues::snapRecord},
    {1153, &SetupValues::snapReview},
    {1154, &SetupValues::useTemplate},
    {1059, &SetupValues::autoFlagSize},
    {1069, &SetupValues::autoTargetTextHeight},
    {1054, &SetupValues::viewDateTime},
    {1072, &SetupValues::showMarkText},
    {1071, &SetupValues::viewName},
    {1061, &SetupValues::viewFlag},
    {1070, &SetupValues::autoFlagRefresh},
}};

enum Control : int {
    kName = 1003,
    kColor1 = 1005,
    kColor2 = 1006,
    kPassword = 1031,
    kChooseBank = 1040,
    kChooseFolder = 1044,
    kDefineKeywords = 1046,
    kModelHeight = 1050,
    kLayerName = 1051,
    kUseLayer = 1052,
    kSheetHeight = 1056,
    kNoPlot = 1057,
    kFlagSize = 1059,
    kPasswordAgain = 1062,
    kTemplate = 1065,
    kFlagRefresh = 1070,
};

const QString kAutomaticHeight = QStringLiteral("0即为自动大小，REGEN后自动适应屏幕");

} // namespace

template <std::size_t N>
static int chosen(const CSetup &dialog, const std::array<Choice, N> &choices, int otherwise)
{
    for (const Choice &choice : choices) {
        if (dialog.isChecked(choice.control))
            return choice.value;
    }
    return otherwise;
}

template <std::size_t N>
static void choose(CSetup &dialog, const std::array<Choice, N> &choices, int value)
{
    for (const Choice &choice : choices) {
        if (choice.value == value)
            dialog.setChecked(choice.control, true);
    }
}

// The dialog -------------------------------------------------------------------------------------

CSetup::CSetup(const SetupValues &start, QWidget *parent)
    : CAcUiDialog(parent), m_form(std::make_unique<Ui::Setup>()), m_color1(settings::number(u"color1")),
      m_color2(settings::number(u"color2"))
{
    m_form->setupUi(this);
    setWindowTitle(QStringLiteral("评图标签[V%1]").arg(QStringLiteral("8.0")));
    connectOkCancel();
    fill(start);
    if (!settings::text(u"chPwMD5").isEmpty())
        m_form->id1031->setPlaceholderText(QStringLiteral("留空则取消现有密码"));
    watchChanges();
    connectButtons();
    showSample();
    if (start.name.isEmpty()) // What a new user comes here for.
        item(kName)->setFocus();
}

CSetup::~CSetup() = default;

void CSetup::fill(const SetupValues &values)
{
    choose(*this, kOutlines, values.style);
    choose(*this, kFrames, values.BKstyle);
    choose(*this, kDoubleClicks, values.doubleClick);
    for (const Check &check : kChecks)
        setChecked(check.control, values.*check.value);
    setItemText(kName, values.name);
    setItemText(kModelHeight, QString::number(values.textHeight));
    setItemText(kSheetHeight, QString::number(values.textHeightPS));
    setItemText(kLayerName, values.layerName);
    for (const int number : {int(kNoPlot), int(kLayerName)})
        setItemEnabled(number, values.useLayer);
}

SetupValues CSetup::values() const
{
    SetupValues values;
    values.style = chosen(*this, kOutlines, 1);
    values.BKstyle = chosen(*this, kFrames, 103);
    values.doubleClick = chosen(*this, kDoubleClicks, 1);
    for (const Check &check : kChecks)
        values.*check.value = isChecked(check.control);
    values.name = itemText(kName);
    values.password = itemText(kPassword).trimmed();
    values.textHeight =
        itemText(kModelHeight) == kAutomaticHeight ? 0 : leadingInteger(itemText(kModelHeight));
    values.textHeightPS = leadingInteger(itemText(kSheetHeight));
    values.layerName = itemText(kLayerName);
    return values;
}

/// With a large font or on a small screen the settings are scrolled, the buttons stay.
void CSetup::fitScreen()
{
    for (const int number : {int(kModelHeight), int(kSheetHeight), int(kLayerName)})
        item(number)->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("评图标签专用")));
    // What stands inside first: a layout remembers what its parts wanted before they had their texts and
    // fonts.
    const QList<QWidget *> widgets = findChildren<QWidget *>();
    for (auto widget = widgets.rbegin(); widget != widgets.rend(); ++widget) {
        (*widget)->ensurePolished();
        if (QLayout *const layout = (*widget)->layout()) {
            layout->invalidate();
            layout->activate();
        }
    }
    const QSize screen =
        QGuiApplication::primaryScreen()->availableSize() - QSize(16, 48); // Frame and title.
    const QSize wanted = m_form->page->sizeHint();
    const int bar = m_form->scroll->verticalScrollBar()->sizeHint().width();
    const QSize rest = sizeHint() - m_form->scroll->sizeHint();
    const bool isHigh = wanted.height() + rest.height() > screen.height();
    const QSize whole = wanted + rest + QSize(isHigh ? bar : 0, 0);
    resize(whole.boundedTo(screen));
}

void CSetup::showEvent(QShowEvent *event)
{
    CAcUiDialog::showEvent(event);
    if (!event->spontaneous())
        fitScreen();
}

// Changes ----------------------------------------------------------------------------------------

void CSetup::watchChanges()
{
    for (QAbstractButton *button : findChildren<QAbstractButton *>())
        connect(button, &QAbstractButton::toggled, this, &CSetup::showSample);
    connect(m_form->id1003, &QLineEdit::textChanged, this, &CSetup::showSample);
    connect(m_form->id1052, &QCheckBox::toggled, this, [this](bool on) {
        if (on && itemText(kLayerName).isEmpty())
            setItemText(kLayerName, settings::text(u"LayerName"));
        setItemEnabled(kNoPlot, on);
        setItemEnabled(kLayerName, on);
    });
    connect(m_form->id1070, &QCheckBox::toggled, this, [this](bool on) {
        if (on)
            setChecked(kFlagSize, true);
    });
}

bool CSetup::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut && watched == m_form->id1062)
        passwordsAgree();
    if (event->type() == QEvent::FocusOut && watched == m_form->id1050)
        leaveHeightBox();
    if (event->type() == QEvent::FocusIn && watched == m_form->id1050 &&
        itemText(kModelHeight) == kAutomaticHeight)
        setItemText(kModelHeight, {});
    return CAcUiDialog::eventFilter(watched, event);
}

void CSetup::leaveHeightBox()
{
    if (itemText(kModelHeight) == u"0")
        setItemText(kModelHeight, kAutomaticHeight);
}

bool CSetup::passwordsAgree()
{
    if (itemText(kPassword) == itemText(kPasswordAgain))
        return true;
    // The message takes the focus from the box once more.
    setItemText(kPassword, {});
    setItemText(kPasswordAgain, {});
    acedAlert(QStringLiteral("两次密码不同！"));
    item(kPassword)->setFocus();
    return false;
}

void CSetup::showSample()
{
    m_form->sample->show(values(), m_color1, m_color2);
    for (const auto &[button, index] :
         {std::pair(m_form->id1005, m_color1), std::pair(m_form->id1006, m_color2)}) {
        QPixmap swatch(32, 16);
        swatch.fill(QColor::fromRgb(acgi::indexColor(index)));
        button->setIcon(swatch);
    }
}

// Buttons ----------------------------------------------------------------------------------------

void CSetup::connectButtons()
{
    const auto on = [this](QPushButton *button, auto function) {
        connect(button, &QPushButton::clicked, this, function);
    };
    on(m_form->id1005, [this] { chooseColor(u"color1", m_color1); });
    on(m_form->id1006, [this] { chooseColor(u"color2", m_color2); });
    on(m_form->id1040, [] { callLibSetup(); });
    on(m_form->id1046, [] { callKeywordsDef(); });
    on(m_form->id1044, [] { choosePhraseFolder(); });
    on(m_form->id1065, [this] { chooseTemplate(); });
}

void CSetup::chooseColor(settings::Number setting, int &current)
{
    int index = settings::number(setting);
    if (!acedSetColorDialog(index))
        return;
    settings::setNumber(setting, index);
    current = index;
    showSample();
}

void CSetup::chooseTemplate()
{
    QString path;
    if (acedGetFileD(item(kTemplate)->property("text").toString(), settings::text(u"TempleteHTML"),
                     QStringLiteral("html"), kAcUiOpenFile, path) != RTNORM) {
        acedAlert(QStringLiteral("未选中评图标签输出模板文件！"));
        return;
    }
    const auto bytes = base::readFileBytes(path);
    if (!bytes) {
        acedAlert(bytes.error().text());
        return;
    }
    const TemplateCheck check = checkTemplate(QByteArrayView(bytes->data(), qsizetype(bytes->size())));
    if (check.hasByteOrderMark)
        acedAlert(QStringLiteral("< %1 >文件不是ANSI编码。").arg(path));
    if (check.isTemplate)
        settings::setText(u"TempleteHTML", path);
    acedAlert(check.message.arg(path));
}

// Confirming -------------------------------------------------------------------------------------

void CSetup::checkHeight()
{
    const SetupView view = currentSetupView();
    const int box = view.paperSpace ? kSheetHeight : kModelHeight;
    const HeightCheck check =
        checkTextHeight(view.paperSpace ? values().textHeightPS : values().textHeight, view);
    if (check.replaced)
        setItemText(box, QString::number(*check.replaced));
    if (!check.message.isEmpty())
        acedAlert(check.message);
}

void CSetup::accept()
{
    if (!passwordsAgree())
        return;
    checkHeight();
    CAcUiDialog::accept();
}

std::optional<SetupValues> runSetup(const SetupValues &start)
{
    CSetup dialog(start, QApplication::activeWindow());
    if (dialog.doModal() != QDialog::Accepted)
        return {};
    return dialog.values();
}
