#include "weights/modWeights.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string_view>
#include <vector>

#include "app/modBytes.h"
#include "app/modFrontEnd.h"
#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "app/modVersion.h"
#include "model/modLostAssignments.h"
#include "modFiles.h"
#include "weights/modPointTree.h"

namespace {

// Header: magic, three version numbers, bone count, name, vertex count. Record: three floats and a bone. All numbers
// are little-endian, nothing is padded.
constexpr std::string_view magic = "BWRT";
constexpr size_t versionAt = 4;
constexpr size_t boneCountAt = 10;
constexpr size_t nameAt = 12;
constexpr size_t nameSize = 24;
constexpr size_t vertexCountAt = 36;
constexpr size_t headerSize = 40;
constexpr size_t recordSize = 14;
constexpr double tolerance = 0.002; ///< by position; sums with it are worked out in double precision

void Put(std::string* bytes, uint32_t value, int size)
{
    for (int shift = 0; shift < 8 * size; shift += 8) {
        bytes->push_back(static_cast<char>((value >> shift) & 0xFFU));
    }
}

float GetFloat(std::string_view bytes, size_t at)
{
    return std::bit_cast<float>(LittleEndian<uint32_t>(bytes, at));
}

/// The records that are complete in the file, at most one for each vertex of the mesh.
std::vector<WeightsVertex> ReadRecords(std::string_view bytes, const MvmMesh& mesh)
{
    const size_t whole = (bytes.size() - headerSize) / recordSize;
    std::vector<WeightsVertex> records(std::min(whole, mesh.VertexBones.Items.size()));
    size_t at = headerSize;
    for (WeightsVertex& record : records) {
        record = {{GetFloat(bytes, at), GetFloat(bytes, at + 4), GetFloat(bytes, at + 8)},
                  LittleEndian<int16_t>(bytes, at + 12)};
        at += recordSize;
    }
    return records;
}

/// True when the record's bone can be assigned; a bone above the skeleton goes to the Info Log.
bool CanAssign(const WeightsVertex& record, int32_t number)
{
    if (record.Bone > BoneCount()) {
        LogLine("Cannot assign vertex " + std::to_string(number) + " to bone " + std::to_string(record.Bone) +
                ", bone does not exist.");
        return false;
    }
    return record.Bone >= 0;
}

void AssignByIndex(const std::vector<WeightsVertex>& records, MvmMesh* mesh)
{
    int32_t number = 0;
    for (const WeightsVertex& record : records) {
        ++number;
        if (CanAssign(record, number)) {
            mesh->VertexBones[number] = record.Bone;
        }
    }
}

bool Confirm(const std::string& line)
{
    return AskYesNoCancel(BoxIcon::Warning, line + "\nWould you like to continue?") == BoxAnswer::Yes;
}

bool ConfirmVersion()
{
    const std::string title = ProgramTitle;
    return AskYesNoCancel(BoxIcon::Warning, "File version is not compatible with this version of " + title +
                                                ".\r\nChoosing \"Yes\" may cause " + title +
                                                " to become unstable.\r\n\r\nWould you like to try anyway?") ==
           BoxAnswer::Yes;
}

/// Holds a complete header with the right magic against the program, the skeleton and the mesh. False when the load
/// must not go on.
bool CheckHeader(std::string_view bytes, const MvmMesh& mesh)
{
    const bool sameVersion = LittleEndian<int16_t>(bytes, versionAt) == VersionMajor &&
                             LittleEndian<int16_t>(bytes, versionAt + 2) == VersionMinor &&
                             LittleEndian<int16_t>(bytes, versionAt + 4) == VersionRevision;
    if (!sameVersion && !ConfirmVersion()) {
        return false;
    }
    if (LittleEndian<int16_t>(bytes, boneCountAt) != BoneCount() &&
        !Confirm("Number of bones in the weight information file do not match loaded number of bones.")) {
        return false;
    }
    std::string_view name = bytes.substr(nameAt, nameSize);
    name = name.substr(0, name.find_last_not_of(' ') + 1);
    if (name != mesh.Name && !Confirm("Name of current mesh does not match weight information file.")) {
        return false;
    }
    const auto vertexCount = LittleEndian<int32_t>(bytes, vertexCountAt);
    return vertexCount == mesh.VertexCount() ||
           Confirm("Number of vertices of current mesh does not match weight information file.");
}

void SayError(const std::string& operation, const std::string& error)
{
    ShowMessage(BoxIcon::Stop, "Runtime error in " + operation + "\n" + error);
}

std::string WeightsBytes(const MvmMesh& mesh)
{
    std::string bytes(magic);
    for (const int16_t number : {VersionMajor, VersionMinor, VersionRevision, static_cast<int16_t>(BoneCount())}) {
        Put(&bytes, static_cast<uint16_t>(number), 2);
    }
    std::string name = mesh.Name;
    name.resize(nameSize, ' ');
    bytes += name;
    Put(&bytes, static_cast<uint32_t>(mesh.VertexCount()), 4);
    for (int32_t v = 1; v <= mesh.VertexCount(); ++v) {
        const Vec3& place = mesh.Vertices[v];
        for (const float coordinate : {place.X, place.Y, place.Z}) {
            Put(&bytes, std::bit_cast<uint32_t>(coordinate), 4);
        }
        const int16_t bone = mesh.VertexBones.Has(v) ? mesh.VertexBones[v] : int16_t{0};
        Put(&bytes, static_cast<uint16_t>(bone), 2);
    }
    return bytes;
}

/// Reads and assigns after the questions that the file raises.
void ReadWeights(const std::string& file, int16_t target)
{
    MvmMesh* mesh = &Meshes[target];
    std::string bytes;
    std::string error;
    if (!ReadWhole(file, &bytes, &error)) {
        SayError("LoadWeights", error);
        return;
    }
    if (!bytes.starts_with(magic)) {
        ShowMessage(BoxIcon::Warning, "File is not an weight information file.");
        return;
    }
    if (bytes.size() < headerSize) {
        SayError("LoadWeights", "The file ends within its header.");
        return;
    }
    if (!CheckHeader(bytes, *mesh)) {
        return;
    }
    AskWeightsAssignMode();
    if (WeightsAssignMode == 0) {
        return;
    }
    const std::vector<WeightsVertex> records = ReadRecords(bytes, *mesh);
    Touch(ScenePart::Assignments, target);
    if (WeightsAssignMode == 1) {
        AssignByIndex(records, mesh);
    } else {
        AssignByPosition(records, mesh);
    }
    if (LogDirty) {
        ShowInfoLog();
    }
    Redraw(true);
}

} // namespace

void AssignByPosition(const std::vector<WeightsVertex>& records, MvmMesh* mesh)
{
    std::vector<TreeNode> nodes;
    int32_t number = 0;
    for (const WeightsVertex& record : records) {
        if (CanAssign(record, ++number)) {
            nodes.push_back({.At = PlaceOf(record.Position), .Index = number});
        }
    }
    const PointTree tree = BuildPointTree(std::move(nodes));
    for (int32_t v = 1; v <= mesh->VertexBones.Count(); ++v) {
        const Place place = PlaceOf(mesh->Vertices[v]);
        // The sums are told from the record, so the search is a little wider than the test.
        const double size = std::fabs(place[0]) + std::fabs(place[1]) + std::fabs(place[2]);
        const auto reaches = [&place](const TreeNode& record) {
            for (size_t axis = 0; axis < 3; ++axis) {
                const double center = record.At[axis];
                if (!(center - tolerance < place[axis] && center + tolerance > place[axis])) {
                    return false;
                }
            }
            return true;
        };
        if (const int32_t last = HighestInside(tree, BoxAround(place, tolerance + 1e-12 * (1 + size)), reaches)) {
            mesh->VertexBones[v] = records[static_cast<size_t>(last) - 1].Bone;
        }
    }
}

void SaveWeights(const std::string& file, int16_t mesh)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    if (BoneCount() > INT16_MAX) {
        SayError("SaveWeights", "The model has more bones than the file can tell.");
        return;
    }
    const auto make = [mesh](const PartWriter& write) { write(WeightsBytes(Meshes[mesh])); };
    if (SaveGuarded("SaveWeights", file, {}, make)) {
        ShowMessage(BoxIcon::Information, "File saved.");
        LogLostAssignments();
        Redraw(true);
    }
}

bool IsCutOff(const std::string& file, int32_t* records, int32_t* told)
{
    std::string bytes;
    std::string error;
    if (!ReadWhole(file, &bytes, &error) || bytes.size() < headerSize) {
        return false;
    }
    *told = LittleEndian<int32_t>(bytes, vertexCountAt);
    *records = static_cast<int32_t>((bytes.size() - headerSize) / recordSize);
    return *records < *told;
}

void LoadWeights(const std::string& file, int16_t mesh)
{
    if (IsValidMesh(mesh)) {
        RunGuarded("Runtime error in LoadWeights", [&] { ReadWeights(file, mesh); });
    }
}
