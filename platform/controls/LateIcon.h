// Icons that are made when they are first drawn.
#pragma once

#include <QIcon>
#include <functional>

namespace platform {

// An icon that calls `make` once it is looked at, and then is what that returned.
QIcon LateIcon(std::function<QIcon()> make);

}  // namespace platform
