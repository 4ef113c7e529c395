// The same for the test programs of modules without widgets.
#include "Core.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
