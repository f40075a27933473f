#include "platform/EventTrap.h"

#include <exception>
#include <new>

#include "jet/error.h"
#include "platform/RuntimeError.h"

namespace platform::EventTrap {
namespace {

Hooks hooks;
int depth = 0;

// The number that errors without one of their own get.
constexpr int kInternalError = 51;

Report ReportOf(const char* handler) {
    const QString name = QString::fromLatin1(handler);
    try {
        throw;
    } catch (const RuntimeError& error) {
        return Report{name, error.Number(), error.Description(), error.Subject()};
    } catch (const jet::Error& error) {
        return Report{name, error.Number(), QString::fromUtf8(error.what()), {}};
    } catch (const std::bad_alloc&) {
        return Report{name, kOutOfMemory, QStringLiteral("Out of memory"), {}};
    } catch (const std::exception& error) {
        return Report{name,
                      kInternalError,
                      QStringLiteral("Internal error: ") + QString::fromUtf8(error.what()),
                      {}};
    } catch (...) {
        return Report{name, kInternalError, QStringLiteral("Internal error"), {}};
    }
}

// What can be done about it may follow on further lines.
QStringView CauseOf(const Report& report) {
    const QStringView text(report.description);
    const qsizetype end = text.indexOf(u'\n');
    return (end < 0 ? text : text.left(end)).trimmed();
}

// A reporter that fails has nobody to turn to.
void ReportTo(const Report& report) noexcept {
    if (hooks.report) {
        Attempt("EventTrap.Report", [&report] { hooks.report(report); });
    }
}

}  // namespace

QString Report::Sentence() const {
    const bool isNamed = subject.isEmpty() || description.startsWith(subject);
    return isNamed ? description : subject + QStringLiteral(": ") + description;
}

void Install(Hooks newHooks) {
    hooks = std::move(newHooks);
}

std::optional<Report> Attempt(const char* handler, const std::function<void()>& body) noexcept {
    try {
        body();
        return std::nullopt;
    } catch (...) {
        try {
            return ReportOf(handler);
        } catch (...) {
            // Not even the memory for a sentence: empty texts take none.
            return Report{QString(), kOutOfMemory, QString(), {}};
        }
    }
}

bool Run(const char* handler, const std::function<void()>& body) noexcept {
    std::function<void()> putBack;
    if (hooks.remember) {
        Attempt(handler, [&putBack] { putBack = hooks.remember(); });
    }
    ++depth;
    const std::optional<Report> failure = Attempt(handler, body);
    if (failure && putBack) {
        Attempt(handler, putBack);
    }
    // Before the reports, which wait for the user.
    std::optional<Report> idleFailure;
    if (depth == 1 && hooks.idle) {
        idleFailure = Attempt(handler, hooks.idle);
    }
    --depth;
    if (failure) {
        ReportTo(*failure);
    }
    // The same cause is reported once.
    if (idleFailure && (!failure || CauseOf(*idleFailure) != CauseOf(*failure))) {
        ReportTo(*idleFailure);
    }
    return !failure && !idleFailure;
}

void ReportCaught(const char* handler, const RuntimeError& error) noexcept {
    Attempt(handler, [&] {
        ReportTo(
            {QString::fromLatin1(handler), error.Number(), error.Description(), error.Subject()});
    });
}

int Depth() {
    return depth;
}

}  // namespace platform::EventTrap
