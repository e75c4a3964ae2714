#include <functional>

#include "modFromScene.h"
#include "modGltfRead.h"
#include "modGltfWrite.h"
#include "modLike.h"
#include "modNumbering.h"
#include "support/beast_text.h"
#include "support/fresh.h"

using testing::HasSubstr;

// Files that were changed by another program, taken back into the model that they were made from.

namespace {

using Change = std::function<void(ExchangeModel*)>;

/// The corners of the skin that carry a vertex number.
Change AtVertex(float number, const std::function<void(ExchangeVertex*)>& change)
{
    return [=](ExchangeModel* model) {
        for (ExchangeVertex& corner : model->Meshes[0].Vertices) {
            if (corner.Number.U == number) {
                change(&corner);
            }
        }
    };
}

void AtAll(ExchangeModel* model, const std::function<void(ExchangeVertex*)>& change)
{
    for (ExchangeMesh& mesh : model->Meshes) {
        std::for_each(mesh.Vertices.begin(), mesh.Vertices.end(), [&](ExchangeVertex& corner) { change(&corner); });
    }
}

void WithoutNumbers(ExchangeModel* model)
{
    AtAll(model, [](ExchangeVertex* corner) { corner->Number = corner->Numbers = {}; });
}

/// What programs lose: the last bits of places, more of normals, texture coordinates turned twice.
void Worn(ExchangeModel* model)
{
    AtAll(model, [i = 0](ExchangeVertex* corner) mutable {
        const float place = static_cast<int>(corner->Number.U) % 2 == 0 ? 1.0F : -1.0F; // alike for corners of one
        corner->Place.X += place * 7e-8F * 9;
        corner->Place.Z *= 1 - place * 6e-8F;
        const float sign = i++ % 2 == 0 ? 1.0F : -1.0F;
        corner->Normal.X += sign * 4e-3F;
        corner->TexCoord.V += sign * 5e-7F;
    });
    for (ExchangeBone& bone : model->Bones) {
        bone.Head.X += 5e-5F;
    }
}

Vec2 Between(const Vec2& a, const Vec2& b)
{
    return {(a.U + b.U) / 2, (a.V + b.V) / 2};
}

/// Face 4 becomes two, parted in the middle of its corners 2 and 4, whose numbers have a whole one in their middle.
void HalveAnEdge(ExchangeModel* model)
{
    ExchangeMesh& mesh = model->Meshes[0];
    const auto [two, five, four] = mesh.Parts[0].Triangles[2];
    ExchangeVertex middle = mesh.Vertices[two];
    const ExchangeVertex& other = mesh.Vertices[four];
    middle.Place.Z = -0.5F;
    middle.TexCoord = Between(middle.TexCoord, other.TexCoord);
    middle.Number = Between(middle.Number, other.Number);
    middle.Numbers = Between(middle.Numbers, other.Numbers);
    const auto index = static_cast<uint32_t>(mesh.Vertices.size());
    mesh.Vertices.push_back(middle);
    mesh.Parts[0].Triangles[2] = {two, five, index};
    mesh.Parts[0].Triangles.push_back({index, five, four});
}

void CopyAFace(ExchangeModel* model)
{
    ExchangeMesh& mesh = model->Meshes[0];
    std::array<uint32_t, 3> copy = mesh.Parts[1].Triangles[0];
    for (uint32_t& corner : copy) {
        mesh.Vertices.push_back(mesh.Vertices[corner]);
        mesh.Vertices.back().Place.X += 10;
        corner = static_cast<uint32_t>(mesh.Vertices.size() - 1);
    }
    mesh.Parts[1].Triangles.insert(mesh.Parts[1].Triangles.begin(), copy);
}

/// Numbers as they are, but those of another mesh, and for other vertices.
void WithForeignNumbers(ExchangeModel* model)
{
    const uint32_t salt = NumberSalt(Meshes[3], 3);
    AtAll(model, [=](ExchangeVertex* corner) {
        corner->Number = ConfirmedNumber(9 - static_cast<int32_t>(corner->Number.U), salt);
        std::swap(corner->Numbers.U, corner->Numbers.V);
    });
}

void WithoutSkins(ExchangeModel* model)
{
    for (ExchangeMesh& mesh : model->Meshes) {
        mesh.IsSkinned = false;
    }
    AtAll(model, [](ExchangeVertex* corner) { corner->Bone = -1; });
    model->Bones.clear();
}

/// The skin in the space of the scene, as programs that apply transforms leave it.
void WithAppliedTransforms(ExchangeModel* model)
{
    for (size_t mesh = 0; mesh < 2; ++mesh) {
        model->Meshes[mesh].Placements[0] = {};
        for (ExchangeVertex& corner : model->Meshes[mesh].Vertices) {
            corner.Place = {2 * corner.Place.X, 2 * corner.Place.Y + 2, 2 * corner.Place.Z};
        }
    }
}

Change Both(const Change& first, const Change& second)
{
    return [=](ExchangeModel* model) {
        first(model);
        second(model);
    };
}

class AModelsLikeness : public ModelFile {
protected:
    void SetUp() override
    {
        ExchangeModel out;
        std::string glb;
        ASSERT_TRUE(LoadAnew(BeastText) && ExchangeFromScene(Folder.Path, &out, &Error) && GlbOf(out, &glb, &Error) &&
                    ReadGltf(glb, Folder.Path, &InFile, &Error))
            << Error;
        Plain = ModelText();
    }
    /// The model with a changed file's shape; what is wrong when it is refused.
    std::string Merged(const Change& change)
    {
        ExchangeModel model = InFile;
        change(&model);
        EXPECT_TRUE(LoadAnew(BeastText));
        Notes.clear();
        if (MergeIntoScene(model, &IsDoubtful, &Notes, &Error)) {
            return ModelText();
        }
        EXPECT_EQ(ModelText(), Plain);
        return Error;
    }
    /// The plain text with parts of it replaced, each by the next one. A '|' stands for CR LF.
    std::string With(const std::vector<std::string>& parts) const
    {
        std::string text = Plain;
        for (size_t i = 0; i + 1 < parts.size(); i += 2) {
            const std::string old = CrLf(parts[i]);
            const size_t at = text.find(old);
            EXPECT_TRUE(at != std::string::npos) << parts[i];
            text.replace(std::min(at, text.size()), old.size(), CrLf(parts[i + 1]));
        }
        return text;
    }
    ExchangeModel InFile;
    std::string Plain;
    std::vector<std::string> Notes;
    bool IsDoubtful = false;
};

// Without numbers the long normal of one corner cannot be told from a like one.
const std::vector<std::string> unnumbered = {" n = (0,0,3)|", "", "(2,3,1),(3,1,1),1", "(2,3,1),(1,1,1),1"};

} // namespace

TEST_F(AModelsLikeness, TakesWhatWasChangedAndNothingElse)
{
    struct Case {
        std::string Name;
        Change Edit;
        std::vector<std::string> Replaced;
        std::string Note; ///< what is told, among other things
    };
    const std::string first = "m = \"Fin\"| v = (0,0,0),";
    const Case cases[] = {
        {"nothing",
         [](auto*) {},
         {},
         "\"Beast\": 8 vertices kept, 0 moved, 0 new, 0 gone, 0 with another bone; 0 faces"},
        {"worn", Worn, {}, "8 vertices kept"},
        {"without numbers", WithoutNumbers, unnumbered, "8 vertices kept"},
        {"worn without numbers", Both(Worn, WithoutNumbers), unnumbered, "8 vertices kept"},
        {"foreign numbers", WithForeignNumbers, unnumbered, "8 vertices kept"},
        {"a vertex moved",
         AtVertex(4, [](auto* corner) { corner->Place.Y = 7; }),
         {" v = (1,1,0),2|", " v = (1,1,7),2|"},
         "7 vertices kept, 1 moved, 0 new"},
        {"a bone painted",
         AtVertex(1, [](auto* corner) { corner->Bone = 1; }),
         {first + "1", first + "2"},
         "1 with another bone"},
        {"a vertex taken from its bone",
         AtVertex(1, [](auto* corner) { corner->Bone = -1; }),
         {first + "1", first + "-1"},
         "1 with another bone"},
        {"a face deleted",
         [](auto* model) {
             model->Meshes[0].Parts[0].Triangles.erase(model->Meshes[0].Parts[0].Triangles.begin() + 2);
         },
         {" v = (2,1,0),2|", "", " n = (0,0,3)|", "", " f = (2,5,4),(2,3,1),(3,1,1),1|", "", "f = (6,8,2)",
          "f = (5,7,2)"},
         "7 vertices kept, 0 moved, 0 new, 1 gone, 0 with another bone; 0 faces new, 1 gone."},
        {"an edge halved",
         HalveAnEdge,
         {" v = (1,1,0),2| t", " v = (1,1,0),2| v = (1,0.5,0),2| t", " t = (0.5,0.25)|",
          " t = (0.5,0.25)| t = (0.5,0)|", " n = (0,0,3)|", " n = (0,0,3)| n = (0,0,1)|",
          " f = (2,5,4),(2,3,1),(3,1,1),1|", "", "(1,1,1),2|}",
          "(1,1,1),2| f = (2,5,9),(2,3,6),(3,1,4),1| f = (9,5,4),(6,3,1),(4,1,1),1|}"},
         "1 new, 0 gone, 0 with another bone; 2 faces new, 1 gone."},
        {"a face copied",
         CopyAFace,
         {" v = (1,1,0),2| t", " v = (1,1,0),2| v = (11,0,0),2| v = (10,1,0),2| v = (11,1,0),2| t", "(1,1,1),2|}",
          "(1,1,1),2| f = (9,11,10),(2,1,3),(1,1,1),2|}"},
         "8 vertices kept, 0 moved, 3 new"},
        {"a face flipped",
         [](auto* model) {
             std::swap(model->Meshes[0].Parts[1].Triangles[0][0], model->Meshes[0].Parts[1].Triangles[0][2]);
         },
         {" f = (2,4,3),(2,1,3),(1,1,1),2|", " f = (2,3,4),(2,3,1),(1,1,1),2|"},
         "0 faces new, 0 gone."},
        {"a face turned and another order",
         [](auto* model) {
             auto& parts = model->Meshes[0].Parts;
             std::rotate(parts[1].Triangles[0].begin(), parts[1].Triangles[0].begin() + 1, parts[1].Triangles[0].end());
             std::reverse(parts[0].Triangles.begin(), parts[0].Triangles.end());
             std::swap(parts[0], parts[1]);
             std::swap(model->Meshes[0], model->Meshes[2]);
         },
         {},
         ""},
        {"another texture coordinate, which other corners have too",
         [](auto* model) {
             model->Meshes[0].Vertices[model->Meshes[0].Parts[0].Triangles[2][1]].TexCoord = {0.5F, 0.5F};
         },
         {" t = (0.5,0.25)|", " t = (0.5,0.25)| t = (0.5,0.5)|", "(2,5,4),(2,3,1)", "(2,5,4),(2,6,1)"},
         ""},
        {"another texture coordinate of one corner",
         AtVertex(8, [](auto* corner) { corner->TexCoord.U = 0.4F; }),
         {" t = (0.3,0.7)|", " t = (0.4,0.7)|"},
         ""},
        {"another normal of one corner",
         [](auto* model) {
             model->Meshes[0].Vertices[model->Meshes[0].Parts[0].Triangles[2][0]].Normal = {1, 0, 0};
         },
         {" n = (0,0,3)|", " n = (1,0,0)|"},
         ""},
        {"a new material",
         [](auto* model) {
             model->Materials.push_back({.Name = "Big {scale}"});
             model->Meshes[0].Parts[1].Material = 2;
         },
         {"bumpmap = \"b.bmp\"|}||", "bumpmap = \"b.bmp\"|}||material \"Big__scale_\"|{|}||", " m = \"Fin\"|",
          " m = \"Fin\"| m = \"Big__scale_\"|", " f = (2,4,3),(2,1,3),(1,1,1),2|", " f = (2,4,3),(2,1,3),(1,1,1),3|"},
         "The material \"Big__scale_\" is new; it has no textures yet."},
        {"no material", [](auto* model) { model->Meshes[0].Parts[1].Material = -1; }, {}, ""},
        {"a bone renamed", [](auto* model) { model->Bones[1].Name = "Bein"; }, {}, "1 bones have other names;"},
        {"names as Collada keeps them",
         [](auto* model) {
             model->Bones[2].Name = "Armature__j_Hip01";
             model->Meshes[1].Name = "_Beast";
         },
         {},
         ""},
        {"a mesh renamed", [](auto* model) { model->Meshes[0].Name = "Cube.003"; }, {}, "\"Beast\": 8 vertices kept"},
        {"a lone mesh renamed, without numbers",
         Both(WithoutNumbers,
              [](auto* model) {
                  model->Meshes.resize(1);
                  model->Meshes[0].Name = "Cube";
              }),
         unnumbered, "The mesh \"Eye\" is not in the file and stays as it is."},
        {"a strange mesh",
         [](auto* model) {
             model->Meshes.push_back(model->Meshes[2]);
             model->Meshes.back().Name = "Cube";
         },
         {},
         "The mesh \"Cube\" is none of the model and is left out."},
        {"no skins", WithoutSkins, {}, "0 with another bone"},
        {"a strange bone",
         Both(
             [](auto* model) {
                 model->Bones.push_back({"Wing", -1, {50, 50, 50}});
             },
             AtVertex(1, [](auto* corner) { corner->Bone = 3; })),
         {},
         "These bones are none of the model; vertices keep the bones that they had: \"Wing\"."},
        {"a strange bone in place of one",
         [](auto* model) {
             model->Bones[1] = {"Wing", -1, {50, 50, 50}};
         },
         {},
         "These bones are none of the model; vertices keep the bones that they had: \"Wing\"."},
        {"transforms applied", WithAppliedTransforms, {}, "0 moved"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Name);
        EXPECT_EQ(Merged(c.Edit), With(c.Replaced));
        EXPECT_THAT(Notes, testing::Contains(HasSubstr(c.Note)));
        EXPECT_FALSE(IsDoubtful);
        const auto renamed = static_cast<size_t>(c.Name == "a bone renamed" ? 1 : 0);
        EXPECT_THAT(Notes, testing::Contains(HasSubstr("have other names;")).Times(renamed));
    }
}

TEST_F(AModelsLikeness, IsTheSameFromTheSameFileAgain)
{
    const auto deleteAFace = [](ExchangeModel* model) {
        auto& triangles = model->Meshes[0].Parts[0].Triangles;
        triangles.erase(triangles.begin() + 2); // and a vertex with it, so that others have new numbers
    };
    const std::string once = Merged(deleteAFace);
    ASSERT_NE(once, Plain);
    deleteAFace(&InFile);
    Notes.clear();
    ASSERT_TRUE(LoadAnew(once) && MergeIntoScene(InFile, &IsDoubtful, &Notes, &Error)) << Error;
    EXPECT_EQ(ModelText(), once);
    EXPECT_THAT(Notes, testing::Contains(HasSubstr("\"Beast\": 7 vertices kept, 0 moved, 0 new, 0 gone")));
}

TEST_F(AModelsLikeness, IsDoubtfulWhereBonesStandElsewhere)
{
    (void)Merged([](ExchangeModel* model) { model->Bones[1].Head.X += 0.1F; });
    EXPECT_TRUE(IsDoubtful);
    EXPECT_THAT(Notes, testing::Contains(HasSubstr("1 of 3 bones stand elsewhere than in the model, up to 0.1")));
}

TEST_F(AModelsLikeness, IsRefusedWithTheModelAsItWas)
{
    EXPECT_EQ(Merged(Both(WithoutNumbers,
                          [](ExchangeModel* model) {
                              for (ExchangeMesh& mesh : model->Meshes) {
                                  mesh.Name = "Cube";
                              }
                          })),
              "It has no mesh of the model.");
    EXPECT_EQ(Merged([](ExchangeModel* model) {
                  ExchangeMesh& mesh = model->Meshes[2]; // the ones before it fit
                  for (int i = 0; i < 32766; ++i) {
                      mesh.Vertices.push_back({.Place = {static_cast<float>(i), 2, 3}, .TexCoord = {0, 1}});
                      mesh.Parts[0].Triangles.push_back({0, 1, static_cast<uint32_t>(mesh.Vertices.size() - 1)});
                  }
              }),
              "The mesh \"Eye\" has 32769 vertices (2 too many); a model takes 32767 of each in a mesh.");
}
