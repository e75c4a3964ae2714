#include <cstring>

#include <gtest/gtest.h>

#include <QApplication>

#include "app/modFrontEnd.h"
#include "modEvents.h"
#include "modSetup.h"

int main(int argc, char* argv[])
{
    bool listing = false;
    for (int i = 1; i < argc; i++) {
        listing = listing || std::strcmp(argv[i], "--gtest_list_tests") == 0;
    }
    testing::InitGoogleTest(&argc, argv);
    if (listing) {
        // Telling the names of the tests takes no display.
        return RUN_ALL_TESTS();
    }
    QApplication application(argc, argv);
    PrepareApplication();
    QApplication::setQuitOnLastWindowClosed(false);
    PumpInterval = 1000; // so that also the load of a short file meets events
    return RUN_ALL_TESTS();
}
