#include "body.h"

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

Skeleton MakeSkeleton()
{
    Skeleton skeleton;
    Builder own{&skeleton, false};
    const int pelvis = own.Add("Pelvis", "Pelvis", {0, 0.12, 0.33}, -1);
    const int loin = own.Add("Spine", "Loin", {0, 0.14, 0.19}, pelvis);
    const int back = own.Add("Spine", "Back", {0, 0.13, 0.03}, loin);
    const int chest = own.Add("Chest", "Chest", {0, 0.12, -0.14}, back);
    const int lowNeck = own.Add("Neck", "Lower Neck", {0, 0.175, -0.285}, chest);
    const int highNeck = own.Add("Neck", "Upper Neck", {0, 0.215, -0.39}, lowNeck);
    const V3 skull{0, 0.25, -0.49};
    const int head = own.Add("Head", "Head", skull, highNeck);
    own.Add("Jaw", "Jaw", skull + V3{0, -0.055, -0.03}, head);
    int last = pelvis;
    for (const V3& at : {V3{0, 0.155, 0.42}, {0, 0.12, 0.5}, {0, 0.07, 0.575}, {0, 0.055, 0.655}, {0, 0.1, 0.725}}) {
        last = own.Add("Tail", "Tail " + std::to_string(last == pelvis ? 1 : last - head), at, last);
    }
    AddLimb(&own, {{"Ear", "Ear", skull + V3{0.075, 0.065, 0.005}}}, head);
    AddLimb(&own, {{"Eye", "Eye", skull + V3{0.058, 0.018, -0.095}}}, head);
    AddLimb(&own, {{"Horn", "Horn", skull + V3{0.04, 0.085, -0.04}}}, head);
    AddLimb(&own,
            {{"Scapula", "Shoulder Blade", {0.085, 0.17, -0.17}},
             {"UpperArm", "Upper Arm", {0.115, 0.05, -0.225}},
             {"Forearm", "Forearm", {0.125, -0.055, -0.14}},
             {"Wrist", "Wrist", {0.122, -0.19, -0.175}},
             {"PawF", "Front Paw", {0.122, -0.295, -0.19}}},
            chest);
    AddLimb(&own,
            {{"Thigh", "Thigh", {0.095, 0.09, 0.33}},
             {"Shin", "Shin", {0.13, -0.05, 0.25}},
             {"Hock", "Hock", {0.125, -0.17, 0.395}},
             {"PawH", "Hind Paw", {0.125, -0.295, 0.35}}},
            pelvis);
    skeleton[static_cast<size_t>(head)].extra = " limits = (-35,40,60)\r\n look = \"eyes\"\r\n";
    skeleton[static_cast<size_t>(head) + 1].extra = " limits = (0,28,0)\r\n";
    skeleton[static_cast<size_t>(last)].extra = " swing = 0.75\r\n";

    Builder dark{&skeleton, true};
    const int rump = dark.Add("Pelvis", "Shadow Pelvis", {0, 0.11, 0.33}, -1);
    const int ribs = dark.Add("Chest", "Shadow Chest", {0, 0.12, -0.1}, rump);
    const int throat = dark.Add("Neck", "Shadow Neck", {0, 0.19, -0.29}, ribs);
    dark.Add("Head", "Shadow Head", skull + V3{0, -0.01, -0.02}, throat);
    const int tailOne = dark.Add("Tail", "Shadow Tail 1", {0, 0.12, 0.46}, rump);
    dark.Add("Tail", "Shadow Tail 2", {0, 0.06, 0.63}, tailOne);
    AddLimb(&dark, {{"Arm", "Shadow Arm", {0.115, 0.04, -0.19}}, {"Fore", "Shadow Fore", {0.122, -0.16, -0.17}}}, ribs);
    AddLimb(&dark, {{"Leg", "Shadow Leg", {0.11, 0.06, 0.32}}, {"Foot", "Shadow Foot", {0.125, -0.16, 0.37}}}, rump);
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
