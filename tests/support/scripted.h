#pragma once

#include <deque>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/modFrontEnd.h"

// The form of the platform and of the windows that core and render tests link: it records what the core asked for and
// answers as the test told it to.
namespace scripted {

struct Box {
    BoxIcon Icon;
    std::string Text;
};

inline std::vector<Box> Messages;                               ///< shown by ShowMessage
inline std::vector<Box> Questions;                              ///< asked by AskYesNoCancel
inline std::deque<BoxAnswer> Answers;                           ///< taken from the front; Cancel when empty
inline std::deque<int> AssignModes;                             ///< answers of AskWeightsAssignMode; 0 when empty
inline std::vector<std::string> Log;                            ///< lines of the Info Log
inline std::vector<std::pair<std::string, std::string>> Panels; ///< key and text, in order
inline std::vector<std::pair<int, int>> Progress;               ///< (maximum, value) of each step
inline int LogShown = 0;
inline int Redraws = 0;
inline std::vector<uint32_t> DeletedTextures; ///< names given to DeleteGLTexture, where there is no OpenGL
inline std::vector<BoneRow> BoneRows[2];
inline int32_t SelectedRow[2] = {-1, -1}; ///< number of the selected row, -1 for none
inline std::string Folder;                ///< what ProgramFolder gives
inline int32_t LargestTextureSide = 1 << 30;
inline std::string DecimalMark = "."; ///< what LocaleDecimalMark gives

// File steps: count them, and let them fail. A step fails when its number (1 for the first since the last reset) is
// FailAt, or, with FailAfter set, also every later one.
inline int Steps = 0;
inline int FailAt = 0;
inline bool FailAfter = false;
inline int FailError = 0;                  ///< errno of the failing step; ENOSPC when 0
inline bool BreakReplacement = false;      ///< a replacement that fails ends in its middle, as on Windows it can
inline std::set<std::string> MissingSteps; ///< names of steps that the file system does not know: EPERM

/// The panel's latest text; empty when none was set.
std::string Panel(const std::string& key);

/// Forgets all of the above and puts the scene and every module back to the state of the program's start.
void Reset();

} // namespace scripted
