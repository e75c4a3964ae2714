#include "app/modMisc.h"

#include "modFiles.h"

bool FileExists(const std::string& path)
{
    return !IsHidden(path) && IsPlainFile(path);
}
