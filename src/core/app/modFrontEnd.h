#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Bitmap;

// All that the core asks of the world above it. Who links the core supplies an implementation: the program its window,
// the tests one that records what was asked. All texts are UTF-8.

enum class BoxIcon { Information, Warning, Stop, Question };
enum class BoxAnswer { Yes, No, Cancel };

/// A modal message under the program's title, with an OK button.
void ShowMessage(BoxIcon icon, const std::string& text);
/// A modal question with Yes, No and Cancel. Closing it is Cancel.
BoxAnswer AskYesNoCancel(BoxIcon icon, const std::string& text);
/// Asks how to assign the records of a weights file; the answer is WeightsAssignMode.
void AskWeightsAssignMode();
inline int16_t WeightsAssignMode = 0; ///< 0 cancelled, 1 by index, 2 by position

/// Shows `text` in the status panel with this key: "toolhelp" or "progress".
void SetPanelText(const std::string& key, const std::string& text);
/// Shows the progress bar. A maximum below 1 counts as 1.
void ProgressBegin(int32_t maximum);
/// Moves the bar to `value`, held to 1..maximum. Serves pending events when enough time has passed since the last time.
void ProgressStep(int32_t value);
/// Serves pending events in the middle of a step, when enough time has passed since the last time. False when the
/// operation is to end.
[[nodiscard]] bool ProgressServe();
/// Shows the value of the last step, which a step leaves to the next round of events. For a message during the
/// operation.
void ProgressShow();
void ProgressEnd();
inline bool StopRequested = false; ///< the user ends the operation under way: it ends at its next step

/// Appends one line to the Info Log and sets LogDirty.
void LogLine(const std::string& text);
/// Brings the Info Log into view and clears LogDirty.
void ShowInfoLog();
inline bool LogDirty = false; ///< lines went to the log that the user has not been shown

/// Asks for a new frame of the 3D view. Several requests inside one event may become one frame.
void Redraw(bool swap);
/// The longest side of a picture that OpenGL takes, in pixels.
[[nodiscard]] int32_t LargestTextureSide();
/// Hands a picture to OpenGL and gives its name there, 0 where there is no context. False, with *error set, when OpenGL
/// cannot take it.
bool MakeGLTexture(const Bitmap& bitmap, uint32_t* name, std::string* error);
void DeleteGLTexture(uint32_t name);

struct BoneRow {
    std::string Text{};
    int32_t Number = 0; ///< bone index, 0 for the row "NONE"
};
/// Replaces all rows of a bone list, 0 the ordinary bones, 1 the shadow bones; no row is selected afterwards.
void SetBoneRows(int16_t list, const std::vector<BoneRow>& rows);
/// Selects the row with this number without any event; leaves the selection alone when there is none.
void SelectBoneRow(int16_t list, int32_t number);
