#include "modNewBones.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>

#include "checks/modCheckModel.h"
#include "model/modLostAssignments.h"
#include "model/modMvmBind.h"
#include "model/modStrings.h"
#include "modExchangeNames.h"

namespace {

constexpr int jointNumbers = 100;

/// The joint number that a name ends in, when a bone can be found by it; else -1.
int OwnNumber(const std::string& name)
{
    const double number = EndsInNumber(name) ? JointNumber(name) : -1;
    const bool isWhole = number >= 0 && number < jointNumbers && number == std::floor(number);
    return isWhole && !std::signbit(number) ? static_cast<int>(number) : -1;
}

bool IsShadowName(const std::string& name)
{
    return HoldsAnyCase(name, "$j$");
}

std::string WithNumber(const std::string& name, int number)
{
    const bool endsInDigit = !name.empty() && name.back() >= '0' && name.back() <= '9';
    return name + (endsInDigit ? "_" : "") + (number < 10 ? "0" : "") + std::to_string(number);
}

} // namespace

bool AddNewBones(const ExchangeModel& model, std::vector<int16_t>* numbers, std::vector<std::string>* notes,
                 std::string* error)
{
    std::array<std::map<int, size_t>, 2> owners; // by kind and number
    std::array<size_t, 2> counts{};
    std::vector<std::string> names;
    for (const ExchangeBone& bone : model.Bones) {
        const std::string& name = names.emplace_back(NameForModel(bone.Name));
        const size_t kind = IsShadowName(name) ? 1 : 0;
        ++counts[kind];
        ++owners[kind][OwnNumber(name)];
    }
    for (const size_t kind : {size_t{0}, size_t{1}}) {
        if (counts[kind] > jointNumbers) {
            *error = "It has " + std::to_string(counts[kind]) + (kind == 0 ? " bones" : " shadow bones") +
                     "; a model can tell " + std::to_string(jointNumbers) + " of them apart.";
            return false;
        }
    }
    std::array<std::set<int>, 2> taken;
    std::vector<size_t> without;
    for (size_t bone = 0; bone < names.size(); ++bone) {
        const size_t kind = IsShadowName(names[bone]) ? 1 : 0;
        const int number = OwnNumber(names[bone]);
        if (number < 0 || owners[kind][number] > 1) {
            without.push_back(bone);
        } else {
            taken[kind].insert(number);
        }
    }
    size_t changed = 0;
    for (const size_t bone : without) {
        std::set<int>& own = taken[IsShadowName(names[bone]) ? 1 : 0];
        int number = 1; // 0 comes last: it is also what a vertex without a number has
        while (own.contains(number % jointNumbers)) {
            ++number;
        }
        own.insert(number % jointNumbers);
        names[bone] = WithNumber(names[bone], number % jointNumbers);
    }
    for (size_t bone = 0; bone < names.size(); ++bone) {
        changed += NameForModel(model.Bones[bone].Name) != model.Bones[bone].Name ? 1 : 0;
        MvmBone& own = Bones.Add();
        own.Name = names[bone];
        own.Position = model.Bones[bone].Head;
        numbers->push_back(static_cast<int16_t>(BoneCount()));
    }
    MarkShadowBones();
    if (!without.empty()) {
        notes->push_back(Counted(static_cast<int64_t>(without.size()), "bone was", "bones were") +
                         " given joint numbers, which now end their names.");
    }
    if (changed > 0) {
        notes->push_back("The names of " + Counted(static_cast<int64_t>(changed), "bone", "bones") +
                         " hold what a model cannot keep; \"_\" or "
                         "\"?\" stands for it.");
    }
    return true;
}
