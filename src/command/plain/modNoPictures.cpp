#include <cstdint>
#include <string>

#include "app/modFrontEnd.h"

// Pictures in a program without OpenGL: they count as taken.

int32_t LargestTextureSide()
{
    return INT32_MAX;
}

bool MakeGLTexture(const Bitmap& /*bitmap*/, uint32_t* name, std::string* /*error*/)
{
    *name = 0;
    return true;
}

void DeleteGLTexture(uint32_t /*name*/) {}
