// What most files with charts read.
#pragma once

#include <qcustomplot.h>

#include "standard.h"
