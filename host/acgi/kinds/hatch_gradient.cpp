#include "host/acgi/kinds/hatch_gradient.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

constexpr int kBands = 32;

static std::uint32_t mixed(std::uint32_t one, std::uint32_t other, double share)
{
    std::uint32_t color = 0;
    for (const int shift : {16, 8, 0}) {
        const double a = (one >> shift) & 0xFFU;
        const double b = (other >> shift) & 0xFFU;
        color |= std::uint32_t(std::lround(a + (b - a) * share)) << shift;
    }
    return color;
}

std::optional<HatchGradient> readHatchGradient(const EntityGroups &groups)
{
    if (groups.integer(450) != 1)
        return std::nullopt;
    std::vector<std::uint32_t> colors;
    for (const resbuf &group : groups) {
        if (group.restype == 421)
            colors.push_back(std::uint32_t(group.integer()) & 0xFFFFFFU);
    }
    if (colors.empty())
        return std::nullopt;
    HatchGradient gradient;
    const QString name = groups.text(470).toUpper();
    gradient.inverted = name.startsWith(QLatin1String("INV"));
    gradient.shape = name.endsWith(QLatin1String("CYLINDER"))    ? HatchGradient::cylinder
                     : name.endsWith(QLatin1String("SPHERICAL")) ? HatchGradient::spherical
                                                                 : HatchGradient::linear;
    gradient.centred = groups.real(461) == 0.0;
    const double angle = groups.real(460);
    gradient.angle = std::isfinite(angle) ? angle : 0.0;
    gradient.first = colors.front();
    gradient.second = colors.back();
    return gradient;
}

namespace
{

/// The box around the loops that is turned with the gradient.
class GradientBox
{
public:
    GradientBox(const HatchGradient &gradient, const std::vector<Loop> &loops)
        : m_along(std::cos(gradient.angle), std::sin(gradient.angle), 0.0), m_up(-m_along.y, m_along.x, 0.0)
    {
        for (const Loop &loop : loops) {
            for (const AcGePoint3d &point : loop) {
                const AcGeVector3d p = point.asVector();
                m_left = std::min(m_left, p.dotProduct(m_along));
                m_right = std::max(m_right, p.dotProduct(m_along));
                m_bottom = std::min(m_bottom, p.dotProduct(m_up));
                m_top = std::max(m_top, p.dotProduct(m_up));
                m_elevation = point.z;
            }
        }
    }

    /// Shares of the width and height; from the lower left corner.
    AcGePoint3d at(double x, double y) const
    {
        const AcGePoint3d elevation(0.0, 0.0, m_elevation);
        return elevation + m_along * std::lerp(m_left, m_right, x) + m_up * std::lerp(m_bottom, m_top, y);
    }

    Loop band(double from, double to) const
    {
        return {at(from, 0.0), at(to, 0.0), at(to, 1.0), at(from, 1.0)};
    }

    /// `share` of the radius at which a circle about `centre` holds the box.
    Loop disc(const AcGePoint3d &centre, double share) const
    {
        double radius = 0.0;
        for (const double x : {0.0, 1.0}) {
            for (const double y : {0.0, 1.0})
                radius = std::max(radius, centre.distanceTo(at(x, y)));
        }
        Loop loop;
        Arc{centre, m_along * (radius * share), m_up * (radius * share)}.appendSamples(loop);
        return loop;
    }

private:
    AcGeVector3d m_along;
    AcGeVector3d m_up;
    double m_left = HUGE_VAL;
    double m_right = -HUGE_VAL;
    double m_bottom = HUGE_VAL;
    double m_top = -HUGE_VAL;
    double m_elevation = 0.0;
};

/// How far the colour of a band is from the first to the second one; `t` is its middle, from the left or,
/// for spheres, from the light.
double colorShare(const HatchGradient &gradient, double t)
{
    double share = t;
    if (gradient.shape == HatchGradient::cylinder) {
        const double brightest = gradient.centred ? 0.5 : 0.25;
        share = std::abs(t - brightest) / (1.0 - brightest);
    } else if (gradient.shape == HatchGradient::linear && !gradient.centred) {
        share = std::min(1.0, 0.5 + 0.5 * t);
    }
    // Cylinders and spheres carry the second colour where the light falls.
    const bool isLit = gradient.shape != HatchGradient::linear;
    return isLit != gradient.inverted ? 1.0 - share : share;
}

} // namespace

void fillGradient(const HatchGradient &gradient, const std::vector<Loop> &loops, AcGiGeometry &sink)
{
    const GradientBox box(gradient, loops);
    const AcGePoint3d light = gradient.centred ? box.at(0.5, 0.5) : box.at(0.25, 0.75);
    sink.pushClip(loops, false);
    // Each band reaches under the next one, so that no seam shows the background where smoothed edges meet.
    constexpr double kWidth = 1.0 / kBands;
    for (int i = 0; i < kBands; ++i) {
        const bool isSphere = gradient.shape == HatchGradient::spherical;
        const double from = kWidth * (isSphere ? kBands - 1 - i : i);
        sink.subEntityTraits().setTrueColor(AcCmEntityColor::fromRgb(
            mixed(gradient.first, gradient.second, colorShare(gradient, from + kWidth / 2.0))));
        if (isSphere) {
            std::vector<Loop> ring{box.disc(light, from + kWidth)};
            if (from > kWidth)
                ring.push_back(box.disc(light, from - kWidth));
            sink.fill(ring);
        } else {
            const Loop band = box.band(from, std::min(1.0, from + 2.0 * kWidth));
            sink.fill(std::span(&band, 1));
        }
    }
    sink.popClip();
}

} // namespace acgi
