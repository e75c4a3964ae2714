#include <memory>

#include "modCommands.h"
#include "modPicture.h"

std::vector<std::string> CameraNames()
{
    return {"Perspective", "Orthographic", "Front", "Back", "Left", "Right", "Top", "Bottom"};
}

std::vector<std::string> ViewFlagNames()
{
    return {"wireframe", "grid",    "textures",      "lighting",      "backfaces",
            "isolines",  "normals", "cull-vertices", "anti-aliasing", "filtering"};
}

void AddPictureCommand(CLI::App* program)
{
    auto order = std::make_shared<PictureOrder>();
    CLI::App* command = program->add_subcommand("picture", "Paint a picture of a model, as the window shows it");
    command->footer("Example:\n  bwrt picture beast.mvm beast.png --size 800x600 --camera left --tab editing "
                    "--bone Tail09 --hide grid");
    command->add_option("MODEL", order->Model, "Model file")->required();
    command->add_option("OUT", order->Out, "PNG file to write")->required();
    command->add_option("--size", order->Size, "Width and height in pixels, as 640x480 or 256")->capture_default_str();
    command->add_option("--camera", order->Camera, "Perspective, Orthographic, Front, Back, Left, Right, Top or Bottom")
        ->check(CLI::IsMember(CameraNames(), CLI::ignore_case))
        ->capture_default_str();
    command->add_flag("--fit", order->Fit, "Move the camera so that the model fills the picture");
    command->add_option("--tab", order->Tab, "viewing or editing")
        ->check(CLI::IsMember({"viewing", "editing"}))
        ->capture_default_str();
    command->add_option("--mode", order->Mode, "On the tab editing: normal, shaded or both")
        ->check(CLI::IsMember({"normal", "shaded", "both"}))
        ->capture_default_str();
    command->add_option("--bone", order->Bone, "The active bone: name, alias or number");
    command->add_flag("--on-shadow", order->OnShadow, "Edit the shadow in place of the skin");
    command->add_option("--point-size", order->PointSize, "Size of a vertex in pixels, 1 to 10")
        ->check(CLI::Range(1, 10))
        ->capture_default_str();
    const auto* const flags = "wireframe, grid, textures, lighting, backfaces, isolines, normals, cull-vertices, "
                              "anti-aliasing, filtering; can be given more than once";
    command->add_option("--show", order->Shown, std::string("Show ") + flags)
        ->take_all()
        ->allow_extra_args(false)
        ->check(CLI::IsMember(ViewFlagNames()));
    command->add_option("--hide", order->Hidden, "Do not show one of these")
        ->take_all()
        ->allow_extra_args(false)
        ->check(CLI::IsMember(ViewFlagNames()));
    command->callback([order] { Outcome = PaintPicture(*order); });
}
