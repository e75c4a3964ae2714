#include "modPicture.h"

#include "modFiles.h"
#include "modProcess.h"

ExitCode PaintPicture(const PictureOrder& order)
{
    constexpr int notFound = 127;
    const std::string painter = ProgramFile(ProgramFolder() + "/bwrt-picture");
    if (!IsPlainFile(painter)) {
        FileSpokenOf = order.Model;
        Tell("This build of bwrt paints no pictures: there is no \"" + painter + "\".");
        return ExitCode::Failed;
    }
    const int code = RunProgram(painter, ProgramArguments);
    if (code >= 0 && code < notFound) {
        return static_cast<ExitCode>(code);
    }
    FileSpokenOf = order.Model;
    Tell(code == notFound
             ? "A picture needs OpenGL, which this machine lacks: its libraries libOpenGL, libGLU and libEGL "
               "(on Debian and Ubuntu the packages libopengl0, libglu1-mesa, libegl1 and libgl1-mesa-dri)."
             : "The painter \"" + painter + "\" could not do its work.");
    return ExitCode::Failed;
}
