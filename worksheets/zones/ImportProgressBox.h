// Shows how far a long import has come, over the main frame. It appears when the import has taken
// half a second, cannot be closed, and holds off all input while it stands.
#pragma once

#include <QDialog>
#include <QElapsedTimer>

#include "import/mImport.h"

class QLabel;
class QProgressBar;

class ImportProgressBox : public QDialog, public ImportProgress {
    Q_OBJECT

public:
    explicit ImportProgressBox(QWidget* frame);

    void ZoneStarted(int zone, int zones) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override {}

private:
    QElapsedTimer elapsed_;
    QLabel* lblProgress_ = nullptr;
    QProgressBar* barProgress_ = nullptr;
};
