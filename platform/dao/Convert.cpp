#include "platform/dao/Convert.h"

#include <QByteArray>

#include <cstdint>
#include <limits>
#include <type_traits>
#include <variant>

#include "platform/system/NativePath.h"

namespace dao {

namespace {

template <typename T>
QVariant ToVariantOf(const T& value) {
    if constexpr (std::is_same_v<T, std::monostate>) {
        return {};
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? -1 : 0;  // the engine's True has all bits set
    } else if constexpr (std::is_same_v<T, std::u16string>) {
        return ToText(value);
    } else if constexpr (std::is_same_v<T, jet::Binary>) {
        return QByteArray(reinterpret_cast<const char*>(value.data()),
                          static_cast<qsizetype>(value.size()));
    } else if constexpr (std::is_same_v<T, jet::Guid>) {
        return QByteArray(reinterpret_cast<const char*>(value.bytes.data()),
                          static_cast<qsizetype>(value.bytes.size()));
    } else if constexpr (std::is_arithmetic_v<T>) {
        return value;
    } else {
        return jet::Value(value).AsDouble();  // money, dates, decimals
    }
}

jet::Value WholeNumber(qlonglong number) {
    if (number < std::numeric_limits<std::int32_t>::min() ||
        number > std::numeric_limits<std::int32_t>::max()) {
        return static_cast<double>(number);
    }
    return static_cast<std::int32_t>(number);
}

}  // namespace

std::filesystem::path ToPath(const QString& path) {
    return platform::ToNativePath(path);
}

std::string ToUtf8(const QString& text) {
    return text.toStdString();
}

QString ToText(const std::u16string& text) {
    // Unit by unit: decoding would drop a leading byte order mark and lone surrogates.
    return QString(reinterpret_cast<const QChar*>(text.data()),
                   static_cast<qsizetype>(text.size()));
}

QVariant ToVariant(const jet::Value& value) {
    return std::visit([](const auto& held) { return ToVariantOf(held); }, value.Get());
}

jet::Value ToValue(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::UnknownType:
            return {};
        case QMetaType::Bool:
            return value.toBool();
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::LongLong:
            return WholeNumber(value.toLongLong());
        case QMetaType::Float:
            return value.toFloat();
        case QMetaType::Double:
            return value.toDouble();
        case QMetaType::QString:
            return jet::Value(value.toString().toStdU16String());
        case QMetaType::QByteArray: {
            const QByteArray bytes = value.toByteArray();
            const auto* first = reinterpret_cast<const std::byte*>(bytes.constData());
            return jet::Value(jet::Binary(first, first + bytes.size()));
        }
        default:
            throw platform::RuntimeError(platform::kTypeMismatch, QStringLiteral("Type mismatch."));
    }
}

}  // namespace dao
