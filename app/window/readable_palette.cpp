#include "app/window/readable_palette.h"

#include <QApplication>
#include <QEvent>

namespace window
{

QColor subdued(const QColor &text, const QColor &background)
{
    const auto part = [](int one, int other) { return (one * 11 + other * 9) / 20; };
    return QColor(part(text.red(), background.red()), part(text.green(), background.green()),
                  part(text.blue(), background.blue()));
}

static bool standsOut(const QColor &color, const QColor &background)
{
    constexpr int kLeast = 75; // Grey levels.
    const int alpha = color.alpha();
    return qAbs(qGray(color.rgb()) - qGray(background.rgb())) * alpha / 255 >= kLeast;
}

QPalette paletteCorrections(const QPalette &palette)
{
    constexpr std::pair<QPalette::ColorRole, QPalette::ColorRole> kTexts[] = {
        {QPalette::WindowText, QPalette::Window},
        {QPalette::Text, QPalette::Base},
        {QPalette::ButtonText, QPalette::Button}};
    QPalette corrected;
    corrected.setResolveMask(0);
    const auto check = [&](QPalette::ColorGroup group, QPalette::ColorRole text, QPalette::ColorRole wanted,
                           QPalette::ColorRole under) {
        const QColor background = palette.color(group, under);
        if (!standsOut(palette.color(group, wanted), background))
            corrected.setColor(group, wanted, subdued(palette.color(QPalette::Active, text), background));
    };
    for (const auto &[text, background] : kTexts)
        check(QPalette::Disabled, text, text, background);
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        check(group, QPalette::Text, QPalette::PlaceholderText, QPalette::Base);
    return corrected;
}

ReadablePalette::ReadablePalette()
{
    correct();
    qApp->installEventFilter(this);
}

ReadablePalette::~ReadablePalette()
{
    qApp->removeEventFilter(this);
    QApplication::setPalette(QPalette());
}

bool ReadablePalette::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp && !m_isCorrecting)
        correct();
    return false;
}

void ReadablePalette::correct()
{
    m_isCorrecting = true;
    QApplication::setPalette(QPalette()); // The desktop's.
    const QPalette corrections = paletteCorrections(QApplication::palette());
    if (corrections.resolveMask() != 0)
        QApplication::setPalette(corrections);
    m_isCorrecting = false;
}

} // namespace window
