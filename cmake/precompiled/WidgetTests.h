// The same for the test programs with widgets.
#include "Widgets.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
