#include "model/modRescue.h"

#include <exception>

#include "app/modGuard.h"
#include "app/modMisc.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "model/modStrings.h"
#include "modFiles.h"

namespace {

constexpr const char* ending = ".rescued";

std::string TemporaryPath(const std::string& name)
{
    return TemporaryFolder() + (name.empty() ? "unnamed.mvm" : name) + ending;
}

bool WriteTo(const std::string& path, std::string* error)
{
    SaveRest rest;
    return SaveWhole(path, {}, WriteModelText, &rest, error);
}

} // namespace

std::string RescuePath(const std::string& model)
{
    return model.empty() ? TemporaryPath({}) : model + ending;
}

bool RescueModel(std::string* path, std::string* error)
{
    path->clear();
    if (!ModelOpen || LoadRunning || !IsSceneChanged()) {
        return true;
    }
    try {
        RollBackStep(); // a command in its middle counts as not given
        *path = RescuePath(CurrentFile);
        if (WriteTo(*path, error)) {
            return true;
        }
        *path = TemporaryPath(std::string(FileNameOf(CurrentFile)));
        return WriteTo(*path, error);
    } catch (const std::exception& exception) {
        *error = WordsOf(exception);
        return false;
    }
}
