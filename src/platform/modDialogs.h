#pragma once

#include <string>

// Modal boxes. All texts are UTF-8; boxes stand under the program's title. The toolkit implements these; tests have a
// form that gives scripted answers and records what was asked.

enum class BoxIcon { Information, Warning, Stop, Question };
enum class BoxAnswer { Yes, No, Cancel };

/// A message with an OK button.
void ShowMessage(BoxIcon icon, const std::string& text);
/// A question with Yes, No and Cancel. Closing the box is Cancel.
BoxAnswer AskYesNoCancel(BoxIcon icon, const std::string& text);
/// A text prompt; empty when cancelled.
std::string AskText(const std::string& title, const std::string& prompt, const std::string& initial);

/// A chooser for one file. Filter is "Name (*.ext)|*.ext|..."; StartIn is a folder or a file in it.
struct FileChooser {
    bool Save = false; ///< asks before an existing file is replaced and refuses a read-only one
    std::string Title;
    std::string Filter;
    std::string StartIn;
    std::string FileName;
};
/// Shows the chooser. False on Cancel; else *path is the chosen path in the file system's form.
bool ChooseFile(const FileChooser& chooser, std::string* path);
