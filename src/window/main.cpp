#include <string>

#include <QApplication>

#include "main/frmMain.h"
#include "modSetup.h"

int main(int argc, char* argv[])
{
    // The command line is one path, whatever it looks like; the toolkit must take no options out of it.
    std::string commandLine;
    for (int i = 1; i < argc; i++) {
        commandLine += (i > 1 ? " " : "") + std::string(argv[i]);
    }
    int ownArguments = argc > 0 ? 1 : 0;
    QApplication application(ownArguments, argv);
    PrepareApplication();

    frmMain window;
    window.Start(commandLine);
    // A start that was ended during its load has nothing left to wait for.
    return window.Unloaded() ? 0 : QApplication::exec();
}
