// The main function of test programs whose modules need an event loop and no windows.
#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
