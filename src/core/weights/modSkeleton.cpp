#include "weights/modSkeleton.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "app/modMath.h"
#include "app/modMvmDef.h"
#include "model/modStrings.h"
#include "weights/modBoneNames.h"
#include "weights/modPointTree.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
/// The part of the skeleton's size within which places count as equal.
constexpr double nearness = 0.01;
/// What the way to the root counts beside a bone's own length: keeps limbs from growing out of one another.
constexpr double wayWeight = 0.3;

// Factors of a bone's length, below 1 in favour of a link.
constexpr double nextInRow = 0.8;    ///< from 1 to 2 in a row of numbers
constexpr double rowElsewhere = 1.2; ///< from something else to 2
constexpr double sideBySide = 3;     ///< from the first finger to the second
constexpr double alongLimb = 0.7;    ///< from thigh to shin
constexpr double faceOnHead = 0.7;
constexpr double backwards = 1.5;    ///< from shin to thigh
constexpr double strange = 3;        ///< from tail to arm, from a side to the middle
constexpr double lateOnTrunk = 4;    ///< from the trunk to a hand
constexpr double lateElsewhere = 10; ///< from a leg to a hand
constexpr double faceOnFace = 20;    ///< features of a face hang on the head, however near they are
constexpr double least = alongLimb * nextInRow;

enum class Part : int8_t { Unknown, Trunk, Head, Face, Tail, Arm, Leg };

struct PartWord {
    std::string_view Text; ///< begins a word of the name
    Part Where;
    int Rank; ///< grows with the distance from the trunk's middle; the same where the order is open
};

constexpr auto partWords = std::to_array<PartWord>({
    {"pelvis", Part::Trunk, 0}, {"hips", Part::Trunk, 0},  {"root", Part::Trunk, 0},   {"spine", Part::Trunk, 1},
    {"loin", Part::Trunk, 1},   {"waist", Part::Trunk, 1}, {"belly", Part::Trunk, 1},  {"back", Part::Trunk, 1},
    {"chest", Part::Trunk, 2},  {"rib", Part::Trunk, 2},   {"torso", Part::Trunk, 1},  {"neck", Part::Trunk, 3},
    {"head", Part::Head, 0},    {"skull", Part::Head, 0},  {"jaw", Part::Face, 0},     {"eye", Part::Face, 1},
    {"ear", Part::Face, 1},     {"horn", Part::Face, 1},   {"brow", Part::Face, 1},    {"lid", Part::Face, 1},
    {"antler", Part::Face, 1},  {"cheek", Part::Face, 1},  {"lip", Part::Face, 2},     {"mouth", Part::Face, 1},
    {"nose", Part::Face, 1},    {"tongue", Part::Face, 2}, {"tail", Part::Tail, 0},    {"clavicle", Part::Arm, 0},
    {"collar", Part::Arm, 0},   {"scapula", Part::Arm, 0}, {"shoulder", Part::Arm, 0}, {"upperarm", Part::Arm, 1},
    {"uparm", Part::Arm, 1},    {"arm", Part::Arm, 1},     {"forearm", Part::Arm, 2},  {"elbow", Part::Arm, 2},
    {"wrist", Part::Arm, 3},    {"hand", Part::Arm, 3},    {"finger", Part::Arm, 4},   {"thumb", Part::Arm, 4},
    {"thigh", Part::Leg, 0},    {"hip", Part::Leg, 0},     {"upleg", Part::Leg, 0},    {"upperleg", Part::Leg, 0},
    {"leg", Part::Leg, 1},      {"shin", Part::Leg, 1},    {"calf", Part::Leg, 1},     {"knee", Part::Leg, 1},
    {"hock", Part::Leg, 2},     {"ankle", Part::Leg, 2},   {"foot", Part::Leg, 3},     {"toe", Part::Leg, 4},
});

constexpr int digitRank = 4;

/// A bone as the guess sees it.
struct Joint {
    std::array<double, 3> At{};
    size_t Bone = 0;
    size_t Partner = 0; ///< number of the joint on the other side; 0 for none
    BodySide Side = BodySide::Middle;
    bool Anywhere = false; ///< neither on the plane nor of a side
    size_t Stem = 0;       ///< the same for names that differ in nothing but their number
    int32_t Number = 0;
    bool IsLater = false; ///< a row holds a joint before it
    Part Where = Part::Unknown;
    int Rank = 0;
};

/// Joint 0 is not used.
using Joints = std::vector<Joint>;

std::array<double, 3> MirroredPlace(const Joint& joint)
{
    return {-joint.At[0], joint.At[1], joint.At[2]};
}

double Distance(const std::array<double, 3>& a, const std::array<double, 3>& b)
{
    const double x = a[0] - b[0];
    const double y = a[1] - b[1];
    const double z = a[2] - b[2];
    return std::sqrt(x * x + y * y + z * z);
}

/// What the words say of the part: the match that ends last, of several of these the longest.
void ReadPart(const std::vector<std::string>& words, Joint* joint)
{
    std::string whole;
    std::vector<size_t> starts;
    for (const std::string& word : words) {
        starts.push_back(whole.size());
        whole += LowerCase(word);
    }
    size_t last = 0;
    for (const size_t start : starts) {
        for (const PartWord& word : partWords) {
            const size_t end = start + word.Text.size();
            if (end > last && whole.compare(start, word.Text.size(), word.Text) == 0) {
                last = end;
                joint->Where = word.Where;
                joint->Rank = word.Rank;
            }
        }
    }
}

/// The finite bones of the kind, with what their names say.
Joints CollectJoints(bool shadow)
{
    const std::vector<BoneWords> names = ReadBoneNames(shadow);
    std::map<std::string, size_t> stems;
    Joints joints(1);
    for (size_t b = 1; b < names.size(); ++b) {
        const MvmBone& bone = Bones[static_cast<int32_t>(b)];
        const Vec3& at = bone.Position;
        if (bone.IsShadow != shadow || !std::isfinite(at.X) || !std::isfinite(at.Y) || !std::isfinite(at.Z)) {
            continue;
        }
        Joint joint{.At = {at.X, at.Y, at.Z}, .Bone = b, .Side = names[b].Side, .Number = std::max(names[b].Number, 0)};
        std::string stem;
        for (const std::string& word : names[b].Words) {
            stem += LowerCase(word) + " ";
        }
        joint.Stem = stems.try_emplace(stem, stems.size() + 1).first->second;
        ReadPart(names[b].Words, &joint);
        joints.push_back(joint);
    }
    return joints;
}

/// The largest extent of the joints.
double SizeOf(const Joints& joints)
{
    double size = 0;
    for (size_t axis = 0; axis < 3; ++axis) {
        double low = infinity;
        double high = -infinity;
        for (size_t j = 1; j < joints.size(); ++j) {
            low = std::min(low, joints[j].At[axis]);
            high = std::max(high, joints[j].At[axis]);
        }
        size = std::max(size, high - low);
    }
    return size;
}

/// Pairs the joints whose names differ in the side alone.
void PairByNames(Joints* joints)
{
    std::map<std::tuple<size_t, int32_t, BodySide>, std::vector<size_t>> named;
    for (size_t j = 1; j < joints->size(); ++j) {
        const Joint& joint = (*joints)[j];
        if (joint.Side != BodySide::Middle) {
            named[{joint.Stem, joint.Number, joint.Side}].push_back(j);
        }
    }
    for (const auto& [key, lefts] : named) {
        const auto& [stem, number, side] = key;
        const auto rights = named.find({stem, number, BodySide::Right});
        if (side == BodySide::Left && rights != named.end() && lefts.size() == 1 && rights->second.size() == 1) {
            (*joints)[lefts.front()].Partner = rights->second.front();
            (*joints)[rights->second.front()].Partner = lefts.front();
        }
    }
}

/// Pairs the joints that have no partner yet by their places, in their order: each with the nearest one to its mirrored
/// place, less than `reach` away on each axis. One that near to the plane can be its own partner.
void PairByPlaces(double reach, Joints* joints)
{
    for (size_t i = 1; i < joints->size(); ++i) {
        if ((*joints)[i].Partner != 0) {
            continue;
        }
        const std::array<double, 3> place = MirroredPlace((*joints)[i]);
        size_t nearest = 0;
        double best = infinity;
        for (size_t j = i; j < joints->size(); ++j) {
            const Joint& other = (*joints)[j];
            const double aside = i == j ? std::fabs(place[0]) : std::fabs(other.At[0] - place[0]);
            if (aside < reach && std::fabs(other.At[1] - place[1]) < reach &&
                std::fabs(other.At[2] - place[2]) < reach && other.Partner == 0 && Distance(other.At, place) < best) {
                nearest = j;
                best = Distance(other.At, place);
            }
        }
        if (nearest != 0) {
            (*joints)[i].Partner = nearest;
            (*joints)[nearest].Partner = i;
        }
    }
}

/// Settles partners and sides: a joint on the plane is of the middle whatever its name says.
void SettleSides(Joints* joints)
{
    const double near = SizeOf(*joints) * nearness;
    // On which side the names have the left; without any at lower X.
    double leftness = 0;
    for (Joint& joint : *joints) {
        if (std::fabs(joint.At[0]) <= near) {
            joint.Side = BodySide::Middle;
        }
        leftness += joint.Side == BodySide::Left ? joint.At[0] : joint.Side == BodySide::Right ? -joint.At[0] : 0;
    }
    PairByNames(joints);
    PairByPlaces(near, joints);
    for (Joint& joint : *joints) {
        if (joint.Side == BodySide::Middle && std::fabs(joint.At[0]) > near) {
            const bool isLeft = (joint.At[0] > 0) == (leftness > 0);
            joint.Anywhere = joint.Partner == 0;
            joint.Side = joint.Anywhere ? BodySide::Middle : isLeft ? BodySide::Left : BodySide::Right;
        }
    }
}

void FindRows(Joints* joints)
{
    std::set<std::tuple<size_t, BodySide, int32_t>> rows;
    for (const Joint& joint : *joints) {
        rows.emplace(joint.Stem, joint.Side, joint.Number);
    }
    for (Joint& joint : *joints) {
        joint.IsLater = rows.contains({joint.Stem, joint.Side, joint.Number - 1});
    }
}

/// Whether two joints stand one behind the other in a numbered row of one name.
bool InRow(const Joint& a, const Joint& b)
{
    return a.Stem == b.Stem && a.Side == b.Side && std::abs(a.Number - b.Number) == 1;
}

/// How likely names let `child` hang on `parent`: factors of the distance, below 1 in favour.
double NameFactor(const Joint& child, const Joint& parent)
{
    const bool isToMiddle = child.Side == BodySide::Middle && !child.Anywhere;
    const bool isFromMiddle = parent.Side == BodySide::Middle && !parent.Anywhere;
    const double factor = isToMiddle && !isFromMiddle ? strange : 1;
    if (child.Where == Part::Unknown || parent.Where == Part::Unknown) {
        return factor;
    }
    if (child.Where == Part::Face) {
        if (parent.Where == Part::Face) {
            return child.Stem == parent.Stem || (parent.Rank == 0 && child.Rank == 2) ? factor : factor * faceOnFace;
        }
        return factor * (parent.Where == Part::Head ? faceOnHead : parent.Where == Part::Trunk ? 1 : strange);
    }
    const bool isLimb = child.Where == Part::Arm || child.Where == Part::Leg;
    if (child.Where == parent.Where) {
        return factor * (child.Rank < parent.Rank ? backwards : isLimb && child.Rank > parent.Rank ? alongLimb : 1);
    }
    if (isLimb && child.Rank > 1) {
        return factor * (parent.Where == Part::Trunk ? lateOnTrunk : lateElsewhere);
    }
    return parent.Where == Part::Trunk || child.Where == Part::Trunk ? factor : factor * strange;
}

/// A joint hangs on none of the other side, and one of a pair on none that stands on a side alone: pairs hang alike.
bool MayLink(const Joint& child, const Joint& parent)
{
    return parent.Side == BodySide::Middle || child.Side == BodySide::Middle ||
           (child.Side == parent.Side && (child.Partner == 0 || parent.Partner != 0));
}

/// How little a part is where a skeleton begins.
int Outwardness(const Joint& joint)
{
    return joint.Where == Part::Trunk ? 0 : joint.Where == Part::Unknown || joint.Where == Part::Head ? 1 : 2;
}

/// The tree, grown from the root joint by joint, each time by the one that costs least.
class Growth {
public:
    explicit Growth(const Joints& joints) : Tree(joints), Links(joints.size()), Ways(joints.size())
    {
        for (size_t j = 1; j < joints.size(); ++j) {
            Open.push_back({.At = joints[j].At, .Joint = j});
        }
    }

    std::vector<size_t> Run()
    {
        while (!Open.empty()) {
            const auto key = [](const Candidate& open) { return std::tuple(open.Cost, open.Joint); };
            auto next = std::min_element(Open.begin(), Open.end(),
                                         [&](const Candidate& a, const Candidate& b) { return key(a) < key(b); });
            if (next->Cost == infinity) {
                next = ChooseRoot();
            }
            const auto [joint, link] = std::pair(next->Joint, next->Link);
            Take(next, link);
            const auto partner =
                std::find_if(Open.begin(), Open.end(),
                             [&, other = Tree[joint].Partner](const Candidate& c) { return c.Joint == other; });
            if (partner != Open.end()) {
                Take(partner, Tree[link].Partner != 0 ? Tree[link].Partner : link);
            }
        }
        return Links;
    }

private:
    /// A joint outside the tree, and where it would hang.
    struct Candidate {
        std::array<double, 3> At{};
        double Cost = infinity;
        size_t Joint = 0;
        size_t Link = 0;
    };
    using Place = std::vector<Candidate>::iterator;

    /// The joint to begin with: by name, of several the one nearest to the middle of all.
    Place ChooseRoot()
    {
        std::array<double, 3> middle{};
        for (const Candidate& open : Open) {
            for (size_t axis = 0; axis < 3; ++axis) {
                middle[axis] += open.At[axis] / static_cast<double>(Open.size());
            }
        }
        const auto key = [&](const Candidate& open) {
            const Joint& joint = Tree[open.Joint];
            return std::tuple(joint.Side != BodySide::Middle, joint.Anywhere, Outwardness(joint), joint.Rank,
                              Distance(joint.At, middle), open.Joint);
        };
        return std::min_element(Open.begin(), Open.end(),
                                [&](const Candidate& a, const Candidate& b) { return key(a) < key(b); });
    }

    void Take(Place place, size_t link)
    {
        const size_t joint = place->Joint;
        *place = Open.back();
        Open.pop_back();
        const Joint& taken = Tree[joint];
        Links[joint] = link;
        Ways[joint] = link == 0 ? 0 : Ways[link] + Distance(taken.At, Tree[link].At);
        const double way = wayWeight * Ways[joint];
        for (Candidate& open : Open) {
            const double distance = Distance(open.At, taken.At);
            if (distance * least + way >= open.Cost || !MayLink(Tree[open.Joint], taken)) {
                continue;
            }
            const double cost = distance * NameFactor(Tree[open.Joint], taken) * RowFactor(open.Joint, joint) + way;
            if (cost < open.Cost) {
                open.Cost = cost;
                open.Link = joint;
            }
        }
    }

    [[nodiscard]] double RowFactor(size_t child, size_t parent) const
    {
        const size_t link = Links[parent];
        if (InRow(Tree[child], Tree[parent])) {
            // Fingers numbered side by side are equally far from the hand.
            const double before = link == 0 ? 0 : Distance(Tree[parent].At, Tree[link].At);
            const double behind = link == 0 ? 1 : Distance(Tree[child].At, Tree[link].At);
            return behind > 1.2 * before                                    ? nextInRow
                   : Tree[child].Rank == digitRank && behind > 0.8 * before ? sideBySide
                                                                            : 1;
        }
        return Tree[child].IsLater ? rowElsewhere : 1;
    }

    const Joints& Tree;
    std::vector<size_t> Links;
    std::vector<double> Ways; ///< to the root
    std::vector<Candidate> Open;
};

/// Turns a tree whose root has no telling name about, when more rows of one name then grow from their first bone on, by
/// number or else by the order of the bones: the new root is the joint nearest to the old one, with nothing but joints
/// of the middle between them, from which the fewest links run against that order.
void TurnByNumbers(const Joints& joints, std::vector<size_t>* links)
{
    const auto against = [&](size_t child, size_t parent) {
        const Joint& a = joints[child];
        const Joint& b = joints[parent];
        const bool isOneName = a.Stem == b.Stem && a.Side == b.Side && std::abs(a.Number - b.Number) <= 1;
        return isOneName && std::pair(a.Number, a.Bone) < std::pair(b.Number, b.Bone) ? 1 : 0;
    };
    // Parents first.
    std::vector<size_t> order;
    std::vector<std::vector<size_t>> children(links->size());
    for (size_t j = 1; j < links->size(); ++j) {
        children[(*links)[j]].push_back(j);
    }
    order = children[0];
    for (size_t i = 0; i < order.size(); ++i) {
        order.insert(order.end(), children[order[i]].begin(), children[order[i]].end());
    }
    // By how many the links against the order change when a joint becomes the root.
    std::vector<int32_t> changes(links->size());
    std::vector<bool> isCentral(links->size());
    isCentral[0] = true;
    size_t best = 0;
    for (const size_t j : order) {
        const size_t link = (*links)[j];
        if (link == 0 && joints[j].Where == Part::Trunk && joints[j].Rank == 0) {
            return;
        }
        isCentral[j] = joints[j].Side == BodySide::Middle && isCentral[link];
        if (link == 0 || !isCentral[j]) {
            continue;
        }
        changes[j] = changes[link] + against(link, j) - against(j, link);
        if (changes[j] < changes[best]) {
            best = j;
        }
    }
    for (size_t j = best, link = 0; j != 0;) {
        const size_t next = (*links)[j];
        (*links)[j] = link;
        link = j;
        j = next;
    }
}

std::vector<int16_t> EmptyList()
{
    return std::vector<int16_t>(static_cast<size_t>(std::min<int32_t>(BoneCount(), INT16_MAX)) + 1);
}

/// What alias files gave the bones of the kind, empty when they gave none anything.
std::vector<int16_t> GivenBones(bool shadow, int16_t MvmBone::*field)
{
    std::vector<int16_t> given = EmptyList();
    bool any = false;
    for (size_t b = 1; b < given.size(); ++b) {
        const MvmBone& bone = Bones[static_cast<int32_t>(b)];
        if (bone.IsShadow == shadow && IsValidBone(bone.*field)) {
            given[b] = bone.*field;
            any = true;
        }
    }
    return any ? given : std::vector<int16_t>{};
}

} // namespace

std::vector<int16_t> GuessLinks(bool shadow)
{
    Joints joints = CollectJoints(shadow);
    SettleSides(&joints);
    FindRows(&joints);
    std::vector<size_t> tree = Growth(joints).Run();
    TurnByNumbers(joints, &tree);
    std::vector<int16_t> links = EmptyList();
    for (size_t j = 1; j < joints.size(); ++j) {
        links[joints[j].Bone] = static_cast<int16_t>(joints[tree[j]].Bone);
    }
    return links;
}

std::vector<int16_t> LinksOf(bool shadow)
{
    std::vector<int16_t> given = GivenBones(shadow, &MvmBone::LinkBone);
    return given.empty() ? GuessLinks(shadow) : given;
}

std::vector<int16_t> MirrorPartners(bool shadow, float threshold)
{
    std::vector<int16_t> partners = GivenBones(shadow, &MvmBone::MirrorBone);
    if (!partners.empty()) {
        return partners;
    }
    Joints joints = CollectJoints(shadow);
    PairByPlaces(threshold, &joints);
    partners = EmptyList();
    for (size_t j = 1; j < joints.size(); ++j) {
        partners[joints[j].Bone] = static_cast<int16_t>(joints[joints[j].Partner].Bone);
    }
    return partners;
}
