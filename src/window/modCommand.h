#pragma once

#include <functional>

/// Perform for a command that is held elsewhere.
void PerformCommand(const char* name, const std::function<void()>& command);

/// Runs a command of the window. Whatever the toolkit calls goes through here, since an exception must not run through
/// it: one ends the command with a stop box that gives `name`, takes back what it changed, and brings the lists, the
/// progress and the view in line with the scene. What the outermost command changes in the scene is one step to undo; a
/// command inside it, as of a dialog that it shows, is a part of it.
template <typename Command>
void Perform(const char* name, Command&& command)
{
    PerformCommand(name, std::ref(command)); // a reference, since a copy could take memory outside the handler
}

/// Goes back to the state before the last step, or forward again, and says so in the panel "toolhelp".
void UndoCommand();
void RedoCommand();
