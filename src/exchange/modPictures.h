#pragma once

#include <string>
#include <vector>

#include "app/modMvmDef.h"
#include "modExchangeModel.h"
#include "modFileListing.h"

// The maps of materials: BMP beside a model, PNG or JPEG in files of other programs. Folders end with a separator.

/// Makes one PNG of a material's colour and opacity maps, named after the colour map; *hasOpacity says whether an opacity
/// map is in it. False when there is no picture that can be used, of which the Info Log tells. `names` is empty for the
/// first question about a folder.
bool PngOfMaterial(const MvmMaterial& material, const std::string& folder, FolderNames* names, ExchangeImage* image,
                   bool* hasOpacity = nullptr);

/// A file that is to be written beside a new model.
struct MapFile {
    std::string Path{};
    std::string Bytes{};
};
/// Makes the maps of a material from its picture, with the material's colour over it and with sides that are powers of
/// two, and names them in *result. An opacity map comes from a picture with transparent places, for a material that has
/// opacity. Files that have to be written are added to *files: a file that is there, in the folder or in *files, is
/// taken when it holds the same, and else left alone. *notes gains a sentence for a picture that was scaled.
bool MakeMaps(const ExchangeImage& image, const ExchangeMaterial& material, const std::string& folder,
              MvmMaterial* result, std::vector<MapFile>* files, std::vector<std::string>* notes, std::string* error);
/// Adds the maps that a material already names to *files, made from its picture, for a folder where they are not there.
/// Leaves out what cannot be made: another kind of file, or a name that not every system takes.
void AddNamedMaps(const ExchangeImage& image, const MvmMaterial& material, const std::string& folder,
                  std::vector<MapFile>* files);
/// A map for a material without a picture: a small one of its colour.
bool MakeColorMap(const ExchangeMaterial& material, const std::string& folder, MvmMaterial* result,
                  std::vector<MapFile>* files, std::string* error);
