// The way between the program's texts and values and the engine's, and the engine's errors as
// platform::RuntimeError.
#pragma once

#include <QString>
#include <QVariant>

#include <filesystem>
#include <new>
#include <string>

#include "jet/error.h"
#include "jet/value.h"
#include "platform/RuntimeError.h"

namespace dao {

std::filesystem::path ToPath(const QString& path);
std::string ToUtf8(const QString& text);
QString ToText(const std::u16string& text);
// Null gives an invalid QVariant; numbers come as int, float or double, texts as QString.
QVariant ToVariant(const jet::Value& value);
jet::Value ToValue(const QVariant& value);

// Runs `body`; whatever the engine throws comes out as platform::RuntimeError with its number.
template <typename Body>
decltype(auto) Mapped(Body&& body) {
    try {
        return body();
    } catch (const jet::Error& error) {
        throw platform::RuntimeError(error.Number(), QString::fromUtf8(error.what()));
    } catch (const std::bad_alloc&) {
        throw platform::RuntimeError(platform::kOutOfMemory, QStringLiteral("Out of memory."));
    }
}

}  // namespace dao
