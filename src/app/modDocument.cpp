#include "app/modDocument.h"

#include "app/modVersion.h"
#include "model/modMvmWrite.h"
#include "platform/modDialogs.h"
#include "platform/modFiles.h"

bool SaveModelFile(const std::string& path)
{
    // A hidden file is no file for the rest of the program, yet its content must not get lost either.
    if (!IsPlainFile(path)) {
        return WriteMVM(path);
    }
    if (IsReadOnly(path)) {
        ShowMessage(BoxIcon::Warning, "Can't overwrite file.\nFile is marked read only.");
        return false;
    }
    const std::string guard = path + ".old";
    std::string error;
    if (!GuardFile(path, guard, &error)) {
        ShowMessage(BoxIcon::Stop, "Can't make a safety copy of the file.\n" + error);
        return false;
    }
    const bool written = WriteMVM(path);
    if (!DeleteFile(guard, &error)) {
        ShowMessage(BoxIcon::Warning, "Can't delete the safety copy \"" + guard + "\".\n" + error);
    }
    return written;
}

std::string CaptionFor(const std::string& path)
{
    const std::string version =
        std::to_string(VersionMajor) + "." + std::to_string(VersionMinor) + "." + std::to_string(VersionRevision);
    const std::string file = path.empty() ? std::string() : " - [" + path + "]";
    return std::string(ProgramShortName) + " " + version + file;
}
