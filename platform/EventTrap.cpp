#include "platform/EventTrap.h"

#include <exception>
#include <new>
#include <optional>
#include <vector>

#include "jet/error.h"
#include "platform/RuntimeError.h"

namespace platform::EventTrap {
namespace {

Hooks hooks;
int depth = 0;

// The number that errors without one of their own get.
constexpr int kInternalError = 51;

// Runs the body; what it threw, or nothing.
std::optional<Report> Attempt(const char* handler, const std::function<void()>& body) {
    const QString name = QString::fromLatin1(handler);
    try {
        body();
        return std::nullopt;
    } catch (const RuntimeError& error) {
        return Report{name, error.Number(), error.Description()};
    } catch (const jet::Error& error) {
        return Report{name, error.Number(), QString::fromUtf8(error.what())};
    } catch (const std::bad_alloc&) {
        return Report{name, kOutOfMemory, QStringLiteral("Out of memory")};
    } catch (const std::exception& error) {
        return Report{name, kInternalError,
                      QStringLiteral("Internal error: ") + QString::fromUtf8(error.what())};
    } catch (...) {
        return Report{name, kInternalError, QStringLiteral("Internal error")};
    }
}

// What can be done about it may follow on further lines.
QString CauseOf(const Report& report) {
    return report.description.section(u'\n', 0, 0).trimmed();
}

}  // namespace

void Install(Hooks newHooks) {
    hooks = std::move(newHooks);
}

bool Run(const char* handler, const std::function<void()>& body) {
    std::function<void()> putBack;
    if (hooks.remember) {
        putBack = hooks.remember();
    }
    std::vector<Report> reports;
    ++depth;
    if (auto failure = Attempt(handler, body)) {
        reports.push_back(*failure);
        if (putBack) {
            putBack();
        }
    }
    // Before the reports, which wait for the user.
    if (depth == 1 && hooks.idle) {
        auto failure = Attempt(handler, hooks.idle);
        // The same cause is told once.
        if (failure && (reports.empty() || CauseOf(*failure) != CauseOf(reports.front()))) {
            reports.push_back(*failure);
        }
    }
    --depth;
    for (const Report& report : reports) {
        if (hooks.report) {
            hooks.report(report);
        }
    }
    return reports.empty();
}

int Depth() {
    return depth;
}

}  // namespace platform::EventTrap
