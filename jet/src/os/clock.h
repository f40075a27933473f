// The time of day, as the catalog stamps it on the objects that it makes.
#pragma once

namespace jet {

// Local time in days since 1899-12-30, whole seconds.
double LocalTime();

}  // namespace jet
