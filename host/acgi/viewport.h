// AcGiViewport: a view of a space as drawing takes it: where, and on what it is shown.
#pragma once

#include "host/acge/geview.h"

class AcGiViewport : public AcGeView
{
public:
    AcGiViewport() = default;
    explicit AcGiViewport(const AcGeView &view) : AcGeView(view) {}

    bool paperSpace = false; ///< Of a paper-space layout.
    /// On whatever shows the view, for what is to be of one size to the eye. 96 to an inch unless a screen or
    /// a sheet of paper says otherwise.
    double pixelsPerMillimetre = kUsualDensity;
    static constexpr double kUsualDensity = 96.0 / 25.4;

    /// World units.
    double millimetre() const { return pixelsPerMillimetre * pixelSize(); }
};
