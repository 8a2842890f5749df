#ifndef POSITION3D_H
#define POSITION3D_H

/// A point in space, as the camera position sensor reports it.
struct Position3D
{
    double x;
    double y;
    double z;
};

#endif
