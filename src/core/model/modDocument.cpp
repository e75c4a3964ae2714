#include "model/modDocument.h"

#include "model/modLostAssignments.h"

#include "app/modFrontEnd.h"
#include "app/modUndo.h"
#include "app/modVersion.h"
#include "model/modMvmWrite.h"
#include "modFiles.h"

SaveOutcome SaveModelFile(const std::string& path)
{
    FileKind kind = FileKind::None;
    std::string error;
    if (!KindOfFile(path, &kind, &error)) {
        ShowMessage(BoxIcon::Stop, "Runtime error in WriteMVM\n" + error);
        return SaveOutcome::Failed;
    }
    if (kind == FileKind::Plain && IsReadOnly(path)) {
        ShowMessage(BoxIcon::Warning, "Can't overwrite file.\nFile is marked read only.");
        return SaveOutcome::Refused;
    }
    if (!WriteMVM(path, path + ".old")) {
        return SaveOutcome::Failed;
    }
    MarkSceneSaved();
    LogLostAssignments();
    return SaveOutcome::Saved;
}

std::string CaptionFor(const std::string& path)
{
    const std::string file = path.empty() ? std::string() : " - [" + path + "]";
    return std::string(ProgramShortName) + " " + VersionText + file;
}
