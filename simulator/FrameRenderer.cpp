#include "FrameRenderer.h"

#include "ControlBackend.h"
#include "SimulatedDevices.h"
#include "SimulatedUnit.h"

#include <QBuffer>
#include <QPainter>

namespace Tolvar::Varundo::Simulator {

namespace {

// The test picture moves slowly by itself: whoever looks at it sees that it is live.
constexpr double driftMetresPerSecond = 0.2;

// A sixth larger than PNG gets at its hardest, in a quarter of the time.
constexpr int pngQuality = 70;

} // namespace

FrameRenderer::FrameRenderer(const SimulatedUnit& unit, const QSize& size)
    : m_unit(unit)
    , m_scene(size)
    , m_overlayPainter(unit.elementTexts(), size)
{
    m_sinceStart.start();
}

QImage FrameRenderer::render() const
{
    const double seconds = static_cast<double>(m_sinceStart.elapsed()) / 1000.0;
    const auto metres = static_cast<double>(m_unit.devices().reel().totalDistance());
    QImage frame = m_scene.render(seconds, metres + seconds * driftMetresPerSecond);
    if (m_unit.controlBackend().overlayVisible()) {
        QPainter painter(&frame);
        m_overlayPainter.paint(painter, m_unit.overlay());
    }
    return frame;
}

QByteArray FrameRenderer::renderPng() const
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    render().save(&buffer, "PNG", pngQuality);
    return png;
}

} // namespace Tolvar::Varundo::Simulator
