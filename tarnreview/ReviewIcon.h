// The picture of the program: a table's bars under a lens.
#pragma once

#include <QIcon>

// Drawn when it is first looked at.
QIcon ReviewIcon();
