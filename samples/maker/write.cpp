#include "write.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <string_view>

namespace {

const std::string end = "\r\n";

// At most five decimals; with the sizes of a creature that is never more than seven digits.
std::string Number(double value)
{
    long long steps = std::llround(std::fabs(value) * 1e5);
    std::string text = value < 0 && steps != 0 ? "-" : "";
    text += std::to_string(steps / 100000);
    steps %= 100000;
    if (steps != 0) {
        std::string decimals = std::to_string(100000 + steps).substr(1);
        decimals.erase(decimals.find_last_not_of('0') + 1);
        text.append(".").append(decimals);
    }
    return text;
}

// Joined piece by piece: the compiler's optimiser sees overlaps in chains of `+` that begin with a literal.
std::string Join(std::initializer_list<std::string_view> pieces)
{
    std::string text;
    for (const std::string_view piece : pieces) {
        text.append(piece);
    }
    return text;
}

// A point in the axes of the file.
std::string Triple(V3 a)
{
    return Join({"(", Number(a.x), ",", Number(-a.z), ",", Number(a.y), ")"});
}

std::string Numbers(const std::array<int, 3>& a)
{
    return Join({"(", std::to_string(a[0] + 1), ",", std::to_string(a[1] + 1), ",", std::to_string(a[2] + 1), ")"});
}

std::string Quoted(const std::string& text)
{
    return Join({"\"", text, "\""});
}

std::string Open(const std::string& header)
{
    return Join({header, end, "{", end});
}

std::string Close()
{
    return Join({"}", end, end});
}

std::string Line(const std::string& key, const std::string& value)
{
    return Join({" ", key, " = ", value, end});
}

} // namespace

std::string FileInfoText()
{
    return Open("fileinfo") + Line("formatversion", "1.0.2") + Close();
}

std::string MaterialText(const Material& material)
{
    std::string text = Open("material " + Quoted(material.name));
    text += material.colorMap.empty() ? "" : Line("colormap", Quoted(material.colorMap));
    text += material.opacityMap.empty() ? "" : Line("opacitymap", Quoted(material.opacityMap));
    return text + Close();
}

std::string BoneText(const Skeleton& skeleton, const Placement& skin)
{
    std::string text;
    for (const Joint& joint : skeleton) {
        text += Open("bone " + Quoted(joint.name)) + Line("position", Triple(joint.at * skin.scale + skin.position)) +
                Line("rotation", Triple({})) + joint.extra + (joint.extra.empty() ? "" : end) + Close();
    }
    return text;
}

std::string MeshText(const Mesh& mesh, const Skeleton& skeleton)
{
    std::string text = Open((mesh.skin ? "skin " : "mesh ") + Quoted(mesh.name));
    for (const std::string& material : mesh.materials) {
        text += Line("m", Quoted(material));
    }
    for (size_t i = 0; i < mesh.v.size(); ++i) {
        std::string joint;
        if (mesh.skin) {
            const int bone = mesh.bone[i];
            const std::string name = bone < 0 ? "" : skeleton[static_cast<size_t>(bone)].name;
            joint = bone < 0 ? ",-1" : Join({",", std::to_string(std::atoi(name.substr(name.size() - 2).c_str()))});
        }
        text += Line("v", Triple(mesh.v[i]) + joint);
    }
    for (const V2& t : mesh.t) {
        text += Line("t", Join({"(", Number(t.u), ",", Number(t.v), ")"}));
    }
    for (const V3& n : mesh.n) {
        text += Line("n", Triple(n));
    }
    for (const Face& face : mesh.f) {
        text += Line("f", Numbers(face.v) + "," + Numbers(face.t) + "," + Numbers(face.n) + "," +
                              std::to_string(face.material + 1));
    }
    return text + Close();
}

std::string InstanceText(const Placement& placement)
{
    return Open("instance " + Quoted(placement.mesh)) + Line("mesh", Quoted(placement.mesh)) +
           Line("position", Triple(placement.position)) + Line("rotation", Triple({})) +
           Line("scale", Number(placement.scale)) + Close();
}

std::string AliasText(const Skeleton& skeleton, bool shadow)
{
    std::string text;
    for (const Joint& joint : skeleton) {
        if (joint.shadow == shadow) {
            const std::string link = joint.parent < 0 ? "" : skeleton[static_cast<size_t>(joint.parent)].name;
            const std::string mirror = skeleton[static_cast<size_t>(joint.partner)].name;
            text += joint.name + ";" + joint.label + ";" + link + ";" + mirror + ";" +
                    joint.name.substr(joint.name.size() - 2) + end;
        }
    }
    return text;
}

void WriteFile(const std::string& path, const std::string& bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        Fail("cannot write " + path);
    }
}
