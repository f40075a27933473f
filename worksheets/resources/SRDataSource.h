// The note on the source of the resources' costs: a property of the data file, read when it is
// first asked for and written only after it was changed.
#pragma once

#include <QString>

class SRDataSource {
public:
    [[nodiscard]] const QString& Get();
    void Let(const QString& value);
    void Save();

private:
    QString value_;
    bool changed_ = false;
};
