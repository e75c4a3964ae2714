#include "modGLTexture.h"

#include <limits>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "model/modBitmap.h"
#include "modGL.h"
#include "modOpenGL.h"
#include "modViewFlags.h"

namespace {

void SetFilters(GLint minify, GLint magnify)
{
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, minify);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, magnify);
}

} // namespace

int32_t LargestTextureSide()
{
    return GLContext ? MaxTextureSide : std::numeric_limits<int32_t>::max();
}

bool MakeGLTexture(const Bitmap& bitmap, uint32_t* name, std::string* error)
{
    *name = 0;
    if (!GLContext) {
        return true;
    }
    MakeViewCurrent();
    glGenTextures(1, name);
    glBindTexture(GL_TEXTURE_2D, *name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    SetFilters(GL_LINEAR_MIPMAP_NEAREST, GL_LINEAR);
    const GLint result = gluBuild2DMipmaps(GL_TEXTURE_2D, 4, bitmap.Width, bitmap.Height, GL_RGBA, GL_UNSIGNED_BYTE,
                                           bitmap.Pixels.data());
    if (result == 0) {
        return true;
    }
    const GLubyte* const words = gluErrorString(static_cast<GLenum>(result));
    *error = words != nullptr ? reinterpret_cast<const char*>(words) : "OpenGL refused the picture.";
    glDeleteTextures(1, name);
    return false;
}

void DeleteGLTexture(uint32_t name)
{
    if (GLContext) {
        MakeViewCurrent();
        glDeleteTextures(1, &name);
    }
}

void BindTexture(int16_t index)
{
    if (!IsValidTexture(index) || !ViewTextures) {
        glDisable(GL_TEXTURE_2D);
        glDisable(GL_ALPHA_TEST);
        return;
    }
    const MvmTexture& texture = Textures[index];
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture.GLTexture);
    if (FilterTextures) {
        SetFilters(GL_LINEAR_MIPMAP_NEAREST, GL_LINEAR);
    } else {
        SetFilters(GL_NEAREST, GL_NEAREST);
    }
    if (texture.HasOpacity) {
        glEnable(GL_ALPHA_TEST);
    } else {
        glDisable(GL_ALPHA_TEST);
    }
}
