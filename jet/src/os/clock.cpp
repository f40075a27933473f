#include "os/clock.h"

#include <chrono>
#include <cstdlib>
#include <ctime>

namespace jet {

double LocalTime() {
    std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    // Builds that are to give the same files every time set the clock by this custom.
    if (const char* fixed = std::getenv("SOURCE_DATE_EPOCH")) {
        now = static_cast<std::time_t>(std::strtoll(fixed, nullptr, 10));
    }
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    using std::chrono::day;
    using std::chrono::month;
    using std::chrono::sys_days;
    using std::chrono::year;
    const sys_days date = year(local.tm_year + 1900) /
                          month(static_cast<unsigned>(local.tm_mon + 1)) /
                          day(static_cast<unsigned>(local.tm_mday));
    const sys_days first = year(1899) / month(12) / day(30);
    const int seconds = (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
    return static_cast<double>((date - first).count()) + seconds / 86400.0;
}

}  // namespace jet
