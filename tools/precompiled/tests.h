// What tests without windows read.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standard.h"
