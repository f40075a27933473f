// The one way to connect a form's handler: one mention gives the connection, the handler's name in
// the error log, its entry in the trace log and the last trap around it.
//
//     Handle<&frm4FMZs::cmdAdd_Click>(cmdAdd_, &QPushButton::clicked, this);
#pragma once

#include <QObject>
#include <QString>

#include <array>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <utility>

#include "base/u91Trace.h"
#include "platform/EventTrap.h"

namespace base {

// What a handler's call leaves in the trace log.
enum class Entry {
    kQualified,  // "frm4FMZs.cmdAdd_Click"
    kBare,       // "cmdAdd_Click"
    kOwn,        // the handler writes its entry itself: it holds values, or others call it too
};

namespace handle_parts {

// The compiler's words for a function template's argument end in "&frm4FMZs::cmdAdd_Click]", with
// something behind a semicolon in some of them.
template <auto Handler>
constexpr std::string_view Words() {
    std::string_view words = __PRETTY_FUNCTION__;
    words = words.substr(0, words.find_last_of("];"));
    words = words.substr(0, words.find(';'));
    const std::size_t begin = words.rfind('&') + 1;
    return words.substr(begin, words.find_last_not_of(" )") + 1 - begin);
}

// The class and the function: what stands behind the last "::" but one.
template <auto Handler>
constexpr std::string_view ClassAndFunction() {
    const std::string_view words = Words<Handler>();
    const std::size_t outer = words.rfind("::", words.rfind("::") - 1);
    return outer == std::string_view::npos ? words : words.substr(outer + 2);
}

// "frm4FMZs.cmdAdd_Click", ended by a zero.
template <auto Handler>
constexpr auto MakeName() {
    constexpr std::string_view words = ClassAndFunction<Handler>();
    constexpr std::size_t colons = words.rfind("::");
    static_assert(colons != std::string_view::npos, "a handler is a member of its form");
    std::array<char, words.size()> name{};
    for (std::size_t i = 0; i < colons; ++i) {
        name[i] = words[i];
    }
    name[colons] = '.';
    for (std::size_t i = colons + 2; i < words.size(); ++i) {
        name[i - 1] = words[i];
    }
    return name;
}

template <auto Handler>
inline constexpr auto kName = MakeName<Handler>();

// How many of a signal's arguments a handler takes.
template <typename Form, typename... Arguments>
constexpr std::size_t Taken(void (Form::*)(Arguments...)) {
    return sizeof...(Arguments);
}

template <auto Handler, typename Form, typename Tuple, std::size_t... I>
void Call(Form& form, Tuple&& arguments, std::index_sequence<I...> /*taken*/) {
    (form.*Handler)(std::get<I>(std::forward<Tuple>(arguments))...);
}

inline void Write(Entry entry, std::string_view name) {
    if (entry == Entry::kBare) {
        name.remove_prefix(name.rfind('.') + 1);
    }
    if (entry != Entry::kOwn) {
        u91Trace::Procedure(QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size())));
    }
}

}  // namespace handle_parts

// "frm4FMZs.cmdAdd_Click" of &frm4FMZs::cmdAdd_Click.
template <auto Handler>
constexpr const char* HandlerName() {
    return handle_parts::kName<Handler>.data();
}

// Runs a handler under the trap, with its entry, as a signal would.
template <auto Handler, Entry entry = Entry::kQualified, typename Form, typename... Arguments>
void RunHandler(Form& form, Arguments&&... arguments) {
    platform::EventTrap::Run(HandlerName<Handler>(), [&] {
        handle_parts::Write(entry, HandlerName<Handler>());
        handle_parts::Call<Handler>(form,
                                    std::forward_as_tuple(std::forward<Arguments>(arguments)...),
                                    std::make_index_sequence<handle_parts::Taken(Handler)>());
    });
}

// Connects a signal to a handler of `form`, which takes as many of the signal's arguments as it
// has parameters.
template <auto Handler, Entry entry = Entry::kQualified, typename Sender, typename Signal,
          typename Form>
QMetaObject::Connection Handle(const Sender* sender, Signal signal, Form* form,
                               Qt::ConnectionType type = Qt::AutoConnection) {
    return QObject::connect(
        sender, signal, form,
        // While a form is being destroyed, its last signals still come; what is left of it by then
        // is no form and has no handlers.
        [object = static_cast<QObject*>(form)](auto&&... arguments) {
            if (auto* whole = dynamic_cast<Form*>(object)) {
                RunHandler<Handler, entry>(*whole, std::forward<decltype(arguments)>(arguments)...);
            }
        },
        type);
}

}  // namespace base
