#ifndef TOLVAR_VARUNDO_SIMULATOR_PIPESCENE_H
#define TOLVAR_VARUNDO_SIMULATOR_PIPESCENE_H

#include <QImage>
#include <QSize>
#include <QVector>

namespace Tolvar::Varundo::Simulator {

/// The camera's picture: a look along a concrete sewer pipe with its joints, a lateral now and then, dirt,
/// and some water on the ground, in the light of the camera. Computed pixel by pixel, and the same for the
/// same moment and place.
///
/// Any thread, one at a time; owned by the FrameRenderer. What depends on the size alone is computed once.
class PipeScene
{
public:
    static constexpr double JointDistance = 1.0; ///< metres, the length of a pipe

    explicit PipeScene(const QSize& size);

    /// The picture after so many seconds, so many metres into the pipe.
    QImage render(double seconds, double metres) const;

private:
    struct Sight ///< where the ray of one pixel ends
    {
        float depth;  ///< metres in front of the camera
        float across; ///< on the wall: parts of the circumference, 0 to 1 from the ground; on water: metres
        float light;  ///< of the camera, 0 to 1
        bool onWater;
    };
    struct Colour
    {
        float red;
        float green;
        float blue;
    };

    Sight sightOf(double x, double y) const;
    Colour wall(const Sight& sight, float place) const;
    Colour water(const Sight& sight, float place, float seconds) const;

    QSize m_size;
    QVector<Sight> m_sights; // row by row
};

} // namespace Tolvar::Varundo::Simulator

#endif
