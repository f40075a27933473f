// The small progress display of a long import: "Copying zone 12 of 300" over the main frame.
//
// It appears when the import has run for half a second. While it shows, it alone takes input, and
// it takes none that would end it: closing the window or starting something else is held off until
// the import has ended.
#pragma once

#include <QElapsedTimer>

#include <memory>

#include "import/mImport.h"

class QWidget;

namespace worksheets {

class ImportProgressBox : public mImport::ImportProgress {
public:
    explicit ImportProgressBox(QWidget* frame);
    ~ImportProgressBox() override;
    ImportProgressBox(const ImportProgressBox&) = delete;
    ImportProgressBox& operator=(const ImportProgressBox&) = delete;

    void ZoneStarted(int zone, int zones) override;
    // How long an import runs without the display.
    void SetDelay(int milliseconds) { delay_ = milliseconds; }

private:
    class Box;

    QWidget* frame_;
    std::unique_ptr<Box> box_;
    QElapsedTimer sinceStart_;
    QElapsedTimer sincePaint_;
    int delay_ = 500;
};

}  // namespace worksheets
