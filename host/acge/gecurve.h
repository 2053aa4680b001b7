// Curves with parameter, length and points by length, as outlines and leaders follow them.
#pragma once

#include "host/acge/gepoint.h"

#include <optional>
#include <span>
#include <vector>

/// A curve of finite length. Lengths are found numerically, to about a millionth of the whole, and the points
/// at a length to a ten-thousandth: for things strung along a curve.
class AcGeCurve3d
{
public:
    virtual ~AcGeCurve3d() = default;
    /// Parameters run from 0 to this; nothing for a curve that cannot be computed.
    virtual std::optional<double> getEndParam() const = 0;
    virtual AcGePoint3d getPointAtParam(double parameter) const = 0;
    virtual AcGeVector3d getFirstDeriv(double parameter) const = 0;

    /// Length from the start to a parameter.
    std::optional<double> getDistAtParam(double parameter) const;
    /// The point at a length from the start; lengths outside the curve give its ends.
    std::optional<AcGePoint3d> getPointAtDist(double distance) const;

protected:
    /// Parameters from 0 to the end between which the curve has all derivatives.
    virtual std::vector<double> smoothSpans(double end) const = 0;

private:
    struct Sample {
        double parameter;
        double speed; ///< Length of the first derivative.
    };
    struct Measure : Sample {
        double length; ///< From the start.
    };
    const std::vector<Measure> &measures() const;
    Sample sampleAt(double parameter) const;
    static double lengthOf(const Sample &from, const Sample &middle, const Sample &to);
    void measure(const Sample &from, const Sample &middle, const Sample &to, double tolerance,
                 int depth) const;
    static double parameterBetween(const Measure &low, const Measure &high, double distance);
    double parameterAt(double distance) const;
    mutable std::vector<Measure> m_measures; ///< Made on first use.
};

/// centre + major cos t + minor sin t; t from 0 to 2 pi.
class AcGeEllipArc3d : public AcGeCurve3d
{
public:
    AcGeEllipArc3d(const AcGePoint3d &centre, const AcGeVector3d &major, const AcGeVector3d &minor)
        : m_centre(centre), m_major(major), m_minor(minor)
    {
    }
    std::optional<double> getEndParam() const override;
    AcGePoint3d getPointAtParam(double parameter) const override;
    AcGeVector3d getFirstDeriv(double parameter) const override;

protected:
    std::vector<double> smoothSpans(double end) const override;

private:
    AcGePoint3d m_centre;
    AcGeVector3d m_major;
    AcGeVector3d m_minor;
};

/// The cubic spline (order 4) with continuous second derivative through fit points, parametrised by the
/// chord lengths between them. End tangents that are not given follow from the natural end condition; given
/// ones count by direction, with the speed of chord-length parametrisation (length 1).
class AcGeFitSpline3d : public AcGeCurve3d
{
public:
    AcGeFitSpline3d(std::span<const AcGePoint3d> fitPoints, std::optional<AcGeVector3d> startTangent,
                    std::optional<AcGeVector3d> endTangent);
    /// Nothing with fewer than two distinct points or without finite coordinates.
    std::optional<double> getEndParam() const override;
    AcGePoint3d getPointAtParam(double parameter) const override;
    AcGeVector3d getFirstDeriv(double parameter) const override;

protected:
    std::vector<double> smoothSpans(double end) const override;

private:
    void solveTangents(std::optional<AcGeVector3d> start, std::optional<AcGeVector3d> end);
    /// The fit point before the parameter, which becomes a number from 0 to 1 along the span.
    std::size_t spanOf(double &parameter) const;
    std::vector<AcGePoint3d> m_points;
    std::vector<AcGeVector3d> m_tangents; ///< First derivatives at the fit points.
    std::vector<double> m_knots;          ///< Parameters of the fit points.
};
