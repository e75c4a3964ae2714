#include "modLikeBones.h"

#include <algorithm>
#include <unordered_map>

#include "app/modMath.h"
#include "modCodePage.h"
#include "model/modStrings.h"
#include "modExchangeNames.h"
#include "modFromScene.h"
#include "modRestore.h"

namespace {

/// What is being matched.
struct Matching {
    const ExchangeModel& Model;
    std::vector<std::string> Names{}; ///< of the scene's bones in files
    std::vector<char> IsTaken{};      ///< by bone of the scene
    std::vector<int16_t>* Numbers = nullptr;

    void Take(size_t inFile, size_t bone)
    {
        (*Numbers)[inFile] = static_cast<int16_t>(bone + 1);
        IsTaken[bone] = 1;
    }
};

void MatchNames(Matching* matching)
{
    std::unordered_map<std::string, size_t> byName;
    for (size_t bone = 0; bone < matching->Names.size() && bone < INT16_MAX; ++bone) {
        byName.emplace(matching->Names[bone], bone);
    }
    for (size_t i = 0; i < matching->Model.Bones.size(); ++i) {
        const auto found = byName.find(matching->Model.Bones[i].Name);
        if (found != byName.end() && matching->IsTaken[found->second] == 0) {
            matching->Take(i, found->second);
        }
    }
}

/// Names as formats keep them that know fewer characters, some with the name of the whole skeleton in front.
void MatchPlainNames(Matching* matching)
{
    std::vector<std::string> plain;
    for (const std::string& name : matching->Names) {
        plain.push_back(PlainName(name));
    }
    for (size_t i = 0; i < matching->Model.Bones.size(); ++i) {
        if ((*matching->Numbers)[i] != 0) {
            continue;
        }
        const std::string name = PlainName(matching->Model.Bones[i].Name);
        size_t best = plain.size();
        for (size_t bone = 0; bone < plain.size() && bone < INT16_MAX; ++bone) {
            const bool fits = !plain[bone].empty() && (name == plain[bone] || name.ends_with("_" + plain[bone]));
            if (fits && matching->IsTaken[bone] == 0 &&
                (best == plain.size() || plain[bone].size() > plain[best].size())) {
                best = bone;
            }
        }
        if (best < plain.size()) {
            matching->Take(i, best);
        }
    }
}

/// A bone that was renamed still has its head where it was. One of the same kind comes first.
size_t MatchPlaces(double near, Matching* matching)
{
    size_t renamed = 0;
    for (size_t i = 0; i < matching->Model.Bones.size(); ++i) {
        if ((*matching->Numbers)[i] != 0) {
            continue;
        }
        const ExchangeBone& own = matching->Model.Bones[i];
        const bool isShadow = HoldsAnyCase(own.Name, "$j$");
        size_t best = matching->Names.size();
        double least = 0;
        for (size_t bone = 0; bone < matching->Names.size() && bone < INT16_MAX; ++bone) {
            const double kind = Bones.Items[bone].IsShadow == isShadow ? 0 : near;
            const double apart = VecDistance(Bones.Items[bone].Position, own.Head);
            if (matching->IsTaken[bone] == 0 && apart <= near &&
                (best == matching->Names.size() || apart + kind < least)) {
                best = bone;
                least = apart + kind;
            }
        }
        if (best < matching->Names.size()) {
            matching->Take(i, best);
            ++renamed;
        }
    }
    return renamed;
}

} // namespace

void MatchBones(const ExchangeModel& model, std::vector<int16_t>* numbers, bool* areMoved,
                std::vector<std::string>* notes)
{
    Matching matching{.Model = model, .Names = BoneNamesInFiles(), .IsTaken = {}, .Numbers = numbers};
    matching.IsTaken.assign(matching.Names.size(), 0);
    numbers->assign(model.Bones.size(), 0);
    MatchNames(&matching);
    MatchPlainNames(&matching);
    std::vector<Vec3> heads;
    for (const MvmBone& bone : Bones) {
        heads.push_back(bone.Position);
    }
    const double near = BoneTolerance(heads);
    size_t moved = 0;
    size_t known = 0;
    double farthest = 0;
    for (size_t i = 0; i < model.Bones.size(); ++i) {
        if ((*numbers)[i] != 0) {
            const double apart = VecDistance(Bones[(*numbers)[i]].Position, model.Bones[i].Head);
            ++known;
            moved += apart <= near ? 0 : 1;
            farthest = std::max(farthest, apart);
        }
    }
    const size_t renamed = MatchPlaces(near, &matching);
    *areMoved = moved > 0;
    if (moved > 0) {
        notes->push_back(std::to_string(moved) + " of " + std::to_string(known) +
                         " bones stand elsewhere than in the model, up to " + std::to_string(farthest) +
                         " away: was the armature moved or turned, or the file exported without \"+Y up\"?");
    }
    if (renamed > 0) {
        notes->push_back(std::to_string(renamed) + " bones have other names; their places tell which they are.");
    }
    std::string strange;
    for (size_t i = 0; i < model.Bones.size(); ++i) {
        if ((*numbers)[i] == 0) {
            strange += (strange.empty() ? "\"" : ", \"") + model.Bones[i].Name + "\"";
        }
    }
    if (!strange.empty()) {
        notes->push_back("These bones are none of the model; vertices keep the bones that they had: " + strange + ".");
    }
}
