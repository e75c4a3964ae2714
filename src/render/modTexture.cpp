#include "render/modTexture.h"

#include <algorithm>
#include <cstddef>
#include <GL/gl.h>
#include <GL/glu.h>
#include <limits>
#include <string_view>
#include <vector>

#include "app/modMisc.h"
#include "app/modMvmDef.h"
#include "app/modStatus.h"
#include "model/modStrings.h"
#include "platform/modCodePage.h"
#include "platform/modDialogs.h"
#include "platform/modFiles.h"
#include "render/modBitmap.h"
#include "render/modOpenGL.h"
#include "render/modViewFlags.h"

namespace {

/// Finds the file of a map: the path as the model gives it, with either separator, then its name in the model's folder,
/// at last in any case of letters. Gives empty text and logs a line when there is none; empty text for an empty name.
std::string FindMap(const std::string& map, const std::string& folder, FolderNames* names)
{
    if (map.empty()) {
        return {};
    }
    std::string asGiven = Utf8FromCodePage(map);
    if (FileExists(asGiven)) {
        return asGiven;
    }
    std::string turned = asGiven;
    std::replace(turned.begin(), turned.end(), '\\', '/');
    if (FileExists(turned)) {
        return turned;
    }
    const std::string name(FileNameOf(turned));
    std::string beside = folder + name;
    if (FileExists(beside)) {
        return beside;
    }
    std::string anyCase;
    if (!name.empty() && FindFileAnyCase(folder, name, names, &anyCase) && FileExists(anyCase)) {
        return anyCase;
    }
    LogLine("Texture \"" + asGiven + "\" not found.");
    return {};
}

int16_t FailTexture(const std::string& colorFile, const std::string& description)
{
    ProgressShow();
    ShowMessage(BoxIcon::Stop, "Runtime error in LoadTexture\n" + description + "\n\"" + colorFile +
                                   "\"\r\nMake sure your textures have power-of-two dimensions!");
    return 0;
}

void SetFilters(GLint minify, GLint magnify)
{
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, minify);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, magnify);
}

/// Hands a picture to OpenGL. False, with nothing left behind, when OpenGL cannot take it.
bool MakeGLTexture(const Bitmap& bitmap, GLuint* texture, std::string* error)
{
    MakeViewCurrent();
    glGenTextures(1, texture);
    glBindTexture(GL_TEXTURE_2D, *texture);
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
    glDeleteTextures(1, texture);
    return false;
}

} // namespace

void LoadTextures(const std::string& path)
{
    SetPanelText("toolhelp", "Loading textures...");
    ProgressBegin(MaterialCount());
    const std::string folder(DirectoryOf(path));
    FolderNames names;
    // Each step can let the window paint or end the load, so nothing of the scene is held across it.
    for (int32_t index = 1; index <= MaterialCount() && !StopRequested; ++index) {
        const std::string colorFile = FindMap(Materials[index].ColorMap, folder, &names);
        const std::string opacityFile = FindMap(Materials[index].OpacityMap, folder, &names);
        if (!colorFile.empty()) {
            const int16_t texture = LoadTexture(colorFile, opacityFile);
            if (index <= MaterialCount()) {
                Materials[index].Texture = texture;
            }
        }
        ProgressStep(index);
    }
    ProgressEnd();
    SetPanelText("toolhelp", "Ready...");
}

int16_t LoadTexture(const std::string& colorFile, const std::string& opacityFile)
{
    if (TextureCount() >= std::numeric_limits<int16_t>::max()) {
        LogLine("Texture \"" + colorFile + "\" is one too many: a model can have 32767 textures.");
        return 0;
    }
    Bitmap bitmap;
    std::string error;
    switch (LoadBitmap(colorFile, opacityFile, &bitmap, &error)) {
    case BitmapResult::Done:
        break;
    case BitmapResult::Refused:
        return 0;
    case BitmapResult::Failed:
        return FailTexture(colorFile, error);
    }
    // Without a context the entry still counts: numbers and reports stay the same, there is just no picture.
    MvmTexture texture;
    texture.HasOpacity = !opacityFile.empty();
    if (GLContext && !MakeGLTexture(bitmap, &texture.GLTexture, &error)) {
        return FailTexture(colorFile, error);
    }
    Textures.Add(texture);
    return static_cast<int16_t>(TextureCount());
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

bool IsValidTexture(int32_t index)
{
    return Textures.Has(index);
}

void FreeTextures()
{
    if (GLContext && TextureCount() > 0) {
        MakeViewCurrent();
        std::vector<GLuint> names;
        names.reserve(Textures.Items.size());
        for (const MvmTexture& texture : Textures) {
            names.push_back(texture.GLTexture);
        }
        glDeleteTextures(static_cast<GLsizei>(names.size()), names.data());
    }
    Textures.Clear();
}
