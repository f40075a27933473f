#include "worksheets/MissingRows.h"

#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"

namespace MissingRows {

void Told(const char* handler, const std::function<void()>& save) {
    try {
        save();
    } catch (const platform::RuntimeError& error) {
        if (error.Number() != platform::kNoCurrentRecord) {
            throw;
        }
        platform::EventTrap::Run(handler, [&error] { throw platform::RuntimeError(error); });
    }
}

}  // namespace MissingRows
