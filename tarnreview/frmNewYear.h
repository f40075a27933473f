// Asks for the year, and which zones next year's file leaves out.
#pragma once

#include <QDialog>

#include <string>
#include <vector>

#include "season/season.h"

class QListWidget;
class QSpinBox;

namespace tarnreview {

class frmNewYear : public QDialog {
    Q_OBJECT

public:
    frmNewYear(const season::Season& season, QWidget* parent);

    [[nodiscard]] int Year() const;  // its two digits
    // The names of the zones that stay behind.
    [[nodiscard]] std::vector<std::string> DroppedZones() const;

private:
    QSpinBox* txtYear_;
    QListWidget* lstZones_;
};

}  // namespace tarnreview
