// The desktop's palette with what cannot be read put right: high-contrast palettes often leave disabled texts
// and placeholders in the colour of what lies under them.
#pragma once

#include <QObject>
#include <QPalette>

namespace window
{

/// Those colours of the palette that cannot be read, readable; nothing else is set in it.
QPalette paletteCorrections(const QPalette &palette);

/// As long as it lives the application has the desktop's palette, corrected, also when the desktop's changes.
class ReadablePalette : public QObject
{
public:
    ReadablePalette();
    ~ReadablePalette() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void correct();

    bool m_isCorrecting = false;
};

} // namespace window
