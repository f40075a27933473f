#include "worksheets/nvc/RoundSignificant.h"

#include <cmath>

#include "base/u91Trace.h"
#include "platform/text/Numbers.h"

double RoundSignificant(double number, int digits) {
    u91Trace::Procedure(QStringLiteral("RoundSignificant"));
    const double magnitude = std::fabs(number);
    double power = 1;
    while (power < magnitude) {
        power *= 10;
    }
    const double scale = std::pow(10.0, digits);
    const double unit = power / scale;
    const std::int32_t units = platform::CLng(magnitude / unit);
    // A whole unit multiplies exactly; a fraction of one is divided, which is nearer than
    // multiplying with a unit that has no exact form.
    const double rounded = unit >= 1 ? units * unit : units / (scale / power);
    return std::signbit(number) ? -rounded : rounded;
}
