#include "app/modFrontEnd.h"
#include "support/scripted.h"

// Pictures where there is no OpenGL.

int32_t LargestTextureSide()
{
    return scripted::LargestTextureSide;
}

bool MakeGLTexture(const Bitmap&, uint32_t* name, std::string*)
{
    *name = 0;
    return true;
}

void DeleteGLTexture(uint32_t name)
{
    scripted::DeletedTextures.push_back(name);
}
