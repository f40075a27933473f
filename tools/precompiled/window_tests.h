// What tests with windows read.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "widgets.h"
