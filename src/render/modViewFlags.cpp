#include "modViewFlags.h"

void ResetViewFlags()
{
    ViewWire = false;
    ViewGrid = true;
    ViewTextures = true;
    ViewLighting = true;
    ViewBackfaces = false;
    ViewIsolines = false;
    ViewNormals = false;
    ViewCullVerts = true;
    LineAA = true;
    FilterTextures = true;
    PointSize = 5;
    PixelScale = 1;
}
