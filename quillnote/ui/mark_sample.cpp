#include "quillnote/ui/mark_sample.h"

#include "quillnote/entity/mark_draw.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/aced/edsysvar.h"
#include "host/acgi/display/display.h"

#include <QPainter>

namespace
{

constexpr double kViewHeight = 200.0; ///< Drawing units; everything in the picture counts in them.
constexpr double kTextHeight = 11.0;

/// A mark that is drawn by settings of its own instead of the stored ones.
class SampleMark : public QuillnoteObj3
{
public:
    explicit SampleMark(const MarkDrawingSettings &settings) : m_settings(settings) {}
    void subViewportDraw(AcGiViewportDraw *context) const override
    {
        MarkView view;
        view.viewport = context->viewport();
        drawMark(layOutMark(*this, m_settings, view), *context);
    }

private:
    MarkDrawingSettings m_settings;
};

MarkDrawingSettings drawingSettings(const SetupValues &values)
{
    MarkDrawingSettings drawn;
    drawn.style = TargetStyle(values.style);
    drawn.BKstyle = FrameStyle(values.BKstyle);
    drawn.autoTargetTextHeight = values.autoTargetTextHeight;
    drawn.autoFlagSize = values.autoFlagSize;
    drawn.showMarkText = values.showMarkText;
    drawn.viewFlag = values.viewFlag;
    drawn.viewDateTime = values.viewDateTime;
    drawn.viewName = values.viewName;
    drawn.displayFlagWithFreehandDraw = values.displayFlagWithFreehandDraw;
    drawn.trueType = settings::number(u"TextStyle") == 1;
    return drawn;
}

std::unique_ptr<SampleMark> newMark(const SetupValues &values, int color1, int color2)
{
    auto mark = std::make_unique<SampleMark>(drawingSettings(values));
    mark->suggestionName = values.name.isEmpty() ? QStringLiteral("姓名") : values.name;
    mark->color1 = static_cast<std::uint16_t>(color1);
    mark->color2 = static_cast<std::uint16_t>(color2);
    mark->flagStyle = FrameStyle(values.BKstyle);
    mark->targetStyle = TargetStyle(values.style);
    mark->textHeight = kTextHeight;
    mark->autoTextHeight = values.autoTargetTextHeight;
    return mark;
}

std::unique_ptr<SampleMark> flagMark(const SetupValues &values, int color1, int color2)
{
    auto mark = newMark(values, color1, color2);
    mark->suggestionContent = QStringLiteral("校审意见");
    mark->targetCorner1 = {-120, 10, 0};
    mark->targetCorner2 = {-10, 75, 0};
    completeTargetCorners(*mark);
    return mark;
}

std::unique_ptr<SampleMark> leaderMark(const SetupValues &values, int color1, int color2)
{
    auto mark = newMark(values, color1, color2);
    mark->markNumber = 2;
    mark->suggestionContent = QStringLiteral("引出文字");
    mark->leaderMode = LeaderMode::leader;
    mark->targetStyle = TargetStyle::none;
    mark->leaderEnds[0] = {-60, -75, 0};
    mark->leaderUsed[0] = true;
    mark->targetCorner1 = mark->targetCorner2 = mark->leaderEnds[0];
    completeTargetCorners(*mark);
    mark->textBoxCorner1 = {30, -60, 0};
    mark->textBoxCorner2 = {110, -40, 0};
    completeTextBoxCorners(*mark);
    return mark;
}

} // namespace

MarkSample::MarkSample(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(QStringLiteral("样例"));
}

void MarkSample::show(const SetupValues &values, int color1, int color2)
{
    m_values = values;
    m_color1 = color1;
    m_color2 = color2;
    update();
}

void MarkSample::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    AcDbDatabase *const database = acdbCurDwg();
    acgi::PaintOptions options;
    options.background = QColor::fromRgb(QRgb(acedIntVar(QStringLiteral("BACKGROUNDCOLOR"), 0)));
    painter.fillRect(rect(), options.background);
    if (!database)
        return;
    const double ratio = devicePixelRatioF();
    painter.scale(1.0 / ratio, 1.0 / ratio);
    AcGiViewport view;
    view.pixelWidth = width() * ratio;
    view.pixelHeight = height() * ratio;
    view.height = kViewHeight * std::max(1.0, 300.0 * height() / (kViewHeight * width()));
    options.fillBackground = false;
    const auto flag = flagMark(m_values, m_color1, m_color2);
    const auto leader = leaderMark(m_values, m_color1, m_color2);
    const std::array<const AcDbEntity *, 2> marks{flag.get(), leader.get()};
    acgi::displayOf(*database).paintTransients(marks, view, painter, options);
}
