#include "SurfaceNoise.h"

namespace Tolvar::Varundo::Simulator {

namespace {

float mixed(float a, float b, float share)
{
    return a + (b - a) * share;
}

float eased(float share)
{
    return share * share * (3.0F - 2.0F * share);
}

/// std::floor() is a call into a library; this is the innermost loop of the picture.
int floored(float value)
{
    const int cut = static_cast<int>(value);
    return static_cast<float>(cut) > value ? cut - 1 : cut;
}

int wrapped(int x, int period)
{
    return x >= period ? x - period : x;
}

} // namespace

float SurfaceNoise::atPoint(int x, int y)
{
    quint32 hash = static_cast<quint32>(x) * 0x8DA6B343U ^ static_cast<quint32>(y) * 0xD8163841U;
    hash = (hash ^ (hash >> 15)) * 0x2C1B3C6DU;
    hash = (hash ^ (hash >> 12)) * 0x297A2D39U;
    hash ^= hash >> 15;
    return static_cast<float>(hash & 0xFFFFU) / 65535.0F;
}

float SurfaceNoise::smooth(float x, float y, int period)
{
    const int left = floored(x);
    const int top = floored(y);
    const int x0 = wrapped(left, period);
    const int x1 = wrapped(left + 1, period);
    const float across = eased(x - static_cast<float>(left));
    const float upper = mixed(atPoint(x0, top), atPoint(x1, top), across);
    const float lower = mixed(atPoint(x0, top + 1), atPoint(x1, top + 1), across);
    return mixed(upper, lower, eased(y - static_cast<float>(top)));
}

float SurfaceNoise::rough(float x, float y, int period)
{
    return 0.5F * smooth(x, y, period) + 0.3F * smooth(x * 3.0F, y * 3.0F, period * 3) +
           0.2F * smooth(x * 9.0F, y * 9.0F, period * 9);
}

} // namespace Tolvar::Varundo::Simulator
