#include "PipeScene.h"

#include "SurfaceNoise.h"

#include <algorithm>
#include <cmath>

namespace Tolvar::Varundo::Simulator {

namespace {

constexpr double pipeRadius = 0.3;   // metres
constexpr double waterDepth = 0.06;  // at its deepest
constexpr double focalLength = 1.15; // in half heights of the picture
constexpr double nearestRay = 0.004; // towards the vanishing point depth would grow without end
constexpr float joint = static_cast<float>(PipeScene::JointDistance);
constexpr int circumference = 24; // patches of dirt around the pipe
constexpr float pi = 3.14159265F;

float smoothStep(float from, float to, float value)
{
    const float share = std::clamp((value - from) / (to - from), 0.0F, 1.0F);
    return share * share * (3.0F - 2.0F * share);
}

/// 1 at the place of a line so wide, 0 well beside it. From far a line is seen blurred, not aliased.
float lineAt(float distance, float halfWidth, float blur)
{
    return 1.0F - smoothStep(halfWidth, halfWidth + blur, std::fabs(distance));
}

quint32 toByte(float value)
{
    return static_cast<quint32>(std::clamp(value, 0.0F, 1.0F) * 255.0F + 0.5F);
}

} // namespace

PipeScene::PipeScene(const QSize& size)
    : m_size(size)
{
    m_sights.reserve(size.width() * size.height());
    // The camera rides a little above the axis, so the vanishing point lies a little below the middle.
    const double halfHeight = size.height() / 2.0;
    const double centreX = size.width() * 0.5;
    const double centreY = size.height() * 0.53;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            m_sights.append(sightOf((x + 0.5 - centreX) / halfHeight, (y + 0.5 - centreY) / halfHeight));
        }
    }
}

/// x to the right and y downwards, in half heights from the vanishing point.
PipeScene::Sight PipeScene::sightOf(double x, double y) const
{
    const double ray = std::max(std::hypot(x, y), nearestRay);
    const double wallDepth = focalLength * pipeRadius / ray;
    const double waterLevel = pipeRadius - waterDepth;
    const double waterSight = y > 0.0 ? focalLength * waterLevel / y : wallDepth + 1.0;

    Sight sight{};
    sight.onWater = waterSight < wallDepth;
    const double depth = sight.onWater ? waterSight : wallDepth;
    const double turn = std::atan2(-x, y) / (2.0 * static_cast<double>(pi));
    sight.depth = static_cast<float>(depth);
    sight.across =
        static_cast<float>(sight.onWater ? x * depth / focalLength : (turn < 0.0 ? turn + 1.0 : turn));
    // The lamps reach some metres, and do not reach what is beside them.
    const double reach = 1.0 / (1.0 + std::pow(depth / 1.7, 1.8));
    const double beam = std::min(1.0, 0.18 + depth / 0.75);
    sight.light = static_cast<float>(reach * beam);
    return sight;
}

QImage PipeScene::render(double seconds, double metres) const
{
    // In single precision far places lose their texture; the pipe looks the same again after so many metres.
    const auto place = static_cast<float>(std::isfinite(metres) ? std::fmod(metres, 600.0) : 0.0);
    const auto moment = static_cast<float>(std::fmod(seconds, 3600.0));
    QImage image(m_size, QImage::Format_RGB32);
    const Sight* sight = m_sights.constData();
    for (int y = 0; y < m_size.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < m_size.width(); ++x, ++sight) {
            const Colour colour = sight->onWater ? water(*sight, place, moment) : wall(*sight, place);
            line[x] =
                0xFF000000U | toByte(colour.red) << 16 | toByte(colour.green) << 8 | toByte(colour.blue);
        }
    }
    return image;
}

PipeScene::Colour PipeScene::wall(const Sight& sight, float place) const
{
    const float along = sight.depth + place;
    const float blur = 0.006F + 0.012F * sight.depth * sight.depth;
    const float around = sight.across * circumference;

    // From far the grain is finer than a pixel: it fades instead of sparkling.
    const float detail = 1.0F / (1.0F + 0.12F * sight.depth * sight.depth);
    const float grain = SurfaceNoise::rough(around, along * 9.0F, circumference) - 0.5F;
    const float patches = SurfaceNoise::smooth(around / 3.0F, along * 1.1F, circumference / 3);
    float shade = 0.62F + 0.42F * grain * detail + 0.22F * (patches - 0.5F);

    // Joints: a dark gap, a bright edge behind it, and lime that has run down from some of them.
    const float number = std::floor(along / joint + 0.5F);
    const float chipped =
        0.012F * (SurfaceNoise::smooth(around * 4.0F, number * 3.1F, circumference * 4) - 0.5F);
    const float fromJoint = along - number * joint + chipped;
    const int pipe = static_cast<int>(number);
    const float lime = SurfaceNoise::smooth(around, number * 7.3F, circumference) *
                       SurfaceNoise::atPoint(pipe, 11) * lineAt(fromJoint - 0.06F, 0.02F, 0.20F + blur);
    shade += 0.55F * lime;
    shade += 0.16F * lineAt(fromJoint - 0.026F, 0.010F, 0.014F + blur);
    shade *= 1.0F - 0.80F * lineAt(fromJoint, 0.007F, 0.008F + blur);

    // A tide mark above the water, darker towards the ground.
    const float height = std::fabs(sight.across - 0.5F) * 2.0F; // 0 at the crown, 1 at the ground
    const float tide = smoothStep(0.60F, 0.72F, height + 0.08F * (patches - 0.5F));
    shade *= 1.0F - 0.34F * tide;

    // A lateral in every fourth pipe, left or right above the middle.
    if (SurfaceNoise::atPoint(pipe, 3) < 0.28F) {
        const float side = SurfaceNoise::atPoint(pipe, 5) < 0.5F ? 0.36F : 0.64F;
        const float high = (sight.across - side) * 2.0F * pi * static_cast<float>(pipeRadius);
        const float distance = std::hypot(fromJoint - 0.25F, high);
        shade += 0.22F * lineAt(distance - 0.090F, 0.007F, 0.008F + blur);
        shade *= 1.0F - 0.88F * (1.0F - smoothStep(0.078F, 0.086F + blur, distance));
    }

    const float lit = std::max(0.0F, shade) * sight.light * 1.18F;
    const float rust = 0.10F * tide + 0.06F * patches;
    return {lit * (1.0F + 0.3F * rust), lit * (0.95F - 0.25F * rust), lit * (0.84F - 0.9F * rust) + 0.012F};
}

PipeScene::Colour PipeScene::water(const Sight& sight, float place, float seconds) const
{
    const float along = sight.depth + place;
    const float flowing = along * 7.0F + seconds * 3.2F;
    const float detail = 1.0F / (1.0F + 0.16F * sight.depth * sight.depth);
    const float ripples = SurfaceNoise::smooth(sight.across * 26.0F + 64.0F, flowing, 1024) - 0.5F;
    const float small =
        SurfaceNoise::smooth(sight.across * 75.0F + 200.0F, flowing * 2.7F + seconds * 2.0F, 4096) - 0.5F;
    const float wave = (ripples + 0.6F * small) * detail;

    // Where a wave turns towards the lamps it shines; the edges are shallow and show the ground.
    const float shine = smoothStep(0.24F, 0.66F, wave);
    const float edge = std::fabs(sight.across) / 0.18F;
    const float shallow = smoothStep(0.72F, 1.0F, edge + 0.12F * ripples);
    const float shade = (0.30F + 0.20F * wave + 0.16F * shallow) * sight.light * 1.1F;
    const float sparkle = 0.42F * shine * sight.light;
    return {shade * 0.98F + sparkle, shade * 0.90F + sparkle * 0.98F,
            shade * 0.66F + sparkle * 0.90F + 0.008F};
}

} // namespace Tolvar::Varundo::Simulator
