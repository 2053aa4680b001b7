#include "host/acui/acuicolor.h"

#include "host/acgi/index_color.h"
#include "host/acui/acuidialog.h"
#include "host/base/host_text.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QToolTip>

#include <array>

static constexpr int kNumber = 10;
static constexpr int kByBlock = 0;
static constexpr int kByLayer = 256;

namespace
{

/// All colours, to be pointed at: the hues from dark to light, then the nine with names and the six greys.
class ColorField : public QWidget
{
    Q_OBJECT

public:
    explicit ColorField(QWidget *parent) : QWidget(parent)
    {
        setFocusPolicy(Qt::StrongFocus);
        setAccessibleName(Host::tr("颜色"));
        setFixedSize(kColumns * cell(), (kHueRows + 1) * cell() + cell() / 2);
    }
    void setIndex(int index)
    {
        m_index = index;
        update();
    }

Q_SIGNALS:
    void picked(int index);
    void confirmed();

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        for (int index = 1; index < kByLayer; ++index) {
            const QRect place = placeOf(index);
            painter.fillRect(place.adjusted(1, 1, -1, -1), QColor::fromRgb(acgi::indexColor(index)));
            if (index == m_index) {
                painter.setPen(QPen(palette().color(QPalette::Highlight), 3));
                painter.drawRect(place.adjusted(1, 1, -2, -2));
            }
        }
    }
    void mousePressEvent(QMouseEvent *event) override
    {
        if (const int index = indexAt(event->position().toPoint()))
            Q_EMIT picked(index);
    }
    void mouseDoubleClickEvent(QMouseEvent *event) override
    {
        if (indexAt(event->position().toPoint()))
            Q_EMIT confirmed();
    }
    void keyPressEvent(QKeyEvent *event) override
    {
        const QPoint middle = placeOf(m_index).center();
        const int step = cell();
        const std::array<std::pair<int, QPoint>, 4> ways{{{Qt::Key_Left, {-step, 0}},
                                                          {Qt::Key_Right, {step, 0}},
                                                          {Qt::Key_Up, {0, -step}},
                                                          {Qt::Key_Down, {0, step}}}};
        for (const auto &[key, way] : ways) {
            if (event->key() != key)
                continue;
            // Between the hues and the row below lies half a cell.
            int next = indexAt(middle + way);
            if (!next)
                next = indexAt(middle + way + way / 2);
            if (next)
                Q_EMIT picked(next);
            return;
        }
        QWidget::keyPressEvent(event);
    }
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::ToolTip)
            return QWidget::event(event);
        const auto *help = static_cast<QHelpEvent *>(event);
        if (const int index = indexAt(help->pos()))
            QToolTip::showText(help->globalPos(), QString::number(index), this);
        return true;
    }

private:
    static constexpr int kColumns = 24;
    static constexpr int kHueRows = 10;

    int cell() const { return std::max(18, fontMetrics().height() + 2); }
    QRect placeOf(int index) const
    {
        const int size = cell();
        const int lastRow = kHueRows * size + size / 2;
        if (index < 10)
            return {(index - 1) * size, lastRow, size, size};
        if (index >= 250)
            return {(index - 250 + kColumns - 6) * size, lastRow, size, size};
        const int shade = index % 10; // Even ones are pure, from light to dark; odd ones are paler.
        const int row = shade % 2 ? 5 + shade / 2 : 4 - shade / 2;
        return {(index / 10 - 1) * size, row * size, size, size};
    }
    int indexAt(QPoint place) const
    {
        for (int index = 1; index < kByLayer; ++index) {
            if (placeOf(index).contains(place))
                return index;
        }
        return 0;
    }

    int m_index = 7;
};

class CAcUiColorDialog : public CAcUiDialog
{
    Q_OBJECT

public:
    CAcUiColorDialog(int index, bool allowsMeta, QWidget *parent)
        : CAcUiDialog(parent), m_field(new ColorField(this)), m_number(new QSpinBox(this)),
          m_sample(new QLabel(this))
    {
        setWindowTitle(Host::tr("选择颜色"));
        m_number->setObjectName(acuiObjectName(kNumber));
        m_number->setRange(allowsMeta ? kByBlock : 1, allowsMeta ? kByLayer : kByLayer - 1);
        auto *ok = new QPushButton(Host::tr("确定"), this);
        ok->setObjectName(acuiObjectName(kAcUiOk));
        ok->setDefault(true);
        auto *cancel = new QPushButton(Host::tr("取消"), this);
        cancel->setObjectName(acuiObjectName(kAcUiCancel));
        auto *label = new QLabel(Host::tr("颜色号："), this);
        label->setBuddy(m_number);
        m_sample->setMinimumWidth(60);
        m_sample->setAutoFillBackground(true);

        auto *row = new QHBoxLayout;
        for (QWidget *widget : {static_cast<QWidget *>(label), static_cast<QWidget *>(m_number),
                                static_cast<QWidget *>(m_sample)})
            row->addWidget(widget);
        if (allowsMeta) {
            addMeta(*row, Host::tr("随层"), kByLayer);
            addMeta(*row, Host::tr("随块"), kByBlock);
        }
        row->addStretch();
        row->addWidget(ok);
        row->addWidget(cancel);
        auto *column = new QVBoxLayout(this);
        column->addWidget(m_field);
        column->addLayout(row);
        column->setSizeConstraint(QLayout::SetFixedSize);

        connect(m_field, &ColorField::picked, m_number, &QSpinBox::setValue);
        connect(m_field, &ColorField::confirmed, this, &QDialog::accept);
        connect(m_number, &QSpinBox::valueChanged, this, &CAcUiColorDialog::showIndex);
        connectOkCancel();
        m_number->setValue(index);
        showIndex(m_number->value());
        m_field->setFocus();
    }
    int index() const { return m_number->value(); }

private:
    void addMeta(QHBoxLayout &row, const QString &caption, int index)
    {
        auto *button = new QPushButton(caption, this);
        connect(button, &QPushButton::clicked, m_number, [this, index] { m_number->setValue(index); });
        row.addWidget(button);
    }
    void showIndex(int index)
    {
        m_field->setIndex(index);
        QPalette colors = m_sample->palette();
        const bool isColor = index > kByBlock && index < kByLayer;
        colors.setColor(QPalette::Window, isColor ? QColor::fromRgb(acgi::indexColor(index))
                                                  : palette().color(QPalette::Window));
        m_sample->setPalette(colors);
    }

    ColorField *m_field;
    QSpinBox *m_number;
    QLabel *m_sample;
};

} // namespace

bool acedSetColorDialog(int &index, bool allowsMeta)
{
    CAcUiColorDialog dialog(index, allowsMeta, QApplication::activeWindow());
    if (dialog.doModal() != QDialog::Accepted)
        return false;
    index = dialog.index();
    return true;
}

#include "acuicolor.moc"
