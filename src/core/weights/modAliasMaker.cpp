#include "weights/modAliasMaker.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "app/modMvmDef.h"
#include "model/modStrings.h"
#include "weights/modBoneNames.h"
#include "weights/modMirror.h"
#include "weights/modSkeleton.h"

namespace {

/// Whether a text can be a field: nothing in an alias file is quoted.
bool CanStand(std::string_view text)
{
    return !text.empty() && text.find_first_of(";\r\n") == std::string_view::npos;
}

/// The bones of the kind that get a line, in order: of several with one name the last.
std::vector<int16_t> BonesToWrite(bool shadow)
{
    std::map<std::string_view, int16_t> byName;
    const int32_t count = std::min<int32_t>(BoneCount(), INT16_MAX);
    for (int32_t b = 1; b <= count; ++b) {
        if (Bones[b].IsShadow == shadow && CanStand(Bones[b].Name)) {
            byName[Bones[b].Name] = static_cast<int16_t>(b);
        }
    }
    std::vector<int16_t> bones;
    bones.reserve(byName.size());
    for (const auto& [name, bone] : byName) {
        bones.push_back(bone);
    }
    std::sort(bones.begin(), bones.end());
    return bones;
}

const char* SideWord(BodySide side)
{
    return side == BodySide::Left ? "Left" : side == BodySide::Right ? "Right" : "";
}

void AddWord(const std::string& word, std::string* label)
{
    if (!label->empty() && !word.empty()) {
        *label += ' ';
    }
    *label += word;
}

/// A word of a name with a capital in front, "UPPER" and "upper" as "Upper".
std::string Capital(const std::string& word)
{
    std::string text = word.size() > 2 && word.find_first_of("abcdefghijklmnopqrstuvwxyz") == std::string::npos
                           ? LowerCase(word)
                           : word;
    if (text[0] >= 'a' && text[0] <= 'z') {
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    }
    return text;
}

std::string LabelOf(const BoneWords& name, bool shadow)
{
    std::string label = SideWord(name.Side);
    AddWord(shadow ? "Shadow" : "", &label);
    for (const std::string& word : name.Words) {
        AddWord(Capital(word), &label);
    }
    AddWord(name.Number >= 0 ? std::to_string(name.Number) : "", &label);
    return label;
}

/// The number of links up to the root, at most the number of bones.
size_t DepthOf(int16_t bone, const std::vector<int16_t>& links)
{
    size_t depth = 0;
    while (links[static_cast<size_t>(bone)] != 0 && depth < links.size()) {
        bone = links[static_cast<size_t>(bone)];
        ++depth;
    }
    return depth;
}

using Labels = std::map<int16_t, std::string>;

/// The bones of each label that several have.
std::map<std::string, std::vector<int16_t>> Collisions(const Labels& labels)
{
    std::map<std::string, std::vector<int16_t>> bones;
    for (const auto& [bone, label] : labels) {
        bones[label].push_back(bone);
    }
    std::erase_if(bones, [](const auto& entry) { return entry.second.size() < 2; });
    return bones;
}

/// On which side the names have the left: true for higher X.
bool LeftIsHigh(const std::vector<BoneWords>& names)
{
    double sum = 0;
    for (size_t b = 1; b < names.size(); ++b) {
        const double x = Bones[static_cast<int32_t>(b)].Position.X;
        if (std::isfinite(x) && names[b].Side != BodySide::Middle) {
            sum += names[b].Side == BodySide::Left ? x : -x;
        }
    }
    return sum > 0;
}

/// Gives bones whose labels collide their side by place, and numbers them along their links where that is not enough.
void MakeUnique(const std::vector<BoneWords>& names, const std::vector<int16_t>& links, Labels* labels)
{
    const bool leftIsHigh = LeftIsHigh(names);
    for (const auto& [label, bones] : Collisions(*labels)) {
        for (const int16_t bone : bones) {
            const float x = Bones[bone].Position.X;
            if (names[static_cast<size_t>(bone)].Side == BodySide::Middle && std::fabs(x) >= MirrorBoneThreshold) {
                (*labels)[bone] = SideWord((x > 0) == leftIsHigh ? BodySide::Left : BodySide::Right);
                AddWord(label, &(*labels)[bone]);
            }
        }
    }
    std::set<std::string> taken;
    for (const auto& [bone, label] : *labels) {
        taken.insert(label);
    }
    for (const auto& [label, bones] : Collisions(*labels)) {
        std::vector<std::pair<size_t, int16_t>> order;
        for (const int16_t bone : bones) {
            order.emplace_back(DepthOf(bone, links), bone);
        }
        std::sort(order.begin(), order.end());
        int32_t number = 0;
        for (const auto& [depth, bone] : order) {
            std::string& own = (*labels)[bone];
            do {
                own = label;
                AddWord(std::to_string(++number), &own);
            } while (!taken.insert(own).second);
        }
    }
}

std::string NumberText(const std::string& name)
{
    const double number = JointNumber(name);
    char text[8];
    std::snprintf(text, sizeof text, "%02d", number >= 0 && number < 100 ? static_cast<int>(number) : 0);
    return text;
}

} // namespace

std::string MakeAliasText(int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return "";
    }
    const bool shadow = mesh == ShadowMesh && mesh != SkinMesh;
    const std::vector<int16_t> bones = BonesToWrite(shadow);
    const std::vector<BoneWords> names = ReadBoneNames(shadow);
    const std::vector<int16_t> links = LinksOf(shadow);
    const std::vector<int16_t> partners = MirrorPartners(shadow, MirrorBoneThreshold);
    Labels labels;
    for (const int16_t bone : bones) {
        const std::string made = LabelOf(names[static_cast<size_t>(bone)], shadow);
        labels[bone] = !Bones[bone].Alias.empty() ? Bones[bone].Alias : !made.empty() ? made : Bones[bone].Name;
    }
    MakeUnique(names, links, &labels);
    const auto nameOf = [](int16_t bone) {
        return bone != 0 && CanStand(Bones[bone].Name) ? Bones[bone].Name : std::string();
    };
    std::string text;
    for (const int16_t bone : bones) {
        const auto b = static_cast<size_t>(bone);
        text += Bones[bone].Name + ";" + labels[bone] + ";" + nameOf(links[b]) + ";" + nameOf(partners[b]) + ";" +
                NumberText(Bones[bone].Name) + "\r\n";
    }
    return text;
}
