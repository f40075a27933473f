// The last trap around every event handler.
//
// Nothing that a handler throws may reach Qt's event loop. Every connection to a handler therefore
// goes through Trapped: when a handler fails, pointer and busy mode are put back, the error is
// handed to the reporter (which writes the logs and shows the message box), and the program carries
// on.
// When the outermost handler has ended, well or not, the idle step runs (it makes the data file
// durable); its errors are reported in the same way.
#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <utility>

namespace platform {
class RuntimeError;
}

namespace platform::EventTrap {

struct Report {
    QString handler;  // qualified name, for instance "frm4FMZs.cmdAdd_Click"
    int number = 0;
    QString description;
    QString subject;  // what the error is about, where that is known

    // What a person reads: "North, location 2: Disk full".
    [[nodiscard]] QString Sentence() const;
};

struct Hooks {
    // Called with each error. What it throws itself is dropped.
    std::function<void(const Report&)> report;
    // Called at a handler's start; what it gives is called when the handler fails, before the
    // report.
    std::function<std::function<void()>()> remember;
    // Called when the outermost handler has ended.
    std::function<void()> idle;
};

void Install(Hooks hooks);

// Runs `body`; what it threw, lack of memory included, or nothing. For a caller that goes on by
// itself.
std::optional<Report> Attempt(const char* handler, const std::function<void()>& body) noexcept;
// Runs `handler` under the trap. True when it ended without an error.
bool Run(const char* handler, const std::function<void()>& body) noexcept;
// Reports an error that was caught and keeps nobody from going on, as the trap would.
void ReportCaught(const char* handler, const RuntimeError& error) noexcept;
// How many trapped handlers are running now, one inside the other.
int Depth();

// For connect(): a callable that runs `body` with the signal's arguments under the trap. `handler`
// is a string literal.
template <typename Body>
auto Trapped(const char* handler, Body body) {
    return [handler, body = std::move(body)](auto&&... arguments) mutable {
        Run(handler, [&] { body(std::forward<decltype(arguments)>(arguments)...); });
    };
}

}  // namespace platform::EventTrap
