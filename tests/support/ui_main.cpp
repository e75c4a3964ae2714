#include "modSetup.h"
#include "support/ui_window.h"

int main(int argc, char* argv[])
{
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); // the tests press the parts of the toolkit's chooser
    QApplication application(argc, argv);
    PrepareApplication();
    QApplication::setQuitOnLastWindowClosed(false);
    PumpInterval = 1000; // so that also the load of a short file meets events
    return RUN_ALL_TESTS();
}
