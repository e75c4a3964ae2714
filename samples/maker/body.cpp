#include "body.h"

#include <array>

#include "mesh.h"

namespace {

std::string TwoDigits(size_t number)
{
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

// Collects joints of one kind; numbers run on within the kind.
struct Builder {
    Skeleton* skeleton;
    bool shadow;
    size_t number = 0;

    int Add(const std::string& stem, const std::string& label, V3 at, int parent)
    {
        ++number;
        Joint joint;
        joint.name = (shadow ? "$j$" : "") + stem + TwoDigits(number);
        joint.label = label;
        joint.at = {Rounded(at.x), Rounded(at.y), Rounded(at.z)};
        joint.parent = parent;
        joint.partner = static_cast<int>(skeleton->size());
        joint.shadow = shadow;
        skeleton->push_back(joint);
        return joint.partner;
    }
};

struct Link {
    const char* stem;
    const char* label;
    V3 at;
};

// A chain of joints on both sides: all of the left, then all of the right, as partners of each other.
void AddLimb(Builder* builder, const std::vector<Link>& links, int root)
{
    std::vector<int> left;
    for (const bool isRight : {false, true}) {
        int parent = root;
        for (size_t i = 0; i < links.size(); ++i) {
            const V3 at{isRight ? links[i].at.x : -links[i].at.x, links[i].at.y, links[i].at.z};
            parent = builder->Add(links[i].stem + std::string(isRight ? "R" : "L"),
                                  std::string(isRight ? "Right " : "Left ") + links[i].label, at, parent);
            if (!isRight) {
                left.push_back(parent);
                continue;
            }
            Skeleton& skeleton = *builder->skeleton;
            skeleton[static_cast<size_t>(parent)].partner = left[i];
            skeleton[static_cast<size_t>(left[i])].partner = parent;
        }
    }
}

} // namespace

Skeleton MakeSkeleton(const BodyPlan& plan)
{
    const auto down = [&](double y) { return y < 0 ? y * plan.legs : y; };
    const auto along = [&](double z) { return z * plan.trunk; };
    // Everything before the withers moves with the length of the neck.
    const V3 withers{0, 0.15, -0.2};
    const auto neck = [&](V3 at) {
        V3 from = at - withers;
        return V3{at.x, withers.y + from.y * (0.6 + 0.4 * plan.neck) * plan.neck, along(withers.z) + from.z};
    };
    const V3 tailRoot{0, 0.155, 0.4};
    const auto tail = [&](V3 at) {
        return V3{at.x, tailRoot.y + (at.y - tailRoot.y) * plan.tail,
                  along(tailRoot.z) + (at.z - tailRoot.z) * plan.tail};
    };

    Skeleton skeleton;
    Builder own{&skeleton, false};
    const int pelvis = own.Add("Pelvis", "Pelvis", {0, 0.12, along(0.33)}, -1);
    const int loin = own.Add("Spine", "Loin", {0, 0.14, along(0.19)}, pelvis);
    const int back = own.Add("Spine", "Back", {0, 0.13, along(0.03)}, loin);
    const int chest = own.Add("Chest", "Chest", {0, 0.12, along(-0.14)}, back);
    const int lowNeck = own.Add("Neck", "Lower Neck", neck({0, 0.21, -0.27}), chest);
    const int highNeck = own.Add("Neck", "Upper Neck", neck({0, 0.31, -0.35}), lowNeck);
    const int head = own.Add("Head", "Head", neck({0, 0.39, -0.43}), highNeck);
    own.Add("Jaw", "Jaw", neck({0, 0.335, -0.46}), head);
    const std::array<V3, 5> tailAt{
        V3{0, 0.155, 0.42}, {0, 0.12, 0.5}, {0, 0.07, 0.575}, {0, 0.055, 0.655}, {0, 0.1, 0.725}};
    int last = pelvis;
    for (int i = 0; i < plan.tailBones; ++i) {
        const double place = static_cast<double>(i) * 4 / (plan.tailBones - 1);
        const auto at = static_cast<size_t>(place);
        const V3 between = Mix(tailAt[at], tailAt[at + 1 < 5 ? at + 1 : 4], place - static_cast<double>(at));
        last = own.Add("Tail", "Tail " + std::to_string(i + 1), tail(between), last);
    }
    AddLimb(&own, {{"Ear", "Ear", neck({0.075, 0.455, -0.425})}}, head);
    AddLimb(&own, {{"Eye", "Eye", neck({0.058, 0.408, -0.525})}}, head);
    AddLimb(&own, {{"Horn", "Horn", neck({0.04, 0.475, -0.47})}}, head);
    AddLimb(&own,
            {{"Scapula", "Shoulder Blade", {0.085, 0.17, along(-0.17)}},
             {"UpperArm", "Upper Arm", {0.115, 0.05, along(-0.225)}},
             {"Forearm", "Forearm", {0.125, down(-0.085), along(-0.14)}},
             {"Wrist", "Wrist", {0.122, down(-0.3), along(-0.175)}},
             {"PawF", "Front Paw", {0.122, down(-0.445), along(-0.19)}}},
            chest);
    AddLimb(&own,
            {{"Thigh", "Thigh", {0.095, 0.09, along(0.33)}},
             {"Shin", "Shin", {0.13, down(-0.08), along(0.25)}},
             {"Hock", "Hock", {0.125, down(-0.27), along(0.395)}},
             {"PawH", "Hind Paw", {0.125, down(-0.445), along(0.35)}}},
            pelvis);
    for (Joint& joint : skeleton) {
        joint.firm = joint.name.rfind("Eye", 0) == 0;
    }
    skeleton[static_cast<size_t>(head)].extra = " limits = (-35,40,60)\r\n look = \"eyes\"\r\n";
    skeleton[static_cast<size_t>(head) + 1].extra = " limits = (0,28,0)\r\n";
    skeleton[static_cast<size_t>(last)].extra = " swing = 0.75\r\n";

    Builder dark{&skeleton, true};
    const int rump = dark.Add("Pelvis", "Shadow Pelvis", {0, 0.11, along(0.33)}, -1);
    const int ribs = dark.Add("Chest", "Shadow Chest", {0, 0.12, along(-0.1)}, rump);
    const int throat = dark.Add("Neck", "Shadow Neck", neck({0, 0.24, -0.28}), ribs);
    dark.Add("Head", "Shadow Head", neck({0, 0.38, -0.45}), throat);
    const int tailOne = dark.Add("Tail", "Shadow Tail 1", tail({0, 0.12, 0.46}), rump);
    dark.Add("Tail", "Shadow Tail 2", tail({0, 0.06, 0.63}), tailOne);
    AddLimb(&dark,
            {{"Arm", "Shadow Arm", {0.115, 0.04, along(-0.19)}},
             {"Fore", "Shadow Fore", {0.122, down(-0.25), along(-0.17)}}},
            ribs);
    AddLimb(
        &dark,
        {{"Leg", "Shadow Leg", {0.11, 0.06, along(0.32)}}, {"Foot", "Shadow Foot", {0.125, down(-0.25), along(0.37)}}},
        rump);
    return skeleton;
}

int FindBone(const Skeleton& skeleton, const std::string& stem)
{
    for (size_t i = 0; i < skeleton.size(); ++i) {
        if (skeleton[i].name.size() == stem.size() + 2 && skeleton[i].name.compare(0, stem.size(), stem) == 0) {
            return static_cast<int>(i);
        }
    }
    Fail("no bone " + stem);
}
