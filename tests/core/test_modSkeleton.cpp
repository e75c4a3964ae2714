#include <cmath>
#include <map>
#include <random>

#include "support/fresh.h"
#include "weights/modSkeleton.h"

using testing::ElementsAre;
using Skeleton = Fresh;

namespace {

struct Given {
    const char* Name;
    Vec3 Position;
    const char* Link;
};

/// The links by name; a number behind each name is the joint number.
std::map<std::string, std::string> Guessed(const std::vector<Given>& bones)
{
    Bones.Clear();
    for (const Given& bone : bones) {
        Bones.Add({.Name = std::string(bone.Name) + "77", .Position = bone.Position});
    }
    std::map<std::string, std::string> links;
    const std::vector<int16_t> guessed = GuessLinks(false);
    for (size_t b = 1; b < guessed.size(); ++b) {
        links[bones[b - 1].Name] = guessed[b] == 0 ? "" : bones[static_cast<size_t>(guessed[b]) - 1].Name;
    }
    return links;
}

} // namespace

TEST_F(Skeleton, LinksFollowNamesAndPlaces)
{
    const std::vector<std::vector<Given>> cases = {
        // A hanging hand is nearer to the thigh than to the elbow; the tip of a plait nearer to the spine.
        {{"Hand_L", {-3, 0, 0}, "Forearm_L"},
         {"Forearm_L", {-3.5F, 4, 0}, "UpperArm_L"},
         {"UpperArm_L", {-3, 8, 0}, "Spine"},
         {"Thumb_L", {-2.5F, 0, 0}, "Hand_L"},
         {"Thigh_L", {-1.5F, 0, 0}, "Pelvis"},
         {"Pelvis", {0, 2, 0}, ""},
         {"Spine", {0, 8, 0}, "Pelvis"},
         {"Head", {0, 12, 0}, "Spine"},
         {"Plait2", {0, 10, -3}, "Plait1"},
         {"Plait1", {0, 12, -2.5F}, "Head"}},
        // Features of a face hang on the head, fingers on the hand.
        {{"Head", {0, 0, 0}, ""},
         {"Eye_L", {-1, 1, 1}, "Head"},
         {"UpperLid_L", {-1, 1.2F, 1.1F}, "Head"},
         {"Horn_L", {-1, 2, 1}, "Head"},
         {"Jaw", {0, -1, 1}, "Head"},
         {"Tongue1", {0, -1, 2}, "Jaw"},
         {"Tongue2", {0, -1, 3}, "Tongue1"}},
        {{"Hand", {0, 0, 0}, ""},
         {"Finger1", {0, 3, -1}, "Hand"},
         {"Finger2", {0, 3, 0}, "Hand"},
         {"Finger3", {0, 3, 1}, "Hand"}},
        // The first of a row is its root where no name says otherwise; without numbers the order of the bones counts.
        {{"Worm3", {0, 0, 3}, "Worm2"}, {"Worm1", {0, 0, 1}, ""}, {"Worm2", {0, 0, 2}, "Worm1"}},
        {{"Spine1", {0, 0, 1}, "Spine2"}, {"Spine2", {0, 0, 2}, "Pelvis"}, {"Pelvis", {0, 0, 3}, ""}},
        {{"Root", {0, 0, 0}, ""}, {"Bone2", {0, 0, 2}, "Bone1"}, {"Bone1", {0, 0, 1}, "Root"}},
    };
    for (const std::vector<Given>& bones : cases) {
        const auto links = Guessed(bones);
        for (const Given& bone : bones) {
            EXPECT_EQ(links.at(bone.Name), bone.Link) << bone.Name;
        }
    }
}

TEST_F(Skeleton, LinksAreATreeWithEqualSidesWhateverTheBones)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> anywhere(-1, 1);
        const std::vector<std::string> names = {"", "L", "Tail", "$j$", "Spine 2", "Foot_R", "x;1", "Eye", "\xe4L3"};
        const std::vector<float> odd = {0, NAN, INFINITY, -INFINITY, 3e38F, -3e38F, 1e-45F, 1};
        const auto value = [&] { return seed % 3 == 0 ? odd[random() % odd.size()] : anywhere(random); };
        Bones.Clear();
        const auto pairs = static_cast<int32_t>(random() % 12);
        for (int32_t i = 1; i <= pairs; ++i) {
            const Vec3 place = {value(), value(), value()};
            const std::string name = "Limb" + std::string(1, static_cast<char>('a' + i));
            Bones.Add({.Name = name + "L01", .Position = {-std::fabs(place.X), place.Y, place.Z}});
            Bones.Add({.Name = name + "R01", .Position = {std::fabs(place.X), place.Y, place.Z}});
        }
        // Those of the middle, and any at all.
        for (auto left = random() % 8; left > 0; --left) {
            const bool isAny = seed % 2 == 0;
            Bones.Add({.Name = isAny ? names[random() % names.size()] + "01" : "Middle01",
                       .Position = {isAny ? value() : 0, value(), value()},
                       .IsShadow = random() % 4 == 0});
        }
        for (const bool shadow : {false, true}) {
            const std::vector<int16_t> links = GuessLinks(shadow);
            ASSERT_EQ(links.size(), Bones.Items.size() + 1);
            for (int32_t b = 1; b <= BoneCount(); ++b) {
                const int16_t link = links[static_cast<size_t>(b)];
                ASSERT_TRUE(link == 0 ||
                            (IsValidBone(link) && Bones[b].IsShadow == shadow && Bones[link].IsShadow == shadow))
                    << seed;
                int32_t steps = 0;
                for (int16_t at = link; at != 0; at = links[static_cast<size_t>(at)]) {
                    ASSERT_LE(++steps, BoneCount()) << seed;
                }
            }
            for (int32_t left = 1; seed % 3 != 0 && !shadow && left < 2 * pairs; left += 2) {
                const int16_t of = links[static_cast<size_t>(left)];
                const int16_t onRight = links[static_cast<size_t>(left) + 1];
                const bool isPaired = of != 0 && of <= 2 * pairs;
                // Those on the plane are of the middle.
                if (Bones[left].Position.X < -0.05F && (!isPaired || Bones[of].Position.X < -0.05F)) {
                    ASSERT_EQ(onRight, isPaired ? of + 1 : of) << seed;
                }
            }
        }
    }
}

TEST_F(Skeleton, WhatAliasFilesGaveComesFirst)
{
    EXPECT_THAT(LinksOf(false), ElementsAre(0));
    for (const float x : {-1.0F, 1.0F, 0.005F, 1.005F, NAN, -1.0F}) {
        Bones.Add({.Name = "01", .Position = {x, 0, 0}});
    }
    Bones[6].IsShadow = true;
    EXPECT_THAT(MirrorPartners(false, 0.01F), ElementsAre(0, 2, 1, 3, 0, 0, 0));
    EXPECT_THAT(MirrorPartners(false, 0), ElementsAre(0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(MirrorPartners(false, NAN), ElementsAre(0, 0, 0, 0, 0, 0, 0));
    Bones[1].LinkBone = 2;
    Bones[2].LinkBone = 1;
    Bones[3].LinkBone = 99;
    Bones[1].MirrorBone = 6;
    EXPECT_THAT(LinksOf(false), ElementsAre(0, 2, 1, 0, 0, 0, 0));
    EXPECT_EQ(LinksOf(true), GuessLinks(true));
    EXPECT_THAT(MirrorPartners(false, 0.01F), ElementsAre(0, 6, 0, 0, 0, 0, 0));
    EXPECT_THAT(MirrorPartners(true, 2), ElementsAre(0, 0, 0, 0, 0, 0, 6));
}
