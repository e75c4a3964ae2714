#include <cstdio>
#include <string>
#include <vector>

#include <QApplication>

#include "main/frmMain.h"
#include "modCommandLine.h"
#include "modSetup.h"

namespace {

/// The toolkit ends the program when it finds no screen; its own words do not say what to do about it.
void TellWhatIsMissing(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    std::fprintf(stderr, "%s\n", qPrintable(text));
    if (type == QtFatalMsg && qEnvironmentVariableIsSet("WAYLAND_DISPLAY") && !qEnvironmentVariableIsSet("DISPLAY")) {
        std::fprintf(stderr,
                     "This desktop is a Wayland one without X. Please install the toolkit's part for it (the package "
                     "\"qt6-wayland\" on Debian and Ubuntu, \"qt6-qtwayland\" on Fedora) and start again.\n");
    }
}

} // namespace

int main(int argc, char* argv[])
{
    // The command line is one path, whatever it looks like; the toolkit must take no options out of it.
    std::string commandLine;
    const std::vector<std::string> words = CommandLineArguments(argc, argv);
    for (size_t i = 0; i < words.size(); i++) {
        commandLine += (i > 0 ? " " : "") + words[i];
    }
    int ownArguments = argc > 0 ? 1 : 0;
    const QtMessageHandler usual = qInstallMessageHandler(TellWhatIsMissing);
    QApplication application(ownArguments, argv);
    qInstallMessageHandler(usual);
    PrepareApplication();

    frmMain window;
    window.Start(commandLine);
    // A start that was ended during its load has nothing left to wait for.
    return window.Unloaded() ? 0 : QApplication::exec();
}
