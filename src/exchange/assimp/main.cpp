#include <cstdio>
#include <string>

#include "modAssimpRead.h"
#include "modGltfWrite.h"

// Reads a model of another program for bwrt, which lets it have only so much memory and time.

int main(int count, char** arguments)
{
    constexpr int failed = 2;
    if (count != 2) {
        (void)std::fputs("This program is started by bwrt.\n", stderr);
        return failed;
    }
    ExchangeModel model;
    std::string file;
    std::string error;
    if (!ReadByAssimp(arguments[1], &model, &error) || !GlbOf(model, &file, &error)) {
        (void)std::fprintf(stderr, "%s\n", error.c_str());
        return failed;
    }
    for (const std::string& note : model.Notes) {
        (void)std::fprintf(stderr, "%s\n", note.c_str());
    }
    return std::fwrite(file.data(), 1, file.size(), stdout) == file.size() && std::fflush(stdout) == 0 ? 0 : failed;
}
