// A record set of the data engine. Field and index names ignore case. See jet/recordset.h for where
// the current record is after each operation; errors are platform::RuntimeError.
#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>

#include "platform/RuntimeError.h"

namespace jet {
class Recordset;
struct FieldId;
}  // namespace jet

namespace dao {

class Recordset {
public:
    explicit Recordset(std::unique_ptr<jet::Recordset> records);
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    void Close();
    void SetIndex(const QString& name);
    [[nodiscard]] QString Index() const;
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();
    [[nodiscard]] bool EndOfFile() const;
    [[nodiscard]] bool BeginOfFile() const;
    [[nodiscard]] std::int32_t RecordCount() const;

    // `comparison` is one of "=", ">=", ">", "<", "<=". Keys are whole numbers, doubles or texts.
    void Seek(std::string_view comparison, std::initializer_list<QVariant> key);
    [[nodiscard]] bool NoMatch() const;

    // Invalid for null. Numbers come as int, float or double, text and memo as QString.
    [[nodiscard]] QVariant Field(const QString& name) const;
    [[nodiscard]] bool IsNull(const QString& name) const;
    // The value converted: null reads as "", 0 or 0.0.
    [[nodiscard]] QString Text(const QString& name) const;
    [[nodiscard]] std::int32_t Long(const QString& name) const;
    [[nodiscard]] float Single(const QString& name) const;

    void AddNew();
    void Edit();
    void SetField(const QString& name, const QVariant& value);  // an invalid QVariant is null
    void Update();
    void CancelUpdate();
    void Delete();

private:
    [[nodiscard]] jet::FieldId Find(const QString& name) const;

    std::unique_ptr<jet::Recordset> records_;
    mutable QHash<QString, int> fields_;  // positions of the names used so far, as spelt
};

}  // namespace dao
