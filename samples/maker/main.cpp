// Makes the sample creature: the Vorrel with its textures, its aliases, the presets and the tutorial's files. It takes
// the root of the source tree and writes into it.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>

#include "paint.h"
#include "shells.h"
#include "surface.h"
#include "unwrap.h"
#include "write.h"

namespace {

constexpr double size = 0.86;              // what the starting camera shows whole
constexpr double closeTogether = 0.009995; // the tolerance that mirroring starts with, for rounded places
constexpr int noMaterial = -1;

const std::vector<Material> materials{{"Hide", "Hide.bmp", ""},
                                      {"Eye", "Eye.bmp", ""},
                                      {"Horn", "Horn.bmp", ""},
                                      {"Claw", "", ""},
                                      {"Mane", "Mane.bmp", "ManeOpacity.bmp"}};

struct Creature {
    Skeleton skeleton;
    std::vector<Mesh> meshes;
    std::vector<Placement> placements;
    Picture hide{hideWidth, hideHeight};
};

// From the space that the creature is made in to that of its skin, where it stands on the floor.
V3 Standing(V3 at)
{
    return {at.x * size, (at.y - sole) * size, at.z * size + 0.04};
}

// Stands a half up, completes it, rounds it, and makes sure that it is sound.
void Finish(const Skeleton& skeleton, int open, Mesh* mesh)
{
    for (V3& at : mesh->v) {
        at = Standing(at);
    }
    RoundMesh(mesh);
    constexpr int patience = 5; // rounds in which vertices of one shell stay where they are
    bool settled = false;
    for (int round = 0; !settled; ++round) {
        const bool pieces = SettlePieces(mesh);
        const bool parted = PartClose(closeTogether, round >= patience, eyeMaterial, mesh);
        RoundMesh(mesh);
        const bool close = SettleClose(closeTogether, mesh);
        settled = !pieces && !parted && !close;
        if (round == 4 * patience) {
            Fail("the bones do not settle");
        }
    }
    MirrorHalf(skeleton, mesh);
    CheckMesh(*mesh, open);
}

Mesh MakeSkin(const Skeleton& skeleton, Picture* hide)
{
    const Body body = MakeBody(skeleton);
    Mesh skin = HalfSurface(body, skeleton, {0.0205, 0.0235, 0.027, 0.0205, 0.0205});
    Unwrapping unwrapping = UnwrapBody(skeleton, &skin);
    Mesh ear = Ear(skeleton);
    UnwrapEar(&ear, &unwrapping);
    Append(ear, &skin);
    *hide = PaintHide(skin, unwrapping, skeleton);
    const int eye = FindBone(skeleton, "EyeR");
    Append(Eye(skeleton[static_cast<size_t>(eye)].at, {0.6, 0.1, -0.79}, 0.027, eye), &skin);
    Append(Horn(skeleton), &skin);
    Append(Claws(skeleton), &skin);
    Append(Mane(body, skeleton), &skin);
    skin.name = "Vorrel";
    skin.skin = true;
    for (const Material& material : materials) {
        skin.materials.push_back(material.name);
    }
    Finish(skeleton, maneMaterial, &skin);
    return skin;
}

// A plain mesh of a body: one material, the picture laid on from the side.
Mesh MakePlain(const Body& body, const Skeleton& skeleton, const std::string& name, double step)
{
    Mesh mesh = HalfSurface(body, skeleton, {step, step, step, step, step});
    for (const V3& at : mesh.v) {
        mesh.t.push_back({0.5 + 0.5 * at.z, 0.05 + 0.25 * (at.y + 0.5)});
    }
    for (Face& face : mesh.f) {
        face.t = face.v;
    }
    // So few faces follow the surface only roughly: their own slopes light them better than the surface's.
    SmoothNormals(&mesh);
    mesh.name = name;
    mesh.materials = {"Hide"};
    Finish(skeleton, noMaterial, &mesh);
    return mesh;
}

Creature MakeCreature()
{
    Creature creature;
    creature.skeleton = MakeSkeleton();
    const Skeleton& skeleton = creature.skeleton;
    creature.meshes.push_back(MakeSkin(skeleton, &creature.hide));
    creature.meshes.push_back(MakePlain(MakeShadowBody(skeleton), skeleton, "$shadowVorrel", 0.09));
    creature.meshes.back().skin = true;
    const Body body = MakeBody(skeleton);
    const auto has = [&](int bone, const char* stem) {
        return skeleton[static_cast<size_t>(bone)].name.rfind(stem, 0) == 0;
    };
    const auto isHead = [&](int bone) { return has(bone, "Head") || has(bone, "Jaw"); };
    const auto isTail = [&](int bone) { return has(bone, "Tail"); };
    creature.meshes.push_back(MakePlain(PartOf(body, isHead), skeleton, "$headVorrel", 0.04));
    creature.meshes.push_back(MakePlain(PartOf(body, [&](int bone) { return !isHead(bone) && !isTail(bone); }),
                                        skeleton, "$bodyVorrel", 0.035));
    creature.meshes.push_back(MakePlain(PartOf(body, isTail), skeleton, "$tailVorrel", 0.03));
    for (Joint& joint : creature.skeleton) {
        joint.at = Standing(joint.at);
        joint.at = {Rounded(joint.at.x), Rounded(joint.at.y), Rounded(joint.at.z)};
    }
    creature.placements = {{"Vorrel", {0, 0.25, 0.25}, 2},
                           {"$shadowVorrel", {0, 0.25, 0.25}, 2},
                           {"$headVorrel", {0, 1.5, -2.5}, 1.5},
                           {"$bodyVorrel", {0, 1.25, 3.5}, 1.5},
                           {"$tailVorrel", {0, 0.75, 5.5}, 1.5}};
    return creature;
}

std::string ModelText(const Creature& creature, bool withBones)
{
    std::string text = FileInfoText();
    for (const Material& material : materials) {
        text += MaterialText(material);
    }
    text += withBones ? BoneText(creature.skeleton, creature.placements[0]) : "";
    for (const Mesh& mesh : creature.meshes) {
        text += MeshText(mesh, creature.skeleton);
    }
    for (const Placement& placement : creature.placements) {
        text += InstanceText(placement);
    }
    return text;
}

// Takes the bones of all vertices beyond `from` in X.
Creature Unassigned(Creature creature, double from)
{
    for (Mesh& mesh : creature.meshes) {
        for (size_t i = 0; mesh.skin && i < mesh.v.size(); ++i) {
            mesh.bone[i] = mesh.v[i].x > from ? -1 : mesh.bone[i];
        }
    }
    return creature;
}

void WriteTextures(const Creature& creature, const std::string& folder)
{
    WriteFile(folder + "Hide.bmp", TrueColourBitmap(creature.hide));
    WriteFile(folder + "Eye.bmp", PaletteBitmap(PaintEye()));
    WriteFile(folder + "Horn.bmp", PaletteBitmap(PaintHorn()));
    WriteFile(folder + "Mane.bmp", TrueColourBitmap(PaintMane()));
    WriteFile(folder + "ManeOpacity.bmp", GreyBitmap(PaintStrands()));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        Fail("give the root of the source tree");
    }
    const std::string root = argv[1] + std::string("/");
    for (const char* folder : {"samples/vorrel", "samples/tutorial", "assets/alias", "assets/presets"}) {
        std::filesystem::create_directories(root + folder);
    }
    const Creature creature = MakeCreature();
    const Placement& place = creature.placements[0];
    WriteFile(root + "samples/vorrel/vorrel.mvm", ModelText(creature, true));
    WriteTextures(creature, root + "samples/vorrel/");
    WriteFile(root + "samples/tutorial/vorrel-half.mvm", ModelText(Unassigned(creature, 0), true));
    WriteFile(root + "samples/tutorial/vorrel-skin.mvm",
              ModelText(Unassigned(creature, -std::numeric_limits<double>::infinity()), false));
    WriteTextures(creature, root + "samples/tutorial/");
    WriteFile(root + "assets/alias/Vorrel.alias", AliasText(creature.skeleton, false));
    WriteFile(root + "assets/alias/$shadowVorrel.alias", AliasText(creature.skeleton, true));
    WriteFile(root + "assets/presets/Vorrel.preset", FileInfoText() + BoneText(creature.skeleton, place));
    for (const Mesh& mesh : creature.meshes) {
        std::printf("%s: %zu vertices, %zu faces\n", mesh.name.c_str(), mesh.v.size(), mesh.f.size());
    }
    return 0;
}
