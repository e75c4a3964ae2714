#include <filesystem>

#include <QImage>
#include <QOpenGLWidget>

#include "support/run_command.h"
#include "support/ui_window.h"
#include "weights/modEdit.h"

// The command line paints, without a display, what the window shows.

TEST(Picture, HasThePixelsOfTheWindow)
{
    const std::string model = SOURCE_FOLDER "/samples/vorrel/vorrel.mvm";
    UiWindow window;
    window->OpenFile(model);
    const auto* view = qobject_cast<QOpenGLWidget*>(window->picMain);
    ASSERT_NE(view, nullptr);
    // The paths of the textures are found beside the model, so that it stays where it is.
    struct Case {
        const char* Words;
        std::vector<const char*> Triggers; ///< on top of those before
    };
    const Case cases[] = {
        {"", {}},
        {" --camera left --hide textures", {"mnuViewCameraLeft", "mnuViewTextures"}},
        {" --camera Back --hide textures --hide grid --show isolines --show normals --show backfaces",
         {"mnuViewCameraBack", "mnuViewGrid", "mnuViewIsolines", "mnuViewNormals", "mnuViewBackfaces"}},
        {" --camera Back --hide textures --hide grid --show wireframe --show normals --show backfaces --hide lighting",
         {"mnuViewIsolines", "mnuViewWire", "mnuViewLighting"}},
        {" --camera perspective --tab editing --bone Tail11",
         {"mnuViewCameraPerspective", "mnuViewTextures", "mnuViewGrid", "mnuViewNormals", "mnuViewBackfaces",
          "mnuViewSolid", "mnuViewLighting", "tab 1"}},
        {" --tab editing --on-shadow --bone 'Shadow Neck' --mode shaded --hide cull-vertices --hide anti-aliasing "
         "--hide filtering --point-size 3",
         {"mnuViewCullVerts", "mnuOptionsLineAA", "mnuOptionFilterTextures"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Words);
        for (const char* trigger : c.Triggers) {
            window.Do(trigger);
        }
        const bool shadow = std::string(c.Words).find("--on-shadow") != std::string::npos;
        if (std::string(c.Words).find("--bone") != std::string::npos) {
            window->ShowTarget(shadow ? 1 : 0, 0);
            for (int16_t bone = 1; bone <= static_cast<int16_t>(BoneCount()); ++bone) {
                if (Bones[bone].Name == (shadow ? "$j$Neck03" : "Tail11")) {
                    SetActiveBone(bone);
                }
            }
        }
        if (shadow) {
            DisplayMode = 1;
            PointSize = 3;
        }
        const QImage shown = qobject_cast<QOpenGLWidget*>(window->picMain)->grabFramebuffer();
        const std::string size = std::to_string(shown.width()) + "x" + std::to_string(shown.height());
        const Outcome outcome = RunCommand(window.Folder, "picture '" + model + "' out.png --size " + size + c.Words);
        ASSERT_EQ(outcome.Code, 0) << outcome.Errors;
        const QImage painted(QString::fromStdString(window.Folder / "out.png"));
        ASSERT_EQ(painted.size(), shown.size());
        int different = 0;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                different += painted.pixel(x, y) != (shown.pixel(x, y) | 0xFF000000U) ? 1 : 0;
            }
        }
        EXPECT_EQ(different, 0);
    }
    window.Do("mnuFileClose", {Question + "Yes"});
}
