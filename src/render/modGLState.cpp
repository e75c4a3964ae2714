#include "modGLState.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "modGL.h"
#include "modOpenGL.h"
#include "modViewFlags.h"

void SetBaseState()
{
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_NORMALIZE);
    glPolygonOffset(1.0F, 1.0F);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glLineStipple(std::max(1, static_cast<int>(std::lround(PixelScale))), 0xAAAA);
    glAlphaFunc(GL_GREATER, AlphaReference);
    glClearColor(0.5F, 0.5F, 0.5F, 0.0F);

    glViewport(0, 0, ViewWidth, ViewHeight);
    glMatrixMode(GL_MODELVIEW);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_TRUE);
    glDepthFunc(GL_LESS);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glPointSize(1.0F);
    glLineWidth(PixelScale);
    for (const GLenum off :
         std::initializer_list<GLenum>{GL_BLEND, GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_LINE_STIPPLE, GL_LINE_SMOOTH,
                                       GL_POINT_SMOOTH, GL_ALPHA_TEST, GL_TEXTURE_2D, GL_LIGHTING}) {
        glDisable(off);
    }
}

void LowerAlphaReference()
{
    AlphaReference = 0.01F;
    glAlphaFunc(GL_GREATER, AlphaReference);
}
